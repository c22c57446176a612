// What the statistics database holds, for an operator who has to know what answers rest on.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/basis/coverage.h"
#include "host/process/guarded_database.h"

namespace zorv {
// A connection of its own to the database under the root, for one look. All functions block on the file, try
// once, and throw DatabaseError.
class StatisticsFile {
public:
    StatisticsFile();

    // The data tables' names as the catalogue has them, the oldest first.
    const std::vector<std::string>& Tables() const { return tables; }

    // The oldest and the newest row; none: there is no row.
    std::optional<TimeRange> Rows();

    // Of the rows of all points.
    Coverage CoverageOf(const TimeRange& range);

private:
    // The rows of a table in the range. Returns how many there are.
    size_t Add(const std::string& table, const TimeRange& range, CoverageCount& count);

    // The first or, with "desc", the last time in a table.
    std::optional<int64_t> EndOf(const std::string& table, const char* order);

    GuardedDatabase database;
    std::vector<std::string> tables;
};
}  // namespace zorv
