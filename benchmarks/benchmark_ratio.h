// Two ways to do a thing, timed in turns in one run.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>

// Runs `ours` and `bare` in turns, changing which comes first, and reports the median time of each in
// milliseconds and the ratio of the two medians. What a machine's load does to one it does to the other.
void MeasureRatio(benchmark::State& state, const std::function<void()>& ours,
                  const std::function<void()>& bare);
