// Why something could not be told, or is no answer: as data. explain/wording.h has the sentences.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace explain {

enum class ReasonKind {
    // What limits the evidence of a point, in the order in which it is told.
    MISSING_INTERVALS,    // so many
    ESTIMATED_INTERVALS,  // so many, of the event
    OBSERVATION_POINT,    // which takes no part
    CONSTANT_DELAY,
    NO_ROWS_IN_EVENT,
    NO_ROWS,
    FEW_BEFORE_EVENT,  // samples
    FEW_FOR_SIGMA,     // samples
    CLOCK_JUMPED,
    FEW_IN_COMMON,  // intervals, with the point above

    // Why there is no point to name.
    NO_HIGH_SAMPLE,
    NO_REQUESTS,
    NO_REQUEST_COUNTS,  // an observation point at the top
    FEW_IN_BASELINE,    // samples, in the one that was named

    // Why nothing could be looked at.
    NO_GRAPH,
    NO_POINT_IN_GRAPH,
    NO_ROWS_OF_POINT,
    NO_ROWS_OF_DETECTOR,
    FEW_ROWS_OF_DETECTOR,  // samples
    NO_ROWS_AT_ALL,
    OUTSIDE_STATISTICS,  // which go from `from` until `until`
    ANOTHER_ZONE,        // `zoneOffset` is that of the tables, or of those of the range
    UNREADABLE_POINT,
    UNREADABLE_DATABASE,
    UNREADABLE_HEALINGS,
    NO_ERROR_COUNTS,  // no columns for them
    BAD_CONFIGURATION,
    BAD_VALUE
};

struct Reason {
    ReasonKind kind;
    size_t count = 0;          // of what the kind counts
    size_t needed = 0;         // the fewest that would do
    std::string subject = {};  // the point, graph or fault that the kind is about
    std::string graph = {};    // of the point
    int64_t from = 0;          // UTC
    int64_t until = 0;
    int64_t zoneOffset = 0;                 // seconds east of UTC
    std::vector<std::string> known = {};    // what the subject could have been
    std::optional<int64_t> otherZone = {};  // as zoneOffset, of other tables
};

// Thrown when there is nothing to work on: no such graph, no such point in it, no rows, no database.
class NoData : public std::exception {
public:
    explicit NoData(Reason why) : reason(std::move(why)) {}
    const Reason& Why() const { return reason; }

private:
    Reason reason;
};

}  // namespace explain
