// Runs of intervals with more errors than what is usual explains. No I/O.
#pragma once

#include <cstddef>
#include <vector>

#include "explain/errors/count_runs.h"

namespace explain {

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

}  // namespace explain
