// What is planted otherwise than the scenario has it, because the user asks for it.
#pragma once

#include "simulator/graphs/topology.h"
#include "simulator/plan/scenario.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

// Changes the scenario's faults, and how far delays stray, to what the options name, if anything. Throws
// BadInput when the scenario plants nothing of that kind.
void ChooseFaults(const WorldOptions& options, const Topology& topology, Scenario& scenario);

}  // namespace lumosim
