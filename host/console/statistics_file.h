// What the statistics database holds, for an operator who has to know what answers rest on.
#pragma once

#include <sqlite3.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/console/coverage.h"

namespace zorv {
// A connection of its own to the database under the root, for one look. Each call blocks for statements that
// are tried once; what they could not read is left out, and Problem() tells why.
class StatisticsFile {
public:
    StatisticsFile();

    // SQLite's reason for the first thing that failed; empty: nothing has.
    const std::string& Problem() const { return problem; }

    // The data tables' names as the catalogue has them, the oldest first.
    const std::vector<std::string>& Tables() const { return tables; }

    // The oldest and the newest row; none: there is no row.
    std::optional<TimeRange> Rows();

    // Of the rows of all points.
    Coverage CoverageOf(const TimeRange& range);

private:
    struct Close {
        void operator()(sqlite3* connection) const;
    };

    // Hands every row of a statement to the function.
    void Query(const std::string& sql, const std::function<void(sqlite3_stmt*)>& take);

    // The first or, with "desc", the last time in a table.
    std::optional<int64_t> EndOf(const std::string& table, const char* order);

    std::unique_ptr<sqlite3, Close> connection;
    std::string problem;
    std::vector<std::string> tables;
};
}  // namespace zorv
