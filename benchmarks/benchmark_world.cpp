#include "benchmarks/benchmark_world.h"

#include <sqlite3.h>

#include <memory>
#include <stdexcept>

namespace {

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

Database Create(const std::string& file) {
    sqlite3* handle = nullptr;
    const int result = sqlite3_open(file.c_str(), &handle);
    Database database(handle, &sqlite3_close);
    if (result != SQLITE_OK) {
        throw std::runtime_error("cannot create " + file);
    }
    return database;
}

void Execute(const Database& database, const std::string& sql) {
    if (sqlite3_exec(database.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(database.get()));
    }
}

std::string TableName(int32_t hour) {
    const int32_t day = 3 + hour / 24;
    const int32_t dayHour = hour % 24;
    return "statistics" + std::to_string(20230800 + day) + (dayHour < 10 ? "0" : "") +
           std::to_string(dayHour) + "0000";
}

// Rows of every point, evenly over one hour from `start` on, sample by sample, as a producer writes them.
std::string FillTable(const BenchmarkWorld& world, const std::string& name, int64_t start) {
    const std::string step = std::to_string(3600 / world.rowsPerTable);
    return "create table " + name +
           "(locateid integer, curtime integer, acceptnum integer, successnum integer, failednum integer,"
           " retrynum integer, avgdelay integer, maxdelay integer, mindelay integer, errCode0 integer,"
           " errCode1 integer, errCode2 integer, errCode3 integer, errCode4 integer);"
           "insert into " +
           name + " with recursive sample(i) as (select 0 union all select i + 1 from sample where i + 1 < " +
           std::to_string(world.rowsPerTable) + ") select locateid, " + std::to_string(start) + " + i * " +
           step +
           ", 5000 + i, 5000 + i, 0, 0, 800 + (locateid * 7919 + i * 104729) % 400, 2500, 100, 0, 0, 0, 0, 0"
           " from sample cross join version_nmaps;"
           "create index index_" +
           name + " on " + name +
           "(locateid, curtime);"
           "insert into table_flag values('" +
           name + "', " + std::to_string(start) + ");";
}

}  // namespace

void WriteBenchmarkWorld(const BenchmarkWorld& world, const std::string& file, const std::string& healFile) {
    constexpr int64_t FIRST_HOUR = 1691020800;  // 2023-08-03 00:00:00 UTC
    const Database statistics = Create(file);
    Execute(statistics,
            "begin; create table table_flag(tablename text, reporttime integer);"
            "create table version_nmaps(locateid integer, locatename text);");
    for (int32_t i = 0; i < world.points; ++i) {
        Execute(statistics,
                "insert into version_nmaps values(" + std::to_string(i) + ", '" + BenchmarkPoint(i) + "');");
    }
    for (int32_t hour = 0; hour < world.tables; ++hour) {
        Execute(statistics, FillTable(world, TableName(hour), FIRST_HOUR + int64_t{3600} * hour));
    }
    Execute(statistics, "commit;");
    Create(healFile);
}

std::string BenchmarkPoint(int32_t number) {
    return number == 0 ? "TGT_LUMO_HOST_READ" : "POINT_" + std::to_string(number);
}
