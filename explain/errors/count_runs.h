// The runs of a series of errors that stand out most, before it is asked whether they are too many.
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

// Positions in the counts.
struct Stretch {
    size_t first;
    size_t end;
};

// Of all runs of a stretch of the counts, which is `intervals` long, those that a rate of their own explains
// best against the rate of the rest: the most telling one first, at most 16; none overlaps another.
std::vector<CountRun> LikeliestRuns(const IntervalCounts& counts, const Stretch& stretch, size_t intervals);

}  // namespace explain
