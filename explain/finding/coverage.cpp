#include "explain/finding/coverage.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "explain/finding/statistics.h"

namespace explain {
namespace {

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

CoveredIntervals IntervalsWithRows(const std::map<std::string, PointData>& points, const Coverage& coverage) {
    CoveredIntervals intervals(*coverage.oldest, *coverage.newest, coverage.step);
    for (const auto& [name, data] : points) {
        const auto [first, end] = PositionsIn(data.samples, {*coverage.oldest, *coverage.newest});
        for (size_t i = first; i < end; ++i) {
            intervals.Add(data.samples[i].time);
        }
    }
    return intervals;
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
    CoveredIntervals::Count& count = coverage;
    count = IntervalsWithRows(points, coverage).Of(range.start, range.end);
    return coverage;
}

}  // namespace explain
