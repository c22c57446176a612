// The database of the agent's healing actions.
#pragma once

#include <filesystem>
#include <vector>

#include "simulator/plan/heal_events.h"

namespace lumosim {

// Writes a new database at `path`, where at most an empty file may be. Throws std::runtime_error.
void WriteHealEvents(const std::filesystem::path& path, const std::vector<HealEvent>& events);

}  // namespace lumosim
