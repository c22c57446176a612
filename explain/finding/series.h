// The samples of a trace point, and stretches of time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace explain {

// One interval of a trace point.
struct Sample {
    int64_t time = 0;       // UTC seconds since 1970
    double delay = 0.0;     // average, microseconds
    double requests = 0.0;  // accepted
};
using Samples = std::vector<Sample>;  // of ascending times

// A stretch of time, UTC seconds, both ends included.
struct Window {
    int64_t start = 0;
    int64_t end = 0;

    bool Holds(int64_t time) const { return time >= start && time <= end; }
};

// The fewest samples that make a baseline, and of which events are told.
constexpr size_t FEWEST_BASELINE = 5;
constexpr size_t FEWEST_FOR_EVENTS = 11;

// The samples of a stretch of time, as positions: the first one, and the one behind the last.
std::pair<size_t, size_t> PositionsIn(const Samples& samples, const Window& window);

// What says something of the delay: an interval in which nobody came, without requests and without delay,
// does not. All, where no interval counts requests.
Samples WithoutIdle(const Samples& samples);

std::vector<double> DelaysOf(const Samples& samples);
std::vector<double> RequestsOf(const Samples& samples);

}  // namespace explain
