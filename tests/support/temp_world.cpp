#include "support/temp_world.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <fstream>
#include <memory>

#include "support/recording_agent.h"

namespace {

std::string StatisticsSql(const std::vector<StatisticsTable>& tables) {
    std::string sql =
        "BEGIN; CREATE TABLE table_flag (tablename, reporttime INTEGER);"
        "CREATE TABLE version_nmaps (locateid INTEGER PRIMARY KEY, locatename TEXT UNIQUE);";
    int64_t reportTime = 0;
    for (const StatisticsTable& table : tables) {
        sql += "INSERT INTO table_flag VALUES ('" + table.name + "', " + std::to_string(++reportTime) +
               "); CREATE TABLE " + table.name +
               "(locateid INTEGER, curtime, acceptnum, successnum, failednum, retrynum, avgdelay, maxdelay, "
               "mindelay, errCode0, errCode1, errCode2, errCode3, errCode4);";
        for (const StatisticsRow& row : table.rows) {
            sql += "INSERT OR IGNORE INTO version_nmaps (locatename) VALUES ('" + row.point +
                   "'); INSERT INTO " + table.name + " SELECT locateid, " + row.time.text + ", 1, 1, 1, 1, " +
                   row.delay.text + ", " + row.delay.text + ", " + row.delay.text;
            for (const int64_t error : row.errors) {
                sql += ", " + std::to_string(error);
            }
            sql += " FROM version_nmaps WHERE locatename = '" + row.point + "';";
        }
    }
    return sql + "COMMIT;";
}

}  // namespace

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
    EXPECT_TRUE(std::ofstream(Path(fixedPath), std::ios::binary) << text << std::flush) << fixedPath;
}

void TempWorld::Exec(const std::string& fixedPath, const std::string& sql) const {
    sqlite3* opened = nullptr;
    ASSERT_EQ(sqlite3_open(Path(fixedPath).c_str(), &opened), SQLITE_OK) << fixedPath;
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle(opened, &sqlite3_close);
    sqlite3_busy_timeout(opened, 10000);
    // Nobody needs these files after a crash.
    const std::string unsafe = "PRAGMA synchronous = OFF;" + sql;
    EXPECT_EQ(sqlite3_exec(opened, unsafe.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << fixedPath << ": " << sqlite3_errmsg(opened);
}

void TempWorld::Statistics(const std::vector<StatisticsTable>& tables) const {
    Remove(LUMO_DATABASE_FILE);
    Exec(LUMO_DATABASE_FILE, StatisticsSql(tables));
}

void TempWorld::StatisticsByRename(const std::vector<StatisticsTable>& tables) const {
    Exec(LUMO_DATA_DIRECTORY "written.tmp", StatisticsSql(tables));
    Rename(LUMO_DATA_DIRECTORY "written.tmp", LUMO_DATABASE_FILE);
}

void TempWorld::Heal() const {
    Remove(ZORV_HEAL_DATABASE_FILE);
    Exec(ZORV_HEAL_DATABASE_FILE,
         "CREATE TABLE fault_heal_event (healtime, modulename, healcause, infercause, nodeid);");
}
