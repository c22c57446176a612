// The event: when a point was slow, and the baseline before it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace explain {

// One interval of a trace point.
struct Sample {
    int64_t time = 0;       // UTC seconds since 1970
    double delay = 0.0;     // average, microseconds
    double requests = 0.0;  // accepted
};
using Samples = std::vector<Sample>;  // of ascending times

// A run of high samples. Times of its first and last one, UTC, both included.
struct Event {
    int64_t start = 0;
    int64_t end = 0;
    int64_t peakTime = 0;
    double peakDelay = 0.0;
    double peakDeviations = 0.0;  // from what is usual over the whole range
    size_t count = 0;             // of high samples

    bool Holds(int64_t time) const { return time >= start && time <= end; }
};

// The fewest samples that make a baseline, and of which one can lie beyond three deviations of all.
constexpr size_t FEWEST_BASELINE = 5;
constexpr size_t FEWEST_FOR_SIGMA = 11;

// How many scales above the usual a sample must lie to be high.
constexpr double HIGH = 5.0;

// All runs of high samples of a series, in the order of time. Two runs with one other sample between them are
// one.
std::vector<Event> FindEvents(const Samples& samples);

// The event at a given time: the run that holds it or, without one, the single sample closest to it. None for
// an empty series.
std::optional<Event> EventAt(const Samples& samples, const std::vector<Event>& runs, int64_t time);

// The samples from one time until another, the last one not included.
Samples SamplesBetween(const Samples& samples, int64_t from, int64_t until);

// The samples before the event; and those of the event.
Samples BaselineOf(const Samples& samples, const Event& event);
Samples SamplesIn(const Samples& samples, const Event& event);

std::vector<double> DelaysOf(const Samples& samples);
std::vector<double> RequestsOf(const Samples& samples);

}  // namespace explain
