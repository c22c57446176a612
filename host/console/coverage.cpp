#include "host/console/coverage.h"

#include <algorithm>

#include "text/counted.h"
#include "text/local_time.h"

namespace zorv {
namespace {
constexpr int64_t STEPS_AT_AN_END = 2;
constexpr size_t A_FIFTH = 5;
constexpr int64_t MOST_SECONDS = int64_t{1} << 23;  // 97 days: commands take two

std::string Local(int64_t time) {
    return LocalTime(time, ZoneOffsetAt(time));
}

int64_t MedianOf(const std::map<int64_t, size_t>& counts) {
    size_t all = 0;
    for (const auto& [value, count] : counts) {
        all += count;
    }
    size_t below = 0;
    for (const auto& [value, count] : counts) {
        below += count;
        if (below * 2 >= all) {
            return value;
        }
    }
    return 0;
}
}  // namespace

std::string TextOf(const TimeRange& rows) {
    return "rows from " + Local(rows.start) + " to " + Local(rows.end);
}

std::string Coverage::Text() const {
    if (!rows) {
        return "no rows";
    }
    const std::string counted = expected == 0
                                    ? Counted(intervals, "interval")
                                    : std::to_string(intervals) + " of " + Counted(expected, "interval");
    return TextOf(*rows) + ", " + counted;
}

CoverageCount::CoverageCount(const TimeRange& ofRange)
    : range{ofRange.start, std::min(ofRange.end, ofRange.start + MOST_SECONDS)},
      seconds(static_cast<size_t>(std::max<int64_t>(0, range.end - range.start) + 1)) {}

void CoverageCount::Add(int64_t time) {
    if (time >= range.start && time <= range.end) {
        series.push_back(time - range.start);
    }
}

void CoverageCount::EndSeries() {
    if (!std::is_sorted(series.begin(), series.end())) {
        std::sort(series.begin(), series.end());
    }
    size_t* count = nullptr;
    int64_t counted = 0;
    for (size_t i = 0; i < series.size(); ++i) {
        seconds[static_cast<size_t>(series[i])] = true;
        const int64_t distance = i == 0 ? 0 : series[i] - series[i - 1];
        if (distance != 0) {
            count = distance == counted ? count : &distances[distance];
            counted = distance;
            ++*count;
        }
    }
    series.clear();
}

// Rows of one interval may be seconds apart.
size_t CoverageCount::IntervalsWithRows(int64_t oldest, int64_t newest, int64_t step) const {
    std::vector<bool> filled(static_cast<size_t>((newest - oldest) / step) + 2);
    for (int64_t second = oldest; second <= newest; ++second) {
        if (seconds[static_cast<size_t>(second)]) {
            filled[static_cast<size_t>((second - oldest + step / 2) / step)] = true;
        }
    }
    return static_cast<size_t>(std::count(filled.begin(), filled.end(), true));
}

Coverage CoverageCount::Get(int64_t knownStep) const {
    Coverage coverage;
    const auto first = std::find(seconds.begin(), seconds.end(), true);
    if (first == seconds.end()) {
        return coverage;
    }
    const int64_t oldest = first - seconds.begin();
    const int64_t newest = seconds.rend() - std::find(seconds.rbegin(), seconds.rend(), true) - 1;
    coverage.rows = {range.start + oldest, range.start + newest};
    coverage.step = distances.empty() ? knownStep : MedianOf(distances);
    if (coverage.step == 0) {
        coverage.intervals = 1;
        return coverage;
    }
    const size_t intervals = IntervalsWithRows(oldest, newest, coverage.step);
    const auto between = static_cast<size_t>((newest - oldest) / coverage.step) + 1;
    const int64_t atAnEnd = STEPS_AT_AN_END * coverage.step;
    coverage.expected = std::max<size_t>(1, static_cast<size_t>((range.end - range.start) / coverage.step));
    coverage.intervals = std::min(intervals, coverage.expected);  // both ends of a range may have a row
    coverage.isPart = oldest > atAnEnd || range.end - range.start - newest > atAnEnd ||
                      (between > intervals && (between - intervals) * A_FIFTH >= between);
    return coverage;
}
}  // namespace zorv
