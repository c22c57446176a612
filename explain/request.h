// What is asked: of which time, which points, in which graphs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/analysis.h"
#include "explain/options.h"
#include "text/time_words.h"

namespace explain {

// A point, and when it is explained.
struct PointRequest {
    enum When {
        ALWAYS,    // it was named
        IF_THERE,  // it has rows: all at which hosts enter, when a time was named
        IF_SLOW    // the detector flags it, or it has an event
    };
    std::string name;
    When when = ALWAYS;
};

struct Request {
    // The graph that was named, or all that belong to the point. Throws cli::UsageError for a point of which
    // none is known.
    std::vector<std::string> GraphsOf(const std::string& point) const;

    Question question;
    std::vector<PointRequest> points;  // each once
    std::optional<std::string> graph;
    bool wantsErrors = true;     // of all points: no point was named
    bool isCrossChecked = true;  // its answers are
    bool isWatched = false;      // look after look: one that cannot tell of a point has failed
    int64_t zoneOffset = 0;      // seconds east of UTC, of all local times
};

// Reads the times and points of the command line; what was understood of words such as "-30m" is told on
// stderr. Throws cli::UsageError and TimeError.
Request RequestOf(const Options& options, const LocalClock& clock);

}  // namespace explain
