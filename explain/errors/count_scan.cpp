#include "explain/errors/count_scan.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "explain/errors/count_chance.h"
#include "explain/finding/series.h"

namespace explain {
namespace {

constexpr double FAMILY = 4.0;          // errors of one cause, a request that is tried three times more
constexpr double CHANCE = 0.001;        // that a range without a cause has a run which is told
constexpr size_t MOST_CANDIDATES = 64;  // likewise, with their parts
constexpr double AS_LARGE = 0.25;       // of a run's extra errors: another one with more is as large
constexpr size_t FEWEST_BLOCKS = FEWEST_FOR_EVENTS;

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

// The variance of the errors in stretches of so many of these intervals, relative to their mean: 1 where each
// error comes by itself, more where they come several at a time. 0 without errors, or for too few stretches.
double SpreadOf(const std::vector<double>& counts, size_t length) {
    const size_t blocks = counts.size() / length;
    double sum = 0.0;
    double squares = 0.0;
    for (size_t block = 0; block < blocks; ++block) {
        const auto begin = counts.begin() + static_cast<std::ptrdiff_t>(block * length);
        const double count = std::accumulate(begin, begin + static_cast<std::ptrdiff_t>(length), 0.0);
        sum += count;
        squares += count * count;
    }
    const auto all = static_cast<double>(blocks);
    return blocks >= FEWEST_BLOCKS && sum > 0.0 ? (squares - sum * sum / all) / (all - 1.0) / (sum / all)
                                                : 0.0;
}

// The same of stretches that may be longer than there are enough of: what varies slowly spreads as they grow.
double SpreadOfLonger(const std::vector<double>& counts, size_t length) {
    const size_t most = std::max<size_t>(1, std::min(length, counts.size() / FEWEST_BLOCKS));
    return SpreadOf(counts, most) * static_cast<double>(length) / static_cast<double>(most);
}

double ExtraOf(const CountRun& run, double rate) {
    return static_cast<double>(run.count) - rate * static_cast<double>(run.Length());
}

// Decides which runs of a series have too many errors.
class Judge {
public:
    Judge(const IntervalCounts& toJudge, const CountFrame& common) : counts(toJudge), frame(common) {
        Add(LikeliestRuns(counts, {0, counts.size()}, frame.intervals));
    }

    // What is found is left out of what is usual, until nothing more is found. Then a part of what is too
    // uneven to be told as a whole may be.
    std::vector<CountEvent> Events() {
        while (FindNew() || SplitOthers()) {
        }
        const double rate = UsualFor(NONE, NONE).Rate();
        std::vector<CountEvent> events;
        for (const Candidate& one : runs) {
            if (one.isEvent) {
                events.push_back({one.run, rate});
            }
        }
        std::sort(events.begin(), events.end(),
                  [](const CountEvent& a, const CountEvent& b) { return a.first < b.first; });
        return events;
    }

private:
    static constexpr size_t NONE = SIZE_MAX;

    struct Candidate {
        CountRun run;
        bool isEvent = false;
        bool isWhole = false;  // cannot be told as a part either
    };

    void Add(const std::vector<CountRun>& found) {
        for (const CountRun& run : found) {
            const double least = LogChance(static_cast<double>(run.count) / FAMILY, 0.0, 1.0,
                                           static_cast<double>(frame.intervals - 1));
            runs.push_back({run, false, !IsRare(least)});
        }
    }

    bool IsRare(double logChance) const { return logChance + std::log(frame.looks) < std::log(CHANCE); }

    bool FindNew() {
        bool isNew = false;
        for (size_t i = 0; i < runs.size(); ++i) {
            if (!runs[i].isEvent && !runs[i].isWhole && IsTooMany(i)) {
                runs[i].isEvent = isNew = true;
            }
        }
        return isNew;
    }

    // Puts its parts in the place of each run that is no event.
    bool SplitOthers() {
        const std::vector<Candidate> before = std::move(runs);
        runs.clear();
        bool isNew = false;
        for (const Candidate& one : before) {
            std::vector<CountRun> parts;
            if (!one.isEvent && !one.isWhole && before.size() <= MOST_CANDIDATES) {
                parts = LikeliestRuns(counts, PositionsOf(one.run), one.run.Length());
            }
            isNew = isNew || !parts.empty();
            Add(parts);
            if (parts.empty()) {
                runs.push_back({one.run, one.isEvent, true});
            }
        }
        return isNew;
    }

