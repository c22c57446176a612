// The catalogue of data tables: one table per reporting period, its start time in its name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fault_common/fault_log.h"
#include "fault_database/fault_database.h"

// Length of the producer's prefix before the start time.
constexpr size_t FAULT_TABLE_PREFIX_LENGTH = 10;

// The catalogue's names, in the database's own order, as `callback` collects them. Empty when there are none
// or the query failed.
std::vector<std::string> FaultListTables(FaultRowsCallBack callback);

// What such a callback does: appends every cell to `texts`. Returns 0; 1, logged as of `site`, when there is
// no result at all. Throws std::invalid_argument for a null cell.
uint32_t FaultCollectTexts(char** result, int32_t rowCount, int32_t columnCount,
                           std::vector<std::string>& texts, const FaultLogSite& site);

// Throws std::invalid_argument when there are rows of fewer columns than `needed`. Table names go into
// statements as they are, so what comes back may be the answer to something else.
void FaultCheckColumns(int32_t rowCount, int32_t columnCount, int32_t needed);

// The start time that a table's name tells, compact local time as a number. Throws std::out_of_range when the
// name is shorter than the prefix, and the standard conversion errors when no number follows it.
int64_t FaultTableTime(const std::string& tableName);

// Positions in a list of tables, from `first` up to but not including `end`.
struct FaultTableCover {
    int32_t first = 0;
    int32_t end = 0;
};

// The tables that cover the times from `start` to `end`, given the start time of each. A table covers the
// time from its own start to the next table's, the last one all that follows, and the first one all before it
// as well when the range reaches into the tables. None, and a line logged as of `site`, when the range ends
// before the first table or the times contradict each other.
FaultTableCover FaultCoverTables(const std::vector<int64_t>& times, int64_t start, int64_t end,
                                 const FaultLogSite& site);
