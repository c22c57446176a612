// Two ways to do a thing, timed in turns in one run; and the memory that one takes.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>

// Runs `ours` and `bare` in turns, changing which comes first, and reports the median processor time that the
// thread took for each, in milliseconds, and the ratio of the two medians. Waiting does not count, be it for
// other processes or for a disk.
void MeasureRatio(benchmark::State& state, const std::function<void()>& ours,
                  const std::function<void()>& bare);

// How far the process's resident memory rises during `work`, in bytes: the kernel's own peak, whoever takes
// the memory, over what was resident before. Throws std::runtime_error where /proc does not tell.
double PeakMemory(const std::function<void()>& work);
