// Rows that a point should have, and that are not there.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "explain/analysis/graph_world.h"

namespace explain {

// Fills `gaps` and `complete` of the points below the one at the top that have no row in some of its
// intervals, but rows in most: their requests and delays there are estimated from their rows next to it, by
// what the requests and the delay of the point at the top were then and there. Without that, what such a
// point did would be taken for its callers' own time. Where no row is near, nothing is estimated. `rows` are
// those of the database: an interval in which nobody came has one. Observation points stay as they are.
void FillGaps(const std::map<std::string, PointData>& rows, GraphWorld& world);

// Whether a point has so many rows in these intervals that it should have them in the others: in more than a
// quarter.
bool IsRegular(size_t intervals, size_t gaps);

}  // namespace explain
