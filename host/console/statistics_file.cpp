#include "host/console/statistics_file.h"

#include <algorithm>

#include "agent/agent_storage.h"
#include "host/process/settings.h"

namespace zorv {
namespace {
constexpr size_t MOST_TABLES = 100;  // that are looked at for one hour

// Whatever it is, no more than a name.
std::string Quoted(const std::string& table) {
    std::string quoted = "\"";
    for (const char letter : table) {
        quoted.append(letter == '"' ? 2 : 1, letter);
    }
    return quoted + '"';
}

std::string TextOf(sqlite3_stmt* row) {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(row, 0));
    return text == nullptr ? "" : text;
}
}  // namespace

void StatisticsFile::Close::operator()(sqlite3* connection) const {
    sqlite3_close(connection);
}

StatisticsFile::StatisticsFile() {
    sqlite3* opened = nullptr;
    const std::string path = RootedPath(LUMO_DATABASE_FILE);
    const int result = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
    connection.reset(opened);
    if (result != SQLITE_OK) {
        problem = sqlite3_errmsg(opened);
        return;
    }
    Query("SELECT tablename FROM table_flag ORDER BY reporttime",
          [this](sqlite3_stmt* row) { tables.push_back(TextOf(row)); });
}

void StatisticsFile::Query(const std::string& sql, const std::function<void(sqlite3_stmt*)>& take) {
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(prepared, &sqlite3_finalize);
    int step = prepared == nullptr ? SQLITE_ERROR : sqlite3_step(prepared);
    for (; step == SQLITE_ROW; step = sqlite3_step(prepared)) {
        take(prepared);
    }
    if (step != SQLITE_DONE && problem.empty()) {
        problem = sqlite3_errmsg(connection.get());
    }
}

std::optional<int64_t> StatisticsFile::EndOf(const std::string& table, const char* order) {
    std::optional<int64_t> end;
    Query("SELECT curtime FROM " + Quoted(table) + " ORDER BY curtime " + order + " LIMIT 1",
          [&end](sqlite3_stmt* row) { end = sqlite3_column_int64(row, 0); });
    return end;
}

std::optional<TimeRange> StatisticsFile::Rows() {
    std::optional<int64_t> oldest;
    for (auto table = tables.begin(); !oldest && problem.empty() && table != tables.end(); ++table) {
        oldest = EndOf(*table, "ASC");
    }
    std::optional<int64_t> newest;
    for (auto table = tables.rbegin(); !newest && problem.empty() && table != tables.rend(); ++table) {
        newest = EndOf(*table, "DESC");
    }
    return oldest && newest ? std::optional<TimeRange>({*oldest, *newest}) : std::nullopt;
}

Coverage StatisticsFile::CoverageOf(const TimeRange& range) {
    CoverageCount count(range);
    const size_t least = tables.size() - std::min(tables.size(), MOST_TABLES);
    bool isBefore = false;
    for (size_t number = tables.size(); number > least && !isBefore && problem.empty(); --number) {
        int64_t series = 0;
        bool hasRows = false;
        const std::string& table = tables[number - 1];
        Query("SELECT curtime, locateid FROM " + Quoted(table) + " WHERE curtime BETWEEN " +
                  std::to_string(range.start) + " AND " + std::to_string(range.end) +
                  " ORDER BY locateid, curtime",
              [&](sqlite3_stmt* row) {
                  if (sqlite3_column_int64(row, 1) != series) {
                      count.EndSeries();
                  }
                  series = sqlite3_column_int64(row, 1);
                  hasRows = true;
                  count.Add(sqlite3_column_int64(row, 0));
              });
        count.EndSeries();
        isBefore = !hasRows && EndOf(table, "DESC").value_or(range.end) < range.start;
    }
    return count.Get();
}
}  // namespace zorv
