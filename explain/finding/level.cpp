#include "explain/finding/level.h"

#include <algorithm>
#include <optional>

#include "explain/finding/statistics.h"

namespace explain {
namespace {

constexpr int64_t STRAIGHT = 240;  // seconds: between samples so far apart the curve is a line

// A point of the curve.
struct Place {
    double time = 0.0;
    double delay = 0.0;
};

// The middle of what is not marked between two times, the second not included; none for too few samples.
std::optional<Place> MiddleOf(const Samples& samples, const std::vector<bool>& marked, int64_t from,
                              int64_t until) {
    const auto [first, end] = PositionsIn(samples, {from, until - 1});
    std::vector<double> times;
    std::vector<double> delays;
    for (size_t i = first; i < end; ++i) {
        if (!marked[i]) {
            times.push_back(static_cast<double>(samples[i].time - from));
            delays.push_back(samples[i].delay);
        }
    }
    if (times.size() < FEWEST_FOR_EVENTS) {
        return std::nullopt;
    }
    return Place{static_cast<double>(from) + MeanOf(times), MedianOf(delays)};
}

// The level at a sample: on the line through the middles of both halves of the LEVEL_SECONDS around it, which
// at the ends of the series are its first and its last ones. Where a half has too few samples, that of the
// other.
double LevelAt(const Samples& samples, const std::vector<bool>& marked, size_t position, double otherwise) {
    const int64_t time = samples[position].time;
    const int64_t latest = std::max(samples.front().time, samples.back().time + 1 - LEVEL_SECONDS);
    const int64_t from = std::clamp(time - LEVEL_SECONDS / 2, samples.front().time, latest);
    const int64_t middle = from + LEVEL_SECONDS / 2;
    const std::optional<Place> before = MiddleOf(samples, marked, from, middle);
    const std::optional<Place> after = MiddleOf(samples, marked, middle, from + LEVEL_SECONDS);
    if (!before || !after) {
        return before ? before->delay : after ? after->delay : otherwise;
    }
    const double slope = (after->delay - before->delay) / (after->time - before->time);
    return before->delay + slope * (static_cast<double>(time) - before->time);
}

}  // namespace

std::vector<double> Levelled(const Samples& samples, const std::vector<bool>& marked, double median) {
    std::vector<double> levelled = DelaysOf(samples);
    for (size_t from = 0; from < samples.size();) {
        const size_t next =
            PositionsIn(samples, {samples[from].time, samples[from].time + STRAIGHT - 1}).second;
        const size_t to = std::min(next, samples.size() - 1);
        const double before = LevelAt(samples, marked, from, median);
        const double after = LevelAt(samples, marked, to, median);
        for (size_t i = from; i < next; ++i) {
            const double way =
                to > from ? static_cast<double>(i - from) / static_cast<double>(to - from) : 0.0;
            const double level = before + way * (after - before);
            // Noise grows with the level, but where that is low it is hardly less.
            const double part = median > 0.0 && level > median ? median / level : 1.0;
            levelled[i] = median + part * (levelled[i] - level);
        }
        from = next;
    }
    return levelled;
}

}  // namespace explain
