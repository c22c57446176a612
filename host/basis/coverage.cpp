#include "host/basis/coverage.h"

#include <algorithm>

#include "text/counted.h"
#include "text/local_time.h"

namespace zorv {
namespace {
constexpr int64_t MOST_UNITS = int64_t{1} << 23;  // seconds of 97 days: commands take two

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

std::string Coverage::Intervals() const {
    return expected == 0 ? Counted(intervals, "interval")
                         : std::to_string(intervals) + " of " + Counted(expected, "interval");
}

CoverageCount::CoverageCount(const TimeRange& ofRange)
    : range(ofRange),
      unit(1 + (range.end - range.start) / MOST_UNITS),
      filled(static_cast<size_t>((range.end - range.start) / unit) + 1) {}

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
        filled[static_cast<size_t>(series[i] / unit)] = true;
        const int64_t distance = i == 0 ? 0 : series[i] - series[i - 1];
        if (distance != 0) {
            count = distance == counted ? count : &distances[distance];
            counted = distance;
            ++*count;
        }
    }
    if (!series.empty()) {
        oldest = std::min(oldest.value_or(series.front()), series.front());
        newest = std::max(newest.value_or(series.back()), series.back());
    }
    series.clear();
}

CoveredIntervals CoverageCount::IntervalsWithRows(int64_t step) const {
    CoveredIntervals intervals(*oldest, *newest, step);
    const auto end = static_cast<size_t>(*newest / unit);
    for (auto i = static_cast<size_t>(*oldest / unit); i <= end; ++i) {
        if (filled[i]) {
            intervals.Add(std::max(static_cast<int64_t>(i) * unit, *oldest));
        }
    }
    return intervals;
}

Coverage CoverageCount::Get(int64_t knownStep) const {
    Coverage coverage;
    if (!oldest) {
        return coverage;
    }
    coverage.rows = {range.start + *oldest, range.start + *newest};
    coverage.step = distances.empty() ? knownStep : std::max(unit, MedianOf(distances));
    if (coverage.step == 0) {
        coverage.intervals = 1;
        return coverage;
    }
    const auto covered = IntervalsWithRows(coverage.step).Of(0, range.end - range.start);
    coverage.expected = covered.expected;
    coverage.intervals = covered.intervals;
    coverage.isPart = covered.IsPart();
    return coverage;
}
}  // namespace zorv
