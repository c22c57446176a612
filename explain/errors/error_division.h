// Which events of errors hang together, and whose errors they are. No I/O.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "explain/errors/count_scan.h"
#include "explain/errors/error_graph.h"
#include "explain/errors/error_store.h"

namespace explain {

// What was found of a point under one column.
struct ErrorSeries {
    IntervalCounts counts;
    std::vector<CountEvent> events;  // in the order of time
};

// By the name under which errors are counted, and by column.
using ErrorFindings = std::map<std::string, std::array<ErrorSeries, ERROR_COLUMNS>>;

// A point in an incident.
struct IncidentPoint {
    size_t node = 0;    // of the graph
    size_t column = 0;  // under which it counts them
    size_t first = 0;   // intervals
    size_t last = 0;
    int64_t count = 0;          // errors of its events in the incident
    double extra = 0.0;         // of them, more than usual
    double share = 0.0;         // own share of the extra errors at the top
    std::vector<size_t> below;  // positions among the points: the next ones that take part
};

// Events at the same time of points that stand below each other.
struct Incident {
    std::vector<IncidentPoint> points;  // by share, the largest first
    std::vector<size_t> entries;        // positions of the topmost points, most extra errors first
};

// All incidents of the type of a column, in the order of time. A point whose errors reach the hosts under
// another type and that has no events under this one takes part with those of the first other column that has
// some, from the last one down.
//
// Division is that of the delay budget, see DivideBudget(): a point claims its extra errors relative to those
// of the point above it, and what is left is the upper one's own; points that follow their parent claim
// before their siblings. Modules count nothing and are looked through, as are points without an event. Where
// there are several topmost points, each brings its extra errors.
std::vector<Incident> DivideErrors(const ErrorGraph& graph, const ErrorFindings& findings, size_t column);

}  // namespace explain
