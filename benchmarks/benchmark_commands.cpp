// Whole commands on the simulator's world of two days.
#include <sqlite3.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "agent/agent_storage.h"
#include "benchmarks/benchmark_ratio.h"
#include "fault_database/fault_database.h"
#include "fault_debug/fault_debug.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "simulator/files/world.h"
#include "tests/support/recording_agent.h"
#include "tests/support/temp_world.h"

namespace {

constexpr int64_t END = 1672900200;  // 2023-01-05 06:30:00 UTC
constexpr const char* START_TEXT = "20230103063000";
constexpr const char* END_TEXT = "20230105063000";

// A statement as it was sent, and the database file that it was sent to.
using Statement = std::pair<std::string, std::string>;

// The statements of every connection of this process that is opened from now on, while it listens.
std::vector<Statement> g_statements;
bool g_isListening = false;

int TakeStatement(unsigned /*event*/, void* connection, void* statement, void* /*text*/) {
    if (g_isListening) {
        const std::unique_ptr<char, decltype(&sqlite3_free)> sql(
            sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement)), &sqlite3_free);
        g_statements.emplace_back(sqlite3_db_filename(static_cast<sqlite3*>(connection), "main"), sql.get());
    }
    return 0;
}

int Listen(sqlite3* connection, const char** /*error*/, const sqlite3_api_routines* /*routines*/) {
    return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, &TakeStatement, connection);
}

// Statements without a command: the results are read and dropped.
class BareQueries {
public:
    explicit BareQueries(const std::vector<Statement>& all) : statements(all) {
        for (const auto& [file, sql] : statements) {
            if (connections.count(file) == 0) {
                sqlite3* handle = nullptr;
                sqlite3_open_v2(file.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
                connections.emplace(file, Connection(handle, &sqlite3_close));
            }
        }
    }

    void Run() const {
        for (const auto& [file, sql] : statements) {
            char** cells = nullptr;
            int rows = 0;
            int columns = 0;
            if (sqlite3_get_table(connections.at(file).get(), sql.c_str(), &cells, &rows, &columns,
                                  nullptr) != SQLITE_OK) {
                std::abort();
            }
            benchmark::DoNotOptimize(cells);
            sqlite3_free_table(cells);
        }
    }

private:
    using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
    const std::vector<Statement> statements;
    std::map<std::string, Connection> connections;
};

// A command over the whole range, from its arguments to its screen, against the statements that it sends.
void Command(benchmark::State& state, const std::string& name, const std::string& scenario) {
    setenv("TZ", "UTC", 1);  // the world's zone; the plug-in asks for it once
    const TempWorld root;
    lumosim::WorldOptions options;
    options.root = root.Path("");
    options.scenario = scenario;
    options.hours = 48;
    options.step = state.range(0);
    options.end = END;
    lumosim::WriteWorld(options, [](double) {});
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&Listen));
    FaultDataBaseInit();
    sqlite3_reset_auto_extension();
    FaultJsonObject::GetInstance().ParseJsonConfig(root.Path(ZORV_ROUTE_CONFIG_FILE));
    FaultDiagnoseDebugInit();
    std::vector<std::string> words = {"diagnose", "smartdiagnose", name, START_TEXT, END_TEXT};
    std::vector<char*> argv;
    argv.reserve(words.size());
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    const ZORV_DIAG_CMD_S* command = Agent()->commandGroups.at("smartdiagnose");
    while (command->name != name) {
        ++command;
    }
    const auto run = [&] { command->handler(static_cast<int32_t>(argv.size()), argv.data()); };
    g_isListening = true;
    run();
    g_isListening = false;
    if (Agent::TakeConsole().find("[ERROR]") != std::string::npos || g_statements.empty()) {
        std::abort();
    }
    const BareQueries bare(std::exchange(g_statements, {}));
    MeasureRatio(state, run, [&] { bare.Run(); });
    FaultDataBaseRelease();
}
// The argument is the time between two samples; the long one is for every test run, see CMakeLists.txt.
BENCHMARK_CAPTURE(Command, delaydetect, "delaydetect", "slow-disk")->Arg(10)->Arg(300)->Iterations(5);
BENCHMARK_CAPTURE(Command, delayanal, "delayanal", "slow-disk")->Arg(10)->Arg(300)->Iterations(5);
BENCHMARK_CAPTURE(Command, showallerr, "showallerr", "retry-storm")->Arg(30)->Arg(300)->Iterations(5);

}  // namespace
