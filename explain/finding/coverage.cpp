#include "explain/finding/coverage.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "explain/finding/statistics.h"

namespace explain {
namespace {

constexpr int64_t STEPS_AT_AN_END = 2;
constexpr size_t A_FIFTH = 5;

// The usual distance of two samples.
std::optional<double> StepOf(const Samples& samples) {
    std::vector<double> distances;
    for (size_t i = 1; i < samples.size(); ++i) {
        if (samples[i].time != samples[i - 1].time) {
            distances.push_back(static_cast<double>(samples[i].time) -
                                static_cast<double>(samples[i - 1].time));
        }
    }
    return distances.empty() ? std::nullopt : std::optional<double>(MedianOf(distances));
}

// That of most points.
int64_t StepOf(const std::map<std::string, PointData>& points) {
    std::vector<double> steps;
    for (const auto& [name, data] : points) {
        if (const std::optional<double> step = StepOf(data.samples)) {
            steps.push_back(*step);
        }
    }
    return steps.empty() ? 0 : std::max<int64_t>(1, std::llround(MedianOf(steps)));
}

// How many intervals from the first row to the last have a row. Rows of one interval may be seconds apart.
size_t IntervalsWithRows(const std::map<std::string, PointData>& points, const Coverage& coverage) {
    const int64_t oldest = *coverage.oldest;
    std::vector<bool> filled(static_cast<size_t>((*coverage.newest - oldest) / coverage.step) + 2);
    for (const auto& [name, data] : points) {
        const auto [first, end] = PositionsIn(data.samples, {oldest, *coverage.newest});
        for (size_t i = first; i < end; ++i) {
            filled[static_cast<size_t>((data.samples[i].time - oldest + coverage.step / 2) / coverage.step)] =
                true;
        }
    }
    return static_cast<size_t>(std::count(filled.begin(), filled.end(), true));
}

}  // namespace

Coverage CoverageOf(const std::map<std::string, PointData>& points, const Window& range) {
    Coverage coverage;
    coverage.points = points.size();
    coverage.step = StepOf(points);
    for (const auto& [name, data] : points) {
        const auto [first, end] = PositionsIn(data.samples, range);
        if (first < end) {
            const int64_t oldest = data.samples[first].time;
            const int64_t newest = data.samples[end - 1].time;
            coverage.oldest = std::min(coverage.oldest.value_or(oldest), oldest);
            coverage.newest = std::max(coverage.newest.value_or(newest), newest);
            ++coverage.pointsWithRows;
        }
    }
    if (!coverage.oldest || coverage.step == 0) {
        coverage.intervals = coverage.oldest ? 1 : 0;
        return coverage;
    }
    const size_t intervals = IntervalsWithRows(points, coverage);
    const auto between = static_cast<size_t>((*coverage.newest - *coverage.oldest) / coverage.step) + 1;
    coverage.expected = std::max<size_t>(1, static_cast<size_t>((range.end - range.start) / coverage.step));
    coverage.intervals = std::min(intervals, coverage.expected);  // both ends of a range may have a row
    coverage.lacksBegin = *coverage.oldest - range.start > STEPS_AT_AN_END * coverage.step;
    coverage.lacksEnd = range.end - *coverage.newest > STEPS_AT_AN_END * coverage.step;
    coverage.lacksBetween = between > intervals && (between - intervals) * A_FIFTH >= between;
    return coverage;
}

}  // namespace explain
