#include "check/newest_day.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <unordered_map>

#include "host/process/guarded_database.h"
#include "text/printable.h"

namespace check {
using zorv::DatabaseError;
using zorv::GuardedDatabase;
namespace {

constexpr int64_t DAY = 86400;

std::string CellText(sqlite3_stmt* row, int column) {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return text == nullptr ? "" : text;
}

// A connection of its own each time: the steps that one may take are for a table. A producer may be writing.
void ReadRows(const std::string& path, const std::string& columns, const std::string& table,
              const std::string& order, const std::function<void(sqlite3_stmt*)>& take) {
    GuardedDatabase database(path);
    database.Run("pragma busy_timeout = 5000;");
    database.Read(columns, table, order, take);
}

// Oldest first.
std::vector<std::string> TableNames(const std::string& path) {
    std::vector<std::string> names;
    ReadRows(path, "tablename", "table_flag", "order by reporttime",
             [&](sqlite3_stmt* row) { names.push_back(CellText(row, 0)); });
    return names;
}

using PointIds = std::unordered_map<int64_t, std::vector<PointRow>*>;

PointIds ReadPoints(const std::string& path, PointStatistics& statistics) {
    PointIds ids;
    ReadRows(path, "locateid, locatename", "version_nmaps", "",
             [&](sqlite3_stmt* row) { ids[sqlite3_column_int64(row, 0)] = &statistics[CellText(row, 1)]; });
    return ids;
}

// Adds a table's rows that are not older than a day. Returns whether there were any, or it has no rows.
bool ReadTable(const std::string& path, const std::string& table, const PointIds& ids, int64_t& newest) {
    bool hasOld = false;
    bool hasNew = false;
    GuardedDatabase(path).Read("locateid, curtime, acceptnum, avgdelay", table, "", [&](sqlite3_stmt* row) {
        const int64_t time = sqlite3_column_int64(row, 1);
        newest = std::max(newest, time);
        const bool isOld = time <= newest - DAY;
        (isOld ? hasOld : hasNew) = true;
        const auto point = ids.find(sqlite3_column_int64(row, 0));
        if (!isOld && point != ids.end()) {
            point->second->push_back({time, sqlite3_column_int64(row, 2), sqlite3_column_int64(row, 3)});
        }
    });
    return hasNew || !hasOld;
}

// As producers name tables. The plug-in, too, puts the name into its statement as it is.
bool IsPlainName(const std::string& table) {
    const bool isPlain = std::all_of(table.begin(), table.end(), [](unsigned char letter) {
        return std::isalnum(letter) != 0 || letter == '_';
    });
    return isPlain && !table.empty() && std::isalpha(static_cast<unsigned char>(table[0])) != 0;
}

PointStatistics Read(const std::string& path) {
    PointStatistics statistics;
    const PointIds ids = ReadPoints(path, statistics);
    const std::vector<std::string> tables = TableNames(path);
    int64_t newest = DAY;
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
        if (IsPlainName(*table) && !ReadTable(path, *table, ids, newest)) {
            break;
        }
    }
    for (auto& [name, rows] : statistics) {
        const auto isOld = [&](const PointRow& row) { return row.time <= newest - DAY; };
        rows.erase(std::remove_if(rows.begin(), rows.end(), isOld), rows.end());
        std::sort(rows.begin(), rows.end(),
                  [](const PointRow& a, const PointRow& b) { return a.time < b.time; });
    }
    return statistics;
}

}  // namespace

PointStatistics ReadNewestDay(const std::string& path) {
    try {
        if (!std::filesystem::exists(path)) {
            throw DatabaseError("it is not there");
        }
        return Read(path);
    } catch (const DatabaseError& error) {
        throw std::runtime_error("the database " + path + " cannot be read: " + error.what());
    }
}

}  // namespace check
