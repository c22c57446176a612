// In which zone the data tables are named.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "explain/finding/event.h"

namespace explain {

// A data table: the start that its name tells as local time, counted as if that were UTC, and the times of
// its rows.
struct TableSpan {
    int64_t named = 0;
    Window rows;
};

// The data tables that have rows, in the order of the catalogue: all, or some from both ends of many. Blocks
// on the database, which has no index for this. Empty when it cannot be read.
std::vector<TableSpan> TableSpans();

// The zone, in seconds east of UTC, of the names of the tables; `zoneOffset` itself unless the rows
// contradict it: each lies behind the start of its table and before the next table's. None when no whole hour
// fits.
std::optional<int64_t> ZoneOfTables(const std::vector<TableSpan>& tables, int64_t zoneOffset);

}  // namespace explain
