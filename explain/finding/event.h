// Events: when a point was slow.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "explain/finding/series.h"
#include "explain/finding/statistics.h"

namespace explain {

// A run of high samples, from its first one to its last one.
struct Event : Window {
    size_t first = 0;  // positions in the series
    size_t last = 0;
    int64_t peakTime = 0;
    double peakDelay = 0.0;
    double peakDeviations = 0.0;  // from what is usual for the series
    size_t count = 0;             // of its samples that lie above what is usual, more than MILD
    bool isOngoing = false;       // at the last sample that was looked at
};

// How many scales above the usual a sample must lie: to belong to an event, and for a point to take part in
// one; to belong to an event that an operator names; to count in an event that is mild but lasts.
constexpr double HIGH = 5.0;
constexpr double WEAK = 2.0;
constexpr double MILD = 1.0;

// Samples in a row whose means are looked at, too.
constexpr size_t WINDOW = 4;
constexpr size_t WIDE_WINDOW = 16;

// The fewest samples of which one can lie beyond three deviations of all.
constexpr size_t FEWEST_FOR_SIGMA = 11;

// What was found in one series.
struct Finding {
    std::vector<Event> events;       // in the order of time
    Usual usual;                     // of all samples that are in no event
    std::vector<double> deviations;  // of each sample from it; empty for too few samples
    bool isCurved = false;           // most of the spread is a slow curve: see LEVEL_SECONDS
};

// All events of a series. What is usual is told by all samples that are in no event or, with `baseline`, by
// those of that stretch. None is ongoing yet.
Finding FindEvents(const Samples& samples, const std::optional<Window>& baseline = std::nullopt);

// The samples at the positions from `first` to `last` as an event, whatever they are. `samples` is here and
// below the series in which `finding` was found.
Event EventOf(const Samples& samples, const Finding& finding, size_t first, size_t last);

// The event at a time that an operator names: of `events` the one that holds it or is at most two samples
// away; else the highest sample that near, with what adjoins it above WEAK. `samples` must not be empty.
Event EventAt(const Samples& samples, const Finding& finding, const std::vector<Event>& events, int64_t time);

// Whether the event is still going on at the last sample before the position `end`: a last sample that is not
// high does not end it.
bool IsOngoing(const Event& event, size_t end);

}  // namespace explain
