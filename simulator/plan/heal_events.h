// The agent's healing actions.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/plan/plan.h"
#include "simulator/plan/scenario.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

struct HealEvent {
    std::string time;  // compact local time
    HealRecipe recipe;
};

// All events of the scenario, in the order of its list. Nothing where nothing was planted.
std::vector<HealEvent> HealEvents(const WorldOptions& options, const Scenario& scenario, const Plan& plan);

// Whether an operator of the first node finds the event when asking for the whole range: an I/O hang or I/O
// error of that node, within the range.
bool IsReported(const HealEvent& event, const WorldOptions& options, const Plan& plan);

}  // namespace lumosim
