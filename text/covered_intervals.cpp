#include "text/covered_intervals.h"

#include <algorithm>

namespace {
constexpr int64_t STEPS_AT_AN_END = 2;
constexpr size_t A_FIFTH = 5;
}  // namespace

CoveredIntervals::CoveredIntervals(int64_t firstRow, int64_t lastRow, int64_t stepOfRows)
    : first(firstRow),
      last(lastRow),
      step(stepOfRows),
      filled(static_cast<size_t>((lastRow - firstRow) / stepOfRows) + 2) {}

void CoveredIntervals::Add(int64_t time) {
    filled[static_cast<size_t>((time - first + step / 2) / step)] = true;
}

CoveredIntervals::Count CoveredIntervals::Of(int64_t start, int64_t end) const {
    const auto intervals = static_cast<size_t>(std::count(filled.begin(), filled.end(), true));
    const auto between = static_cast<size_t>((last - first) / step) + 1;
    const int64_t atAnEnd = STEPS_AT_AN_END * step;
    Count count;
    count.expected = std::max<size_t>(1, static_cast<size_t>((end - start) / step));
    count.intervals = std::min(intervals, count.expected);  // both ends of a range may have a row
    count.lacksBegin = first - start > atAnEnd;
    count.lacksEnd = end - last > atAnEnd;
    count.lacksBetween = between > intervals && (between - intervals) * A_FIFTH >= between;
    return count;
}
