// What the graphs of a configuration can find: a fault at each of their points, and who finds it.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "check/graph/model.h"
#include "check/graph/statistics.h"
#include "check/plant/site.h"

namespace check {

constexpr std::array<uint64_t, 3> PLANT_SEEDS = {1, 2, 3};

// What one of the two who answer names where a fault is planted, seed by seed; empty: nothing.
struct Answers {
    std::array<std::string, PLANT_SEEDS.size()> named;
    size_t right = 0;

    bool IsFound() const { return right == named.size(); }
    // What is named most often besides the point itself, or the point when there is nothing else.
    std::string Usual(const std::string& point) const;
};

// Why the explanation does not find a point.
enum class Blindness {
    OBSERVATION,      // it counts no requests, so nothing can be its part
    CONSTANT,         // its own rows never change
    SAME_STATISTICS,  // its rows are those of the point that is named
    FLAT_PARENT,      // above it is a point whose rows never change
    NOT_SEEN,         // nothing is named
    UNKNOWN
};

struct SiteProof {
    Site site;
    Answers walk, explanation;
    std::optional<Blindness> blindness;  // none: the explanation finds it
};

struct Proof {
    std::vector<SiteProof> sites;
    // Of the sites that count requests.
    size_t counting = 0, walkFound = 0, explanationFound = 0;
};

struct ProofOptions {
    std::string configuration;  // the file, and how an operator knows it
    std::string told;
    std::string point;  // only this one; empty: all
    size_t jobs = 1;    // worlds at a time
    // What the worlds take over from a node; null: nothing.
    const PointStatistics* statistics = nullptr;
};

// Plants a fault at every site, with each seed, in worlds below `directory`. Blocks for as long as that
// takes: a tenth of a second of processor time a world. `progress`, which gets the worlds that are done and
// all, is called by one thread at a time. Throws std::runtime_error when a world cannot be made or asked, or
// there is no site, and cli::UsageError when none is the point that is asked for.
Proof Prove(const Model& model, const ProofOptions& options, const std::string& directory,
            const std::function<void(size_t, size_t)>& progress);

}  // namespace check
