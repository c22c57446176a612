// The errors of a range: what was seen of each type, and whose they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/analysis.h"
#include "explain/errors/error_event.h"
#include "explain/errors/error_store.h"
#include "explain/finding/sample_store.h"

namespace explain {

// The type that a column, below ERROR_COLUMNS, counts.
ErrorType TypeOf(size_t column);

// A point of the error-code graphs that counted errors of a type in the range.
struct ErrorPoint {
    std::string point;
    int64_t count = 0;               // in the range
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
    double share = 0.0;  // own share, 0 to 1: what is not of the points below it
    int64_t count = 0;   // errors during the whole event
    double extra = 0.0;  // of them, more than usual; above 0
    int64_t since = 0;   // its own first interval with too many, UTC
    bool isOngoing = false;
    std::optional<ErrorType> type;  // under which the point itself counts them, where that is another one
    ErrorCounts counts;             // in the range, of that type
    std::vector<size_t> below;      // positions of those of its points that are next below it
};

// One event of errors of a type, over all points that hang together, and whose errors they are.
struct ErrorAnalysis {
    ErrorType type;
    std::vector<size_t> entries;  // the topmost points, by position: most extra errors first
    ErrorEvent event;             // from the first begin to the last end; the counts are of the first entry
    std::vector<ErrorShare> points;  // by share, the largest first; never empty
    Certainty certainty = Certainty::UNSURE;

    const ErrorShare& Entry() const { return points[entries.front()]; }
};

// All errors of a range.
struct Errors {
    bool areLookedAt = false;             // there are graphs of error codes
    std::vector<ErrorLook> looks;         // in the order of the columns
    std::vector<ErrorAnalysis> analyses;  // what still goes on first, then the latest
};

// Looks at the errors of all points of the graphs, and divides those of each event. `store` tells what is
// loaded and which intervals have rows: of the points that it was asked for; `errors` belongs to it. Blocks
// on the database. Throws what the reading of the graphs and LoadErrors() throw.
Errors SurveyErrors(const Question& question, SampleStore& store, ErrorStore& errors);

}  // namespace explain
