#include "explain/errors/count_runs.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace explain {
namespace {

constexpr size_t MOST_RUNS = 16;  // that are looked at of one series

// A stretch of the counts with their sums, to look at runs of.
class Scan {
public:
    // `intervals` is the length of what is looked at.
    Scan(const IntervalCounts& toScan, const Stretch& stretch, size_t intervals)
        : counts(toScan), whole(stretch), left(intervals) {
        sums.reserve(counts.size() + 1);
        sums.push_back(0);
        for (const IntervalCount& one : counts) {
            sums.push_back(sums.back() + one.count);
        }
        total = static_cast<double>(sums[whole.end] - sums[whole.first]);
    }

    std::vector<CountRun> Runs() {
        std::vector<CountRun> runs;
        std::vector<Stretch> open{whole};
        while (runs.size() < MOST_RUNS) {
            std::optional<Pick> best;
            for (size_t i = 0; i < open.size(); ++i) {
                Pick pick = BestOf(open[i]);
                pick.open = i;
                best = pick.gain > 0.0 && (!best || pick.gain > best->gain) ? pick : best;
            }
            if (!best) {
                break;
            }
            const CountRun run = RunOf(*best);
            runs.push_back(run);
            const Stretch around = open[best->open];
            open[best->open] = {around.first, best->first};
            open.push_back({best->last + 1, around.end});
            total -= static_cast<double>(run.count);
            left -= run.Length();
        }
        return runs;
    }

private:
    struct Pick {
        size_t first = 0;  // positions, both included
        size_t last = 0;
        double gain = 0.0;
        size_t open = 0;
    };

    CountRun RunOf(const Pick& pick) const {
        return {counts[pick.first].interval, counts[pick.last].interval,
                sums[pick.last + 1] - sums[pick.first]};
    }

    // How much better a rate of its own explains a run: the logarithm of the ratio of the likelihoods.
    double GainOf(size_t first, size_t last) const {
        const auto count = static_cast<double>(sums[last + 1] - sums[first]);
        const auto length = static_cast<double>(counts[last].interval - counts[first].interval + 1);
        const double all = static_cast<double>(left);
        const double expected = total * length / all;
        if (count <= expected || length >= all) {
            return 0.0;
        }
        const double others = total - count;
        return count * std::log(count / expected) +
               (others > 0.0 ? others * std::log(others / (total - expected)) : 0.0);
    }

    // Of each beginning, ends at growing distances; then both ends are moved as long as that is better.
    Pick BestOf(const Stretch& stretch) const {
        Pick best;
        for (size_t first = stretch.first; first < stretch.end; ++first) {
            for (size_t far = 0; first + far < stretch.end; far += far / 2 + 1) {
                const double gain = GainOf(first, first + far);
                if (gain > best.gain) {
                    best = {first, first + far, gain, 0};
                }
            }
        }
        while (best.gain > 0.0 && Improve(stretch, best)) {
        }
        return best;
    }

    bool Improve(const Stretch& stretch, Pick& best) const {
        const Pick before = best;
        const auto tryOut = [&](size_t first, size_t last) {
            if (first >= stretch.first && last < stretch.end && first <= last) {
                if (const double gain = GainOf(first, last); gain > best.gain) {
                    best = {first, last, gain, 0};
                }
            }
        };
        for (size_t far = 1; far <= counts.size(); far *= 2) {
            tryOut(before.first - std::min(far, before.first), before.last);
            tryOut(before.first + far, before.last);
            tryOut(before.first, before.last + far);
            tryOut(before.first, before.last - std::min(far, before.last));
        }
        return best.gain > before.gain;
    }

    const IntervalCounts& counts;
    const Stretch whole;
    std::vector<int64_t> sums;  // of the counts before a position
    double total = 0.0;         // errors in no run yet
    size_t left;                // intervals likewise
};

}  // namespace

std::vector<CountRun> LikeliestRuns(const IntervalCounts& counts, const Stretch& stretch, size_t intervals) {
    return Scan(counts, stretch, intervals).Runs();
}

}  // namespace explain
