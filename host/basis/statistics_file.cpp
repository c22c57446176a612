#include "host/basis/statistics_file.h"

#include <algorithm>

#include "agent/agent_storage.h"
#include "host/process/settings.h"

namespace zorv {
namespace {
constexpr size_t MOST_TABLES = 100;  // that are looked at for one hour
constexpr const char* LETTERS = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

// As part of a statement.
const std::string& Checked(const std::string& table) {
    if (table.empty() || table.find_first_not_of(LETTERS) != std::string::npos) {
        throw DatabaseError("a table's name is '" + table + "'");
    }
    return table;
}
}  // namespace

StatisticsFile::StatisticsFile() : database(RootedPath(LUMO_DATABASE_FILE)) {
    database.Read("tablename", "table_flag", "order by reporttime", [this](sqlite3_stmt* row) {
        const auto* const name = reinterpret_cast<const char*>(sqlite3_column_text(row, 0));
        tables.emplace_back(name == nullptr ? "" : name);
    });
}

std::optional<int64_t> StatisticsFile::EndOf(const std::string& table, const char* order) {
    std::optional<int64_t> end;
    database.Read("curtime", Checked(table), std::string("order by curtime ") + order + " limit 1",
                  [&end](sqlite3_stmt* row) { end = sqlite3_column_int64(row, 0); });
    return end;
}

std::optional<TimeRange> StatisticsFile::Rows() {
    std::optional<int64_t> oldest;
    for (auto table = tables.begin(); !oldest && table != tables.end(); ++table) {
        oldest = EndOf(*table, "asc");
    }
    std::optional<int64_t> newest;
    for (auto table = tables.rbegin(); !newest && table != tables.rend(); ++table) {
        newest = EndOf(*table, "desc");
    }
    return oldest && newest ? std::optional<TimeRange>({*oldest, *newest}) : std::nullopt;
}

size_t StatisticsFile::Add(const std::string& table, const TimeRange& range, CoverageCount& count) {
    size_t rows = 0;
    int64_t point = 0;
    database.Read("curtime, locateid", Checked(table),
                  "where curtime >= " + std::to_string(range.start) +
                      " and curtime <= " + std::to_string(range.end) + " order by locateid",
                  [&](sqlite3_stmt* row) {
                      const int64_t next = sqlite3_column_int64(row, 1);
                      if (next != point) {
                          count.EndSeries();
                      }
                      point = next;
                      count.Add(sqlite3_column_int64(row, 0));
                      ++rows;
                  });
    count.EndSeries();
    return rows;
}

Coverage StatisticsFile::CoverageOf(const TimeRange& range) {
    CoverageCount count(range);
    const size_t least = tables.size() - std::min(tables.size(), MOST_TABLES);
    bool isBefore = false;
    for (size_t number = tables.size(); number > least && !isBefore; --number) {
        const std::string& table = tables[number - 1];
        isBefore = Add(table, range, count) == 0 && EndOf(table, "desc").value_or(range.end) < range.start;
    }
    return count.Get();
}
}  // namespace zorv
