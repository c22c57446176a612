// The slow curve of a series, such as that of a day.
#pragma once

#include <vector>

#include "explain/finding/series.h"

namespace explain {

// The level of a sample is told by so long a stretch around it.
constexpr int64_t LEVEL_SECONDS = 14400;

// The delays with the slow curve taken out: how far each lies above the level of those around it
// (LEVEL_SECONDS in all) that are not marked, relative to it where that is above `median`, and that above
// `median`.
std::vector<double> Levelled(const Samples& samples, const std::vector<bool>& marked, double median);

}  // namespace explain
