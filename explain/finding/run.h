// Runs of high values in a series of deviations.
#pragma once

#include <cstddef>
#include <vector>

namespace explain {

constexpr size_t GAP = 1;  // values within a run that are not high

// First and last positions.
struct Run {
    size_t first = 0;
    size_t last = 0;
};

// Runs of values above `least`, with at most `gap` others between two of them; ascending.
std::vector<Run> RunsAbove(const std::vector<double>& values, double least, size_t gap = GAP);

// The same runs, as far as they reach: each is widened to where the sum of what its neighbours lie above half
// of its own height (its median) is largest, but not into the next one. Of a change in noise this is the
// likeliest begin and end. What is far above its noise has no such neighbours and stays as it is.
// `deviations` are from what is usual.
std::vector<Run> Widened(const std::vector<Run>& runs, const std::vector<double>& deviations);

}  // namespace explain
