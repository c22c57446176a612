// Runs of intervals with more errors than what is usual explains. No I/O.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace explain {

// The errors of one point and type, by the number of the interval: ascending, counts above 0.
struct IntervalCount {
    size_t interval = 0;
    int64_t count = 0;
};
using IntervalCounts = std::vector<IntervalCount>;

// A run, from its first interval with errors to its last one.
struct CountRun {
    size_t first = 0;  // numbers of intervals
    size_t last = 0;
    int64_t count = 0;

    size_t Length() const { return last - first + 1; }
};

// What a series is compared with.
struct CountFrame {
    size_t intervals = 0;       // that have rows
    std::vector<bool> telling;  // by interval: whether it may tell what is usual
    double looks = 1.0;         // runs that are looked at, over all series: some of them are rare by chance
};

// A run with too many errors, and the rate of the intervals that tell what is usual.
struct CountEvent : CountRun {
    double rate = 0.0;  // errors an interval
};

// The runs with too many errors, in the order of time: see docs/explain.md for the rule.
std::vector<CountEvent> FindCountEvents(const IntervalCounts& counts, const CountFrame& frame);

// The natural logarithm of the probability that, of `count` + `others` errors that fall on intervals alike,
// `count` or more fall on `length` intervals and not on the `rest`. The counts need not be whole. 0 where
// `count` is no more than about what is expected.
double LogChance(double count, double others, double length, double rest);

}  // namespace explain
