// The scenarios: what is planted into a healthy world, as data.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/graph_table.h"

namespace lumosim {

enum class FaultKind { NONE, DELAY, ERROR };

// A fault at `point`, below the first node of `graph` (hand-overs included). A walk down the best-correlated
// points ends there, but above an observation point: those are never part of a walk.
struct FaultRecipe {
    FaultKind kind = FaultKind::NONE;
    std::string_view graph = {};
    std::string_view point = {};
    // DELAY: the added delay at its worst, in multiples of the point's usual delay.
    // ERROR: the share of the point's requests that fail at the worst.
    double strength = 0;
    int errorColumn = 0;         // ERROR: which of errCode0 to errCode4 counts
    std::string_view twin = {};  // a point whose statistics are always those of `point`; empty: none
};

// A healing action, `offset` seconds after the fault began.
struct HealRecipe {
    int64_t offset;
    std::string_view module, cause, inferredCause;
    int node;
};

struct Scenario {
    std::string_view name;
    std::string_view summary;  // one sentence
    FaultRecipe fault = {};
    std::vector<GraphTable> graphs = {};  // on top of the usual ones
    std::vector<HealRecipe> heals = {};
    std::vector<std::string_view> constantPoints = {};  // statistics that never change
    bool hasGaps = false;                               // an hour, some intervals and single rows are missing
    double usualErrors = 1;  // how often points count errors that mean nothing, against an ordinary day
    int64_t minimumHours = 1;
};

const std::vector<Scenario>& Scenarios();

// The scenario named `name`; null when there is none.
const Scenario* FindScenario(std::string_view name);

}  // namespace lumosim
