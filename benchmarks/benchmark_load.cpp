// Loading from the statistics database.
#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>

#include "agent/agent_storage.h"
#include "benchmarks/benchmark_ratio.h"
#include "benchmarks/benchmark_world.h"
#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_database/fault_database.h"
#include "fault_spectrum_graph/fault_causality_graph.h"
#include "fault_spectrum_graph/fault_detect_object.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "tests/support/recording_agent.h"
#include "tests/support/temp_world.h"

namespace {

constexpr const char* START = "20230803000000";
constexpr const char* END = "20230804235959";

// A world of 48 hourly tables that the plug-in has opened, and a bare connection to it with as large a cache.
class LoadWorld {
public:
    LoadWorld(int64_t points, int64_t rowsPerTable) {
        setenv("TZ", "UTC", 1);  // the world's zone; the plug-in asks for it once
        const std::string file = root.Path(LUMO_DATABASE_FILE);
        WriteBenchmarkWorld({static_cast<int32_t>(points), 48, static_cast<int32_t>(rowsPerTable)}, file,
                            root.Path(ZORV_HEAL_DATABASE_FILE));
        FaultDataBaseInit();
        FaultGetQueryTable(START, END, tables);
        sqlite3* handle = nullptr;
        sqlite3_open_v2(file.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
        bare.reset(handle);
        std::vector<int64_t> unused;
        std::vector<std::string> cache;
        FaultDataBaseExcuteSql("PRAGMA cache_size;", FaultGetQueryTableCallBack, unused, unused, cache);
        RunBare({"PRAGMA cache_size = " + cache.at(0) + ";"});
    }
    ~LoadWorld() { FaultDataBaseRelease(); }
    LoadWorld(const LoadWorld&) = delete;
    LoadWorld& operator=(const LoadWorld&) = delete;

    // What is sent to load some points, by the plug-in's own statements.
    std::vector<std::string> Statements(decltype(&FaultConstructSql) construct,
                                        const std::vector<std::string>& points) const {
        std::vector<std::string> statements{"select tablename from table_flag;"};
        for (const std::string& point : points) {
            for (const std::string& table : tables) {
                construct({"curtime", "avgdelay", table, point, "1691020800", "1691193599"},
                          statements.emplace_back());
            }
        }
        return statements;
    }

    void RunBare(const std::vector<std::string>& statements) const {
        for (const std::string& sql : statements) {
            char** cells = nullptr;
            int rows = 0;
            int columns = 0;
            sqlite3_get_table(bare.get(), sql.c_str(), &cells, &rows, &columns, nullptr);
            benchmark::DoNotOptimize(cells);
            sqlite3_free_table(cells);
        }
    }

    void Configure(const std::string& json) const {
        root.Config(json);
        FaultJsonObject::GetInstance().ParseJsonConfig(root.Path(ZORV_ROUTE_CONFIG_FILE));
    }

private:
    const TempWorld root;
    std::unique_ptr<sqlite3, decltype(&sqlite3_close)> bare{nullptr, &sqlite3_close};
    std::vector<std::string> tables;
};

// One point's times and delays, of 20 points, against the bare queries.
void LoadOnePoint(benchmark::State& state) {
    const LoadWorld world(20, state.range(0));
    FaultDetectObject detector;
    detector.points = {BenchmarkPoint(0)};
    const std::vector<std::string> statements = world.Statements(&FaultConstructSql, detector.points);
    MeasureRatio(
        state,
        [&] {
            detector.tables.clear();
            detector.GetData(START, END);
        },
        [&] { world.RunBare(statements); });
    state.counters["samples"] = static_cast<double>(detector.data[detector.points[0]]["avgdelay"].size());
}
BENCHMARK(LoadOnePoint)->Arg(120)->Arg(3600)->Unit(benchmark::kMillisecond);

size_t ValueCount(const FaultCausalityGraph& graph) {
    size_t count = 0;
    for (const auto& [point, columns] : graph.mapLumoData) {
        for (const auto& [name, series] : columns) {
            count += series.size();
        }
    }
    return count;
}

// All columns of every point of a graph, against the bare queries. A graph is new each time, and gone
// afterwards.
void LoadGraph(benchmark::State& state) {
    const LoadWorld world(state.range(0), state.range(1));
    std::vector<std::string> points(static_cast<size_t>(state.range(0)));
    std::generate(points.begin(), points.end(), [i = 0]() mutable { return BenchmarkPoint(i++); });
    const std::vector<std::string> statements = world.Statements(&FaultConstructFullSql, points);
    size_t values = 0;
    const auto load = [&] {
        FaultCausalityGraph graph;
        graph.vecLumoLocName = points;
        graph.GetData(START, END);
        values = ValueCount(graph);
    };
    const double peak = PeakMemory(load);
    MeasureRatio(state, load, [&] { world.RunBare(statements); });
    const auto count = static_cast<double>(values);
    state.counters["values"] = count;
    state.counters["bytes_per_value"] = peak / count;
    state.counters["ns_per_value"] = state.counters["ours_ms"] * 1e6 / count;
}
// The last one is so small that it is in every test run, see CMakeLists.txt.
BENCHMARK(LoadGraph)
    ->Args({300, 120})
    ->Args({300, 60})
    ->Args({150, 120})
    ->Args({10, 12})
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

// A configuration that divides the points among all graphs that `showallerr` searches.
std::string ErrorGraphs(const std::vector<std::string>& points) {
    Json::Value config(Json::objectValue);
    size_t next = 0;
    size_t graphs = 0;
    for (const auto& [entry, graph] : g_mapPointErrCodeRelated) {
        Json::Value& nodes = config[graph]["nodes"];
        for (const size_t end = points.size() * ++graphs / g_mapPointErrCodeRelated.size(); next < end;
             ++next) {
            Json::Value node(Json::objectValue);
            node["id"] = static_cast<int32_t>(next);
            node["label"] = points[next];
            nodes.append(node);
        }
    }
    return config.toStyledString();
}

// The errors of every point of all graphs, graph by graph, against the bare queries. Memory is told per value
// of one graph: there is never more than one.
void SearchErrors(benchmark::State& state) {
    const LoadWorld world(state.range(0), 120);
    std::vector<std::string> points(static_cast<size_t>(state.range(0)));
    std::generate(points.begin(), points.end(), [i = 0]() mutable { return BenchmarkPoint(i++); });
    world.Configure(ErrorGraphs(points));
    const std::vector<std::string> statements = world.Statements(&FaultConstructFullSql, points);
    const auto search = [] {
        FaultErrorPoints found;
        for (const auto& [entry, graph] : g_mapPointErrCodeRelated) {
            if (SearchAllErrCodeInGraph(entry, graph, START, END, found) != 0) {
                std::abort();
            }
        }
    };
    const double peak = PeakMemory(search);
    MeasureRatio(state, search, [&] { world.RunBare(statements); });
    constexpr double VALUES = 48.0 * 120 * 12;
    const double largest = std::ceil(static_cast<double>(points.size()) / 7.0);
    state.counters["values"] = VALUES * static_cast<double>(points.size());
    state.counters["bytes_per_value"] = peak / (VALUES * largest);
}
BENCHMARK(SearchErrors)->Arg(400)->Arg(14)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
