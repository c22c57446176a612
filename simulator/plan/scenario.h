// The scenarios: what is planted into a healthy world, as data.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/graphs/graph_table.h"

namespace lumosim {

enum class FaultKind { DELAY, ERROR, LOAD };

// Where in the range a fault lies: faults of one place happen at the same time.
enum class FaultTime { LATE, EARLY };

// A fault at `point`, below the first node of `graph` (hand-overs included).
struct FaultRecipe {
    FaultKind kind;
    std::string_view graph;
    std::string_view point;
    // DELAY: the added delay at its worst, in multiples of the point's usual delay.
    // ERROR: the share of the point's requests that fail at the worst.
    // LOAD: the added requests at the worst, in multiples of the usual ones, of the point and all below it.
    double strength;
    int errorColumn = 0;         // ERROR: which of errCode0 to errCode4 counts
    std::string_view twin = {};  // a point whose statistics are always those of `point`; empty: none
    FaultTime when = FaultTime::LATE;
    // Whether a walk down the best-correlated points is sure to end at the point, but above an observation
    // point: those are never part of a walk.
    bool isWalked = true;
};

// A healing action, `offset` seconds after the fault began.
struct HealRecipe {
    int64_t offset;
    std::string_view module, cause, inferredCause;
    int node;
};

struct Scenario {
    std::string_view name;
    std::string_view summary;                           // one sentence
    std::vector<FaultRecipe> faults = {};               // the first one is what operators look for
    std::vector<GraphTable> graphs = {};                // on top of the usual ones
    std::vector<std::string_view> constantPoints = {};  // statistics that never change
    std::vector<HealRecipe> heals = {};
    int64_t minimumHours = 1;
    bool hasGaps = false;    // an hour, some intervals and single rows are missing
    double usualErrors = 1;  // how often points count errors that mean nothing, against an ordinary day
};

const std::vector<Scenario>& Scenarios();

// The scenario named `name`; null when there is none.
const Scenario* FindScenario(std::string_view name);

}  // namespace lumosim
