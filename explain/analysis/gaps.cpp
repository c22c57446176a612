#include "explain/analysis/gaps.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "explain/finding/event.h"
#include "explain/finding/usual.h"

namespace explain {
namespace {

constexpr size_t BESIDE = 2;     // rows to either side that an estimate comes from
constexpr size_t NEAR = WINDOW;  // intervals that they are away at most

using Pair = std::pair<Sample, Sample>;  // of the point at the top, and of another, at one time

// Intervals of the point at the top in which another has no row.
std::vector<size_t> GapsIn(const Samples& rows, const Samples& top) {
    std::vector<size_t> gaps;
    auto row = rows.begin();
    for (size_t i = 0; i < top.size(); ++i) {
        row = std::find_if(row, rows.end(), [&](const Sample& one) { return one.time >= top[i].time; });
        if (row == rows.end() || row->time != top[i].time) {
            gaps.push_back(i);
        }
    }
    return gaps;
}

// What both have in the intervals next to a gap.
std::vector<Pair> Beside(const Samples& samples, const Samples& top, size_t gap) {
    std::vector<Pair> pairs;
    const auto add = [&](size_t position) {
        const size_t found = PositionsIn(samples, {top[position].time, top[position].time}).first;
        if (found < samples.size() && samples[found].time == top[position].time) {
            pairs.emplace_back(top[position], samples[found]);
        }
    };
    for (size_t far = 1; far <= std::min(NEAR, gap) && pairs.size() < BESIDE; ++far) {
        add(gap - far);
    }
    const size_t before = pairs.size();
    for (size_t i = gap + 1; i < top.size() && i <= gap + NEAR && pairs.size() < before + BESIDE; ++i) {
        add(i);
    }
    return pairs;
}

// Of all samples of a point.
struct Range {
    double usual = 0.0;         // delay
    double mostRequests = 0.0;  // of an interval
};

Range RangeOf(const Samples& samples) {
    const std::vector<double> requests = RequestsOf(samples);
    return {UsualOf(DelaysOf(samples)).median, *std::max_element(requests.begin(), requests.end())};
}

// A point's sample at the time of one of the point at the top, if both go together as they do beside it. Not
// farther from the usual than beside it, as what lies near but in no event says nothing of one, and with no
// more requests than any: a point may have others that wait for it.
Sample Estimate(const std::vector<Pair>& beside, const Sample& top, double topUsual, const Range& its) {
    double topRequests = 0.0;
    double requests = 0.0;
    double both = 0.0;
    double square = 0.0;
    double least = its.usual;
    double most = its.usual;
    for (const auto& [other, own] : beside) {
        topRequests += other.requests;
        requests += own.requests;
        both += (other.delay - topUsual) * (own.delay - its.usual);
        square += (other.delay - topUsual) * (other.delay - topUsual);
        least = std::min(least, own.delay);
        most = std::max(most, own.delay);
    }
    const double slope = square > 0.0 ? both / square : 0.0;
    const double estimated = topRequests > 0.0 ? requests * top.requests / topRequests
                                               : requests / static_cast<double>(beside.size());
    return {top.time, std::clamp(its.usual + slope * (top.delay - topUsual), least, most),
            std::min(estimated, its.mostRequests)};
}

// The samples with an estimate in each gap that has rows beside it.
Samples Completed(const Samples& samples, const Samples& top, const std::vector<size_t>& gaps) {
    const Range its = RangeOf(samples);
    const double topUsual = UsualOf(DelaysOf(top)).median;
    Samples estimates;
    for (const size_t gap : gaps) {
        const std::vector<Pair> beside = Beside(samples, top, gap);
        if (!beside.empty()) {
            estimates.push_back(Estimate(beside, top[gap], topUsual, its));
        }
    }
    Samples completed;
    std::merge(samples.begin(), samples.end(), estimates.begin(), estimates.end(),
               std::back_inserter(completed),
               [](const Sample& a, const Sample& b) { return a.time < b.time; });
    return completed;
}

}  // namespace

bool IsRegular(size_t intervals, size_t gaps) {
    constexpr double LEAST = 0.25;
    return static_cast<double>(intervals - gaps) > LEAST * static_cast<double>(intervals);
}

void FillGaps(const std::map<std::string, PointData>& rows, GraphWorld& world) {
    const std::string& first = world.nodes.front().point;
    const Samples& top = world.points.at(first).samples;
    for (auto& [name, data] : world.points) {
        if (name == first || data.isObservation || data.samples.empty()) {
            continue;
        }
        const std::vector<size_t> gaps = GapsIn(rows.at(name).samples, top);
        for (const size_t gap : gaps) {
            data.gaps.push_back(top[gap].time);
        }
        if (!gaps.empty() && IsRegular(top.size(), gaps.size())) {
            data.complete = Completed(data.samples, top, gaps);
        }
    }
}

}  // namespace explain
