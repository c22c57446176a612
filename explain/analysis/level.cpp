#include "explain/analysis/level.h"

#include <algorithm>

#include "explain/analysis/statistics.h"

namespace explain {
namespace {

constexpr size_t EVERY = 8;  // samples: between them the curve is straight

// The median around a sample; `otherwise` where too few samples are not marked.
double LevelAt(const Samples& samples, const std::vector<bool>& marked, size_t position, double otherwise) {
    const int64_t time = samples[position].time;
    const auto [first, end] = PositionsIn(samples, {time - LEVEL_SECONDS / 2, time + LEVEL_SECONDS / 2});
    std::vector<double> around;
    for (size_t i = first; i < end; ++i) {
        if (!marked[i]) {
            around.push_back(samples[i].delay);
        }
    }
    return around.size() < FEWEST_FOR_EVENTS ? otherwise : MedianOf(around);
}

}  // namespace

std::vector<double> Levelled(const Samples& samples, const std::vector<bool>& marked, double median) {
    std::vector<double> levelled = DelaysOf(samples);
    for (size_t from = 0; from < samples.size(); from += EVERY) {
        const size_t to = std::min(from + EVERY, samples.size() - 1);
        const double before = LevelAt(samples, marked, from, median);
        const double after = LevelAt(samples, marked, to, median);
        for (size_t i = from; i < std::min(from + EVERY, samples.size()); ++i) {
            const double way = static_cast<double>(i - from) / static_cast<double>(EVERY);
            const double level = before + way * (after - before);
            levelled[i] *= level > 0.0 ? median / level : 1.0;
        }
    }
    return levelled;
}

}  // namespace explain
