// The state of a watch, for whoever collects figures.
#pragma once

#include <cstdint>
#include <string>

#include "explain/report.h"
#include "explain/watch/changes.h"

namespace explain {

// The state at the UTC second `now` in the text exposition format: gauges, each with its help and type.
// `report` is the last one that could be made, and tells points, delays and errors; without one it is empty,
// and so are these. No I/O.
std::string ExpositionOf(const Report& report, const Changes& changes, int64_t now);

}  // namespace explain
