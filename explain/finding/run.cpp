#include "explain/finding/run.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "explain/finding/statistics.h"

namespace explain {
namespace {

// Heights that a sum may lie below its largest value before it is given up.
constexpr double PATIENCE = 2.0;

constexpr double NEW_TAIL = 0.5;  // of what the whole series leads to expect
constexpr size_t ALIKE = 2;       // times as long, or as high in sum, and still of a size
constexpr size_t MANY_MORE = 2;   // times as many as before

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

// How high the highest of the values that are in no run of several comes to lie by chance. Where the first
// half of the series leads to expect less than half of that, such values have only begun to come: then that
// half tells.
double ChanceLimit(const std::vector<Run>& runs, const std::vector<double>& deviations) {
    std::vector<bool> several(deviations.size(), false);
    for (const Run& run : runs) {
        for (size_t i = run.first; i <= run.last && run.first < run.last; ++i) {
            several[i] = true;
        }
    }
    std::vector<double> all;
    std::vector<double> early;
    for (size_t i = 0; i < deviations.size(); ++i) {
        if (!several[i]) {
            all.push_back(deviations[i]);
        }
        if (i + 1 == deviations.size() / 2) {
            early = all;
        }
    }
    const double limit = HighestByChance(std::move(all));
    const double before = HighestByChance(std::move(early));
    return before < NEW_TAIL * limit ? before : limit;
}

struct Size {
    size_t length = 0;
    double sum = 0.0;  // of what its values lie above what is usual
};

Size SizeOf(const Run& run, const std::vector<double>& deviations) {
    Size size{run.last - run.first + 1, 0.0};
    for (size_t i = run.first; i <= run.last; ++i) {
        size.sum += std::max(0.0, deviations[i]);
    }
    return size;
}

// The longest first, each with the largest sum of all that are as long.
void PutLongestFirst(std::vector<Size>& sizes) {
    std::sort(sizes.begin(), sizes.end(), [](const Size& a, const Size& b) { return a.length > b.length; });
    for (size_t i = 1; i < sizes.size(); ++i) {
        sizes[i].sum = std::max(sizes[i].sum, sizes[i - 1].sum);
    }
}

bool HasOneLike(const Size& size, const std::vector<Size>& longestFirst) {
    const auto shorter =
        std::partition_point(longestFirst.begin(), longestFirst.end(),
                             [&](const Size& other) { return other.length * ALIKE >= size.length; });
    return shorter != longestFirst.begin() && std::prev(shorter)->sum * ALIKE >= size.sum;
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

std::vector<Run> Unlikely(std::vector<Run> runs, const std::vector<double>& deviations) {
    const double limit = ChanceLimit(runs, deviations);
    const auto isChance = [&](const Run& run) {
        return run.first == run.last && deviations[run.first] <= limit;
    };
    runs.erase(std::remove_if(runs.begin(), runs.end(), isChance), runs.end());
    return runs;
}

std::vector<Run> Unusual(std::vector<Run> runs, const std::vector<double>& deviations) {
    const size_t half = deviations.size() / 2;
    std::array<std::vector<Size>, 3> thirds;
    size_t early = 0;
    for (const Run& run : runs) {
        if (run.first < half) {
            thirds[run.first * thirds.size() / half].push_back(SizeOf(run, deviations));
            ++early;
        }
    }
    if (runs.size() - early > MANY_MORE * early) {
        return runs;
    }
    std::for_each(thirds.begin(), thirds.end(), PutLongestFirst);
    const auto comesBack = [&](const Run& run) {
        return std::all_of(thirds.begin(), thirds.end(), [size = SizeOf(run, deviations)](const auto& third) {
            return HasOneLike(size, third);
        });
    };
    runs.erase(std::remove_if(runs.begin(), runs.end(), comesBack), runs.end());
    return runs;
}

}  // namespace explain
