// How much of a range the statistics cover.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "explain/finding/sample_store.h"
#include "text/covered_intervals.h"

namespace explain {

struct Coverage : CoveredIntervals::Count {
    int64_t step = 0;   // usual seconds from one interval to the next; 0: too few rows to tell
    size_t points = 0;  // that were looked at
    size_t pointsWithRows = 0;
    std::optional<int64_t> oldest;  // rows of the range, UTC
    std::optional<int64_t> newest;
};

// Of all points together: an interval has rows when one point has one.
Coverage CoverageOf(const std::map<std::string, PointData>& points, const Window& range);

}  // namespace explain
