// What the data tables tell of the zone in which they are named.
#pragma once

#include <vector>

#include "text/table_zone.h"

namespace explain {

// The data tables that have rows, in the order of the catalogue: all, or some from both ends of many. Blocks
// on the database, which has no index for this. Empty when it cannot be read.
std::vector<TableSpan> TableSpans();

}  // namespace explain
