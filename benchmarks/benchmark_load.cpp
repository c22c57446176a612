// Loading from the statistics database.
#include <sqlite3.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "agent/agent_storage.h"
#include "benchmarks/benchmark_ratio.h"
#include "benchmarks/benchmark_world.h"
#include "fault_database/fault_database.h"
#include "fault_spectrum_graph/fault_detect_object.h"
#include "tests/support/recording_agent.h"
#include "tests/support/temp_world.h"

namespace {

constexpr const char* POINT = "TGT_LUMO_HOST_READ";
constexpr const char* START = "20230803000000";
constexpr const char* END = "20230804235959";

// The statements of the load below, on a connection of their own and without a callback.
void RunBare(sqlite3* database, const std::vector<std::string>& statements) {
    for (const std::string& sql : statements) {
        char** cells = nullptr;
        int rows = 0;
        int columns = 0;
        sqlite3_get_table(database, sql.c_str(), &cells, &rows, &columns, nullptr);
        benchmark::DoNotOptimize(cells);
        sqlite3_free_table(cells);
    }
}

std::vector<std::string> LoadStatements() {
    std::vector<std::string> tables;
    FaultGetQueryTable(START, END, tables);
    std::vector<std::string> statements{"select tablename from table_flag;"};
    for (const std::string& table : tables) {
        statements.emplace_back();
        FaultConstructSql({"curtime", "avgdelay", table, POINT, "1691020800", "1691193599"},
                          statements.back());
    }
    return statements;
}

// One point's times and delays over 48 hourly tables of 20 points, against the bare queries.
void LoadOnePoint(benchmark::State& state) {
    setenv("TZ", "UTC", 1);  // the world's zone; the plug-in asks for it once
    const TempWorld root;
    WriteBenchmarkWorld({20, 48, static_cast<int32_t>(state.range(0))}, root.Path(LUMO_DATABASE_FILE),
                        root.Path(ZORV_HEAL_DATABASE_FILE));
    FaultDataBaseInit();
    sqlite3* handle = nullptr;
    sqlite3_open_v2(root.Path(LUMO_DATABASE_FILE).c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> bare(handle, &sqlite3_close);
    const std::vector<std::string> statements = LoadStatements();
    FaultDetectObject detector;
    detector.points = {POINT};
    MeasureRatio(
        state,
        [&] {
            detector.tables.clear();
            detector.GetData(START, END);
        },
        [&] { RunBare(bare.get(), statements); });
    state.counters["samples"] = static_cast<double>(detector.data[POINT]["avgdelay"].size());
    FaultDataBaseRelease();
}
BENCHMARK(LoadOnePoint)->Arg(120)->Arg(3600)->Unit(benchmark::kMillisecond);

}  // namespace
