// Who does what in a fleet: several nodes with one fault among them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/plan/world_options.h"

namespace lumosim {

constexpr int64_t FEWEST_NODES = 5;  // one of each role
constexpr int64_t MOST_NODES = 1000;

enum class FleetRole {
    CAUSE,  // has the scenario's fault
    WAITS,  // its acknowledgements of other nodes are late: less, and a little later
    HEALTHY,
    LOAD,    // hosts ask several times as much at the same time
    BROKEN,  // its statistics are cut short
};

struct FleetNode {
    std::string name;  // "node7", and the folder in the fleet's
    FleetRole role;
    WorldOptions options;
};

// The nodes of a fleet of `count`; `options` say when, what and how strong the fault is, and the seed who has
// which role. In a fleet of the scenario "healthy" nobody has a fault, and nobody waits. Throws
// cli::UsageError for a count that is out of its range.
std::vector<FleetNode> PlanFleet(const WorldOptions& options, int64_t count);

// "cause", "waits", "healthy", "load", "broken".
const char* WordOf(FleetRole role);

}  // namespace lumosim