    Stretch PositionsOf(const CountRun& run) const {
        const auto position = [this](size_t interval) {
            const auto found =
                std::lower_bound(counts.begin(), counts.end(), interval,
                                 [](const IntervalCount& one, size_t value) { return one.interval < value; });
            return static_cast<size_t>(found - counts.begin());
        };
        return {position(run.first), position(run.last + 1)};
    }

    // What is usual without the events found, and without two runs more.
    Baseline UsualFor(size_t run, size_t other) const {
        std::vector<const CountRun*> without;
        for (size_t i = 0; i < runs.size(); ++i) {
            if (runs[i].isEvent || i == run || i == other) {
                without.push_back(&runs[i].run);
            }
        }
        return BaselineOf(counts, frame, without);
    }

    // Another run, and the most extra errors that it has in so many intervals.
    struct Rival {
        size_t run = NONE;
        double extra = 0.0;
    };

    // The other runs that are no events, most extra errors in `length` intervals first.
    std::vector<Rival> Rivals(size_t run, size_t length, double rate) const {
        std::vector<Rival> rivals;
        for (size_t i = 0; i < runs.size(); ++i) {
            if (i != run && !runs[i].isEvent) {
                rivals.push_back({i, MostIn(runs[i].run, length) - rate * static_cast<double>(length)});
            }
        }
        std::sort(rivals.begin(), rivals.end(),
                  [](const Rival& a, const Rival& b) { return a.extra > b.extra; });
        return rivals;
    }

    // Errors in the worst `length` intervals of a run.
    double MostIn(const CountRun& run, size_t length) const {
        const Stretch stretch = PositionsOf(run);
        int64_t most = 0;
        int64_t sum = 0;
        for (size_t from = stretch.first, i = stretch.first; i < stretch.end; ++i) {
            sum += counts[i].count;
            while (counts[i].interval - counts[from].interval >= length) {
                sum -= counts[from++].count;
            }
            most = std::max(most, sum);
        }
        return static_cast<double>(most);
    }

    // The spread within the run counts as well, so that some bursts close to each other do not pass for as
    // many single errors.
    double FamilyOf(const CountRun& run, const Baseline& usual) const {
        std::vector<double> inside(run.Length(), 0.0);
        const Stretch stretch = PositionsOf(run);
        for (size_t i = stretch.first; i < stretch.end; ++i) {
            inside[counts[i].interval - run.first] = static_cast<double>(counts[i].count);
        }
        return std::max({FAMILY, SpreadOf(usual.counts, 1), SpreadOfLonger(usual.counts, run.Length()),
                         SpreadOf(inside, 1)});
    }

    bool IsTooMany(size_t candidate) const {
        const CountRun& run = runs[candidate].run;
        const double rate = UsualFor(candidate, NONE).Rate();
        const std::vector<Rival> rivals = Rivals(candidate, run.Length(), rate);
        // One other run does not make it usual that there are some; two do.
        const Baseline usual = UsualFor(candidate, rivals.empty() ? NONE : rivals.front().run);
        if (usual.counts.size() < FEWEST_FOR_EVENTS ||
            (rivals.size() > 1 && rivals[1].extra > AS_LARGE * ExtraOf(run, rate))) {
            return false;
        }
        const double family = FamilyOf(run, usual);
        return IsRare(LogChance(static_cast<double>(run.count) / family, usual.sum / family,
                                static_cast<double>(run.Length()), usual.Intervals()));
    }

    const IntervalCounts& counts;
    const CountFrame& frame;
    std::vector<Candidate> runs;
};

}  // namespace

std::vector<CountEvent> FindCountEvents(const IntervalCounts& counts, const CountFrame& frame) {
    return counts.empty() ? std::vector<CountEvent>() : Judge(counts, frame).Events();
}

}  // namespace explain
