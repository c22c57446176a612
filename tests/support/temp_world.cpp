#include "support/temp_world.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>

#include "support/recording_agent.h"

namespace {

constexpr const char* ROW_COLUMNS =
    "(locateid INTEGER, curtime, acceptnum, successnum, failednum, retrynum, avgdelay, maxdelay, mindelay, "
    "errCode0, errCode1, errCode2, errCode3, errCode4);";

std::string Quoted(const std::string& text) {
    return "'" + text + "'";
}

std::string RowSql(const std::string& table, size_t pointId, const StatisticsRow& row) {
    std::string sql = "INSERT INTO " + table + " VALUES (" + std::to_string(pointId) + ", " + row.time.text +
                      ", 1, 1, 1, 1, " + row.delay.text + ", " + row.delay.text + ", " + row.delay.text;
    for (const int64_t error : row.errors) {
        sql += ", " + std::to_string(error);
    }
    return sql + ");";
}

}  // namespace

std::string StatisticsSql(const std::vector<StatisticsTable>& tables) {
    std::string sql =
        "BEGIN; CREATE TABLE table_flag (tablename, reporttime INTEGER);"
        "CREATE TABLE version_nmaps (locateid INTEGER, locatename TEXT);";
    std::map<std::string, size_t> pointIds;
    int64_t reportTime = 0;
    for (const StatisticsTable& table : tables) {
        sql += "INSERT INTO table_flag VALUES (" + Quoted(table.name) + ", " + std::to_string(++reportTime) +
               "); CREATE TABLE " + table.name + ROW_COLUMNS;
        for (const StatisticsRow& row : table.rows) {
            const auto [point, isNew] = pointIds.emplace(row.point, pointIds.size() + 1);
            if (isNew) {
                sql += "INSERT INTO version_nmaps VALUES (" + std::to_string(point->second) + ", " +
                       Quoted(row.point) + ");";
            }
            sql += RowSql(table.name, point->second, row);
        }
    }
    return sql + "COMMIT;";
}

std::string HealSql(const std::vector<HealEvent>& events) {
    std::string sql =
        "BEGIN; CREATE TABLE fault_heal_event (healtime, modulename, healcause, infercause, nodeid);";
    for (const HealEvent& event : events) {
        sql += "INSERT INTO fault_heal_event VALUES (" + std::to_string(event.time) + ", " +
               Quoted(event.module) + ", " + Quoted(event.cause) + ", " + Quoted(event.inferredCause) + ", " +
               std::to_string(event.node) + ");";
    }
    return sql + "COMMIT;";
}

TempWorld::TempWorld() {
    std::string pattern = std::filesystem::temp_directory_path() / "smartdiagnose-XXXXXX";
    EXPECT_NE(mkdtemp(pattern.data()), nullptr);
    root = pattern;
    for (const char* file : {ZORV_ROUTE_CONFIG_FILE, ZORV_HEAL_DATABASE_FILE, LUMO_DATABASE_FILE}) {
        MakeFolder(std::filesystem::path(file).parent_path());
    }
    Agent::SetRoot(root);
}

TempWorld::~TempWorld() {
    std::error_code ignored;  // a thread of the plug-in may still have files there
    std::filesystem::remove_all(root, ignored);
}

void TempWorld::Write(const std::string& fixedPath, const std::string& text) const {
    MakeFolder(std::filesystem::path(fixedPath).parent_path());
    std::ofstream file(Path(fixedPath), std::ios::binary);
    file << text;
    EXPECT_TRUE(file.flush()) << fixedPath;
}

void TempWorld::MakeFolder(const std::string& fixedPath) const {
    std::filesystem::create_directories(Path(fixedPath));
}

void TempWorld::Remove(const std::string& fixedPath) const {
    std::filesystem::remove_all(Path(fixedPath));
}

void TempWorld::Rename(const std::string& from, const std::string& to) const {
    std::filesystem::rename(Path(from), Path(to));
}

void TempWorld::Exec(const std::string& fixedPath, const std::string& sql) const {
    sqlite3* opened = nullptr;
    ASSERT_EQ(sqlite3_open(Path(fixedPath).c_str(), &opened), SQLITE_OK) << fixedPath;
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle(opened, &sqlite3_close);
    sqlite3_busy_timeout(opened, 10000);
    // Nobody needs these files after a crash.
    EXPECT_EQ(sqlite3_exec(opened, ("PRAGMA synchronous = OFF;" + sql).c_str(), nullptr, nullptr, nullptr),
              SQLITE_OK)
        << fixedPath << ": " << sqlite3_errmsg(opened);
}

void TempWorld::Statistics(const std::vector<StatisticsTable>& tables) const {
    Remove(LUMO_DATABASE_FILE);
    Exec(LUMO_DATABASE_FILE, StatisticsSql(tables));
}

void TempWorld::StatisticsByRename(const std::vector<StatisticsTable>& tables) const {
    const std::string temporary = LUMO_DATA_DIRECTORY "written.tmp";
    Remove(temporary);
    Exec(temporary, StatisticsSql(tables));
    Rename(temporary, LUMO_DATABASE_FILE);
}

void TempWorld::Heal(const std::vector<HealEvent>& events) const {
    Remove(ZORV_HEAL_DATABASE_FILE);
    Exec(ZORV_HEAL_DATABASE_FILE, HealSql(events));
}
