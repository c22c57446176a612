// How much of a range the statistics cover.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "explain/finding/sample_store.h"

namespace explain {

struct Coverage {
    int64_t step = 0;      // usual seconds from one interval to the next; 0: too few rows to tell
    size_t expected = 0;   // intervals of the range; 0: not known
    size_t intervals = 0;  // of them, those with rows
    size_t points = 0;     // that were looked at
    size_t pointsWithRows = 0;
    std::optional<int64_t> oldest;  // rows of the range, UTC
    std::optional<int64_t> newest;
    bool lacksBegin = false;    // more than two steps
    bool lacksEnd = false;      // likewise
    bool lacksBetween = false;  // a fifth of the intervals or more

    bool IsPart() const { return lacksBegin || lacksEnd || lacksBetween; }
};

// Of all points together: an interval has rows when one point has one.
Coverage CoverageOf(const std::map<std::string, PointData>& points, const Window& range);

}  // namespace explain
