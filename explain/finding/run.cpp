#include "explain/finding/run.h"

#include <algorithm>

#include "explain/finding/statistics.h"

namespace explain {
namespace {

// Heights that a sum may lie below its largest value before it is given up.
constexpr double PATIENCE = 2.0;

// How many of `count` values, the first one at `from` and the next ones in the direction of `step`, belong to
// a run of this height.
template <typename Value>
size_t Reach(size_t count, double height, const Value& at) {
    double sum = 0.0;
    double largest = 0.0;
    size_t reach = 0;
    for (size_t i = 0; i < count && sum > largest - PATIENCE * height; ++i) {
        sum += std::clamp(at(i), 0.0, height) - height / 2;
        if (sum > largest) {
            largest = sum;
            reach = i + 1;
        }
    }
    return reach;
}

double HeightOf(const Run& run, const std::vector<double>& deviations) {
    const auto begin = deviations.begin();
    std::vector<double> values(begin + static_cast<std::ptrdiff_t>(run.first),
                               begin + static_cast<std::ptrdiff_t>(run.last) + 1);
    return std::max(0.0, MedianOf(values));
}

}  // namespace

std::vector<Run> RunsAbove(const std::vector<double>& values, double least, size_t gap) {
    std::vector<Run> runs;
    for (size_t i = 0; i < values.size(); ++i) {
        if (values[i] <= least) {
            continue;
        }
        if (!runs.empty() && i - runs.back().last <= gap + 1) {
            runs.back().last = i;
        } else {
            runs.push_back({i, i});
        }
    }
    return runs;
}

std::vector<Run> Widened(const std::vector<Run>& runs, const std::vector<double>& deviations) {
    std::vector<Run> wide;
    for (size_t i = 0; i < runs.size(); ++i) {
        const double height = HeightOf(runs[i], deviations);
        const size_t from = wide.empty() ? 0 : wide.back().last + 1;
        const size_t until = i + 1 < runs.size() ? runs[i + 1].first : deviations.size();
        const size_t first = runs[i].first;
        const size_t last = runs[i].last;
        const auto backwards = [&](size_t k) { return deviations[first - 1 - k]; };
        const auto forwards = [&](size_t k) { return deviations[last + 1 + k]; };
        const Run run{first - Reach(first - from, height, backwards),
                      last + Reach(until - last - 1, height, forwards)};
        if (!wide.empty() && run.first - wide.back().last <= GAP + 1) {
            wide.back().last = run.last;
        } else {
            wide.push_back(run);
        }
    }
    return wide;
}

}  // namespace explain
