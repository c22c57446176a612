// What is planted otherwise than the scenario has it, because the user asks for it.
#pragma once

#include <array>
#include <string_view>

#include "simulator/graphs/topology.h"
#include "simulator/plan/scenario.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

// The types of errors, by the column that counts them.
constexpr std::array<std::string_view, 3> ERROR_TYPES = {"IOERROR", "IORETRY", "IOACCESSDENY"};

// Changes the errors of the scenario to the type and the point that the options name, if any. Throws
// cli::UsageError when the scenario plants no errors, and for a type or a point that does not exist.
void ChooseErrors(const WorldOptions& options, const Topology& topology, Scenario& scenario);

// Changes the scenario's faults, and how far delays stray, to what the options name, if anything. Throws
// cli::UsageError when the scenario plants nothing of that kind, and when a point, a graph or a way of it is
// not in the configuration that the options name.
void ChooseFaults(const WorldOptions& options, const Topology& topology, Scenario& scenario);

}  // namespace lumosim
