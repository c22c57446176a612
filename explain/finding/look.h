// What was seen of a point at which hosts enter, before anything is explained.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "explain/finding/event.h"

namespace explain {

// Why the detector, which looks at a range alone, flags no sample of an event.
enum class Silence {
    NONE,      // it does flag one
    FEW,       // fewer than FEWEST_FOR_SIGMA samples
    FILLED,    // events fill so much of the range that nothing can reach three deviations
    OUTSHONE,  // another event in the range is larger
    SMALL      // the event does not reach three deviations of the range
};

struct Look {
    std::string point;
    Finding finding;            // of all that was loaded: the range, and what was before it
    std::vector<Event> events;  // those that reach into the range, in the order of time
    Samples rows;               // of the range
    size_t firstRow = 0;        // position of the first of them in what was looked at
    size_t samples = 0;         // in the range
    size_t samplesInEvents = 0;
    std::vector<size_t> flagged;   // positions of samples that the detector flags, ascending
    std::optional<Event> highest;  // the sample of the range that lies highest above the usual

    // Of the detector, on an event of the series.
    Silence SilenceOn(const Event& event) const;
};

// Looks at `samples`, of which those outside the range only tell what is usual; with `baseline`, those of
// that stretch alone do. No I/O.
Look LookAt(const std::string& point, const Samples& samples, const Window& range,
            const std::optional<Window>& baseline);

// The order in which events are explained: what still goes on, then the latest first.
std::vector<Event> ByUrgency(std::vector<Event> events);

}  // namespace explain
