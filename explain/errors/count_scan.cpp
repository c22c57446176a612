#include "explain/errors/count_scan.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "explain/finding/series.h"

namespace explain {
namespace {

constexpr double FAMILY = 3.0;    // errors that one cause makes at a time, where nothing tells it
constexpr double CHANCE = 0.001;  // that a range without a cause has a run which is told
constexpr size_t MOST_RUNS = 16;  // that are looked at of one series
constexpr double AS_LARGE = 0.5;  // of a run's extra errors: another one with more is as large
constexpr size_t FEWEST_BLOCKS = FEWEST_FOR_EVENTS;

// The counts with their sums, to look at runs of.
class Scan {
public:
    Scan(const IntervalCounts& toScan, size_t allIntervals) : counts(toScan), left(allIntervals) {
        sums.reserve(counts.size() + 1);
        sums.push_back(0);
        for (const IntervalCount& one : counts) {
            sums.push_back(sums.back() + one.count);
        }
        total = static_cast<double>(sums.back());
    }

    // The runs that stand out most, the most telling one first; none overlaps another.
    std::vector<CountRun> Runs() {
        std::vector<CountRun> runs;
        std::vector<Stretch> open{{0, counts.size()}};
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
            const Stretch whole = open[best->open];
            open[best->open] = {whole.first, best->first};
            open.push_back({best->last + 1, whole.end});
            total -= static_cast<double>(run.count);
            left -= run.Length();
        }
        return runs;
    }

private:
    struct Stretch {  // positions in the counts
        size_t first;
        size_t end;
    };
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
    std::vector<int64_t> sums;  // of the counts before a position
    double total = 0.0;         // errors in no run yet
    size_t left;                // intervals likewise
};

// The intervals that tell what is usual.
struct Baseline {
    std::vector<double> counts;
    double sum = 0.0;

    double Intervals() const { return static_cast<double>(counts.size()); }
    double Rate() const { return counts.empty() ? 0.0 : sum / Intervals(); }
};

// All that tell and lie in none of these runs.
Baseline BaselineOf(const IntervalCounts& counts, const CountFrame& frame,
                    const std::vector<const CountRun*>& without) {
    std::vector<double> all(frame.intervals, 0.0);
    for (const IntervalCount& one : counts) {
        all[one.interval] = static_cast<double>(one.count);
    }
    std::vector<bool> telling = frame.telling;
    for (const CountRun* run : without) {
        std::fill(telling.begin() + static_cast<std::ptrdiff_t>(run->first),
                  telling.begin() + static_cast<std::ptrdiff_t>(run->last) + 1, false);
    }
    Baseline baseline;
    for (size_t i = 0; i < frame.intervals; ++i) {
        if (telling[i]) {
            baseline.counts.push_back(all[i]);
            baseline.sum += all[i];
        }
    }
    return baseline;
}

// The variance of the errors in stretches of so many intervals, relative to their mean: 1 where each error
// comes by itself, more where they come several at a time. 0 without errors.
double SpreadOf(const Baseline& baseline, size_t length) {
    const size_t blocks = baseline.counts.size() / length;
    if (blocks < FEWEST_BLOCKS || baseline.sum <= 0.0) {
        return 0.0;
    }
    double sum = 0.0;
    double squares = 0.0;
    for (size_t block = 0; block < blocks; ++block) {
        double count = 0.0;
        for (size_t i = block * length; i < (block + 1) * length; ++i) {
            count += baseline.counts[i];
        }
        sum += count;
        squares += count * count;
    }
    const auto all = static_cast<double>(blocks);
    return sum > 0.0 ? (squares - sum * sum / all) / (all - 1.0) / (sum / all) : 0.0;
}

double ExtraOf(const CountRun& run, double rate) {
    return static_cast<double>(run.count) - rate * static_cast<double>(run.Length());
}

// Decides which runs of a series have too many errors.
class Judge {
public:
    Judge(const IntervalCounts& toJudge, const CountFrame& common)
        : counts(toJudge),
          frame(common),
          runs(Scan(toJudge, common.intervals).Runs()),
          isEvent(runs.size()) {}

    // What is found is left out of what is usual, until nothing more is found.
    std::vector<CountEvent> Events() {
        for (bool isNew = true; isNew;) {
            isNew = false;
            for (size_t i = 0; i < runs.size(); ++i) {
                if (!isEvent[i] && IsTooMany(i)) {
                    isEvent[i] = isNew = true;
                }
            }
        }
        const double rate = UsualFor(runs.size(), runs.size()).Rate();
        std::vector<CountEvent> events;
        for (size_t i = 0; i < runs.size(); ++i) {
            if (isEvent[i]) {
                events.push_back({runs[i], rate});
            }
        }
        std::sort(events.begin(), events.end(),
                  [](const CountEvent& a, const CountEvent& b) { return a.first < b.first; });
        return events;
    }

private:
    // What is usual without the events found, and without two runs more; runs.size() stands for none.
    Baseline UsualFor(size_t run, size_t other) const {
        std::vector<const CountRun*> without;
        for (size_t i = 0; i < runs.size(); ++i) {
            if (isEvent[i] || i == run || i == other) {
                without.push_back(&runs[i]);
            }
        }
        return BaselineOf(counts, frame, without);
    }

    // The other runs that are no events, most errors first.
    std::vector<size_t> Others(size_t run) const {
        std::vector<size_t> others;
        for (size_t i = 0; i < runs.size(); ++i) {
            if (i != run && !isEvent[i]) {
                others.push_back(i);
            }
        }
        std::sort(others.begin(), others.end(),
                  [&](size_t a, size_t b) { return runs[a].count > runs[b].count; });
        return others;
    }

    bool IsTooMany(size_t run) const {
        const std::vector<size_t> others = Others(run);
        // One other run does not make it usual that there are some; two do.
        const Baseline usual = UsualFor(run, others.empty() ? runs.size() : others.front());
        if (usual.counts.size() < FEWEST_FOR_EVENTS) {
            return false;
        }
        const double extra = ExtraOf(runs[run], usual.Rate());
        if (others.size() > 1 && ExtraOf(runs[others[1]], usual.Rate()) > AS_LARGE * extra) {
            return false;
        }
        const double family = std::max({FAMILY, SpreadOf(usual, 1), SpreadOf(usual, runs[run].Length())});
        const double chance = LogChance(static_cast<double>(runs[run].count) / family, usual.sum / family,
                                        static_cast<double>(runs[run].Length()), usual.Intervals());
        return chance + std::log(frame.looks) < std::log(CHANCE);
    }

    const IntervalCounts& counts;
    const CountFrame& frame;
    std::vector<CountRun> runs;  // the most telling one first
    std::vector<bool> isEvent;   // by run
};

}  // namespace

std::vector<CountEvent> FindCountEvents(const IntervalCounts& counts, const CountFrame& frame) {
    return counts.empty() ? std::vector<CountEvent>() : Judge(counts, frame).Events();
}

}  // namespace explain
