// In which zone data tables are named.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

// A data table: the start that its name tells as local time, counted as if that were UTC, and the times of
// its first and its last row.
struct TableSpan {
    struct Rows {
        int64_t start = 0;
        int64_t end = 0;
    };
    int64_t named = 0;
    Rows rows;
};

// The zone, in seconds east of UTC, of the names of the tables, which are in the order of time; `asked`
// itself, if there is one, unless the rows contradict it: each lies behind the start of its table and before
// the next table's. None when no whole hour fits.
std::optional<int64_t> ZoneOfTables(const std::vector<TableSpan>& tables,
                                    std::optional<int64_t> asked = std::nullopt);

// That the names change their zone by an hour, as over a change of daylight saving time.
struct ZoneChange {
    int64_t before = 0;  // seconds east of UTC
    int64_t after = 0;
    size_t first = 0;  // position of the first table that is named in the latter
};

// The change with which the rows agree as ZoneOfTables() has it, of tables of which no one zone fits the
// names; none: there is no such change either.
std::optional<ZoneChange> ZoneChangeOf(const std::vector<TableSpan>& tables);
