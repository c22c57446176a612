// The errors of a range: what was seen of each type, and whose they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/analysis.h"
#include "explain/errors/error_event.h"

namespace explain {

// A point of the error-code graphs that counted errors of a type in the range.
struct ErrorPoint {
    std::string point;
    int64_t count = 0;
    std::vector<ErrorEvent> events;  // that reach into the range, in the order of time
};

// What was seen of one type before anything was explained; for types that occurred in the range.
struct ErrorLook {
    ErrorType type;
    ErrorCounts counts;              // of the range, all points together: each counts what passes through it
    int64_t count = 0;               // their sum
    std::vector<ErrorPoint> points;  // with errors in the range: most errors first
};

// A point that takes part in an event of errors, with its part of the extra errors at the top.
struct ErrorShare {
    std::string point;
    std::string graph;  // one that has it
    std::string advice;
    double share = 0.0;             // own share, 0 to 1: what is not of the points below it
    int64_t count = 0;              // errors during the whole event
    double extra = 0.0;             // of them, more than usual
    int64_t since = 0;              // its own event's begin, UTC
    bool isOngoing = false;         // its own event
    std::optional<ErrorType> type;  // under which the point itself counts them, where that is another one
    std::vector<size_t> below;      // positions of the next points that take part
};

// One event of errors of a type, over all points that hang together, and whose errors they are.
struct ErrorAnalysis {
    ErrorType type;
    std::vector<std::string> entries;  // the topmost points that count them: most extra errors first
    std::string graph;                 // of the first one
    ErrorEvent event;                  // of the first one; from the first begin to the last end of all points
    std::vector<ErrorShare> points;    // ranked by share, the largest first; never empty
    Certainty certainty = Certainty::UNSURE;
};

}  // namespace explain
