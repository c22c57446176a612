// The worlds of several nodes, and the truth about them together.
#pragma once

#include "simulator/files/world.h"

namespace lumosim {

// Writes a world for each node of PlanFleet() into a folder of its own below options.root, one of them
// broken, and truth.json beside them: who does what, and the fault. Returns what all of them hold. Throws as
// WriteWorld() does.
WorldSummary WriteFleet(const WorldOptions& options, int64_t count, const Progress& progress);

}  // namespace lumosim
