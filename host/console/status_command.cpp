#include <sys/stat.h>

#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <ctime>
#include <optional>
#include <sstream>

#include "agent/agent_console.h"
#include "agent/agent_message.h"
#include "agent/agent_storage.h"
#include "host/console/columns.h"
#include "host/console/commands.h"
#include "host/console/route_file.h"
#include "host/process/guarded_database.h"
#include "host/process/settings.h"
#include "host/services/alarm_counts.h"
#include "host/services/startup.h"
#include "text/counted.h"
#include "text/local_time.h"
#include "text/printable.h"

namespace zorv {
namespace {
constexpr size_t GRAPHS_WIDTH = 64;  // what is left of 80 columns

void PrintRow(const char* name, const std::string& text) {
    DBG_Print("%-14s %s\n", name, text.c_str());
}

std::string Age(int64_t seconds) {
    if (seconds < 0) {
        return "in the future";
    }
    const struct {
        int64_t seconds;
        const char* unit;
    } units[] = {{86400, "day"}, {3600, "hour"}, {60, "minute"}};
    for (const auto& [length, unit] : units) {
        if (seconds >= length) {
            return Counted(static_cast<size_t>(seconds / length), unit) + " ago";
        }
    }
    return Counted(static_cast<size_t>(seconds), "second") + " ago";
}

std::string Size(int64_t bytes) {
    constexpr int64_t KIB = 1024;
    char text[40];
    if (bytes < KIB) {
        return Counted(static_cast<size_t>(bytes), "byte");
    }
    const bool isSmall = bytes < KIB * KIB;
    std::snprintf(text, sizeof text, "%.1f %s",
                  static_cast<double>(bytes) / static_cast<double>(isSmall ? KIB : KIB * KIB),
                  isSmall ? "KiB" : "MiB");
    return text;
}

// Only stat(): to open and close a database file would drop SQLite's locks on it.
void PrintFile(const char* name, const char* fixedPath) {
    const std::string path = GivenPath(fixedPath);
    PrintRow(name, Printable(path));
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        PrintRow("", std::strerror(errno));
        return;
    }
    const time_t changed = status.st_mtim.tv_sec;
    PrintRow("", Size(status.st_size) + ", changed " + LocalTime(changed, ZoneOffsetAt(changed)) + ", " +
                     Age(std::time(nullptr) - changed));
}

// The time in the oldest table's name, behind its prefix, or why it is not known.
std::string EarliestTime() {
    constexpr size_t PREFIX = 10;
    try {
        const std::optional<std::string> table =
            GuardedDatabase(RootedPath(LUMO_DATABASE_FILE)).First("tablename", "table_flag", "reporttime");
        if (!table) {
            return "unknown: there is no table";
        }
        return table->size() > PREFIX ? table->substr(PREFIX) : "unknown: a table's name is '" + *table + "'";
    } catch (const DatabaseError& error) {
        return std::string("unknown: ") + error.what();
    }
}

void PrintConfiguration() {
    PrintFile("configuration", ZORV_ROUTE_CONFIG_FILE);
    const RouteFile& file = CurrentRouteFile();
    if (!file.problem.empty()) {
        PrintRow("", "not read: " + file.problem);
    }
    Words graphs;
    for (const RouteGraph& graph : file.graphs) {
        graphs.push_back(Printable(graph.name) + ' ' + std::to_string(graph.nodes) + '/' +
                         std::to_string(graph.edges));
    }
    if (!graphs.empty()) {
        PrintRow("", Counted(graphs.size(), "graph") + ", nodes/edges of each:");
    }
    std::istringstream lines(InColumns(graphs, GRAPHS_WIDTH, graphs.size()));
    for (std::string line; std::getline(lines, line);) {
        PrintRow("", line);
    }
}

std::string Alarms() {
    const AlarmCounts counts = CountAlarms();
    return std::to_string(counts.sent) + " sent, " + std::to_string(counts.suppressed) + " suppressed, " +
           std::to_string(counts.lost) + " lost since the start";
}

std::string Startup() {
    std::string text;
    for (const StartupResult& row : StartupResults()) {
        text += (text.empty() ? "" : ", ") + Printable(row.name) + " " + std::to_string(row.result);
    }
    return text.empty() ? "no rows were run" : text;
}
}  // namespace

ExitStatus RunStatus(const Words& words, ConsoleState& /*state*/) {
    if (words.size() > 1) {
        throw UsageError("usage: status");
    }
    PrintRow("node", std::to_string(ZORV_GetLocalNid()) + ", master " + std::to_string(ZORV_GetMasterNid()));
    PrintRow("zone", ZoneText(ZoneOffsetAt(std::time(nullptr))) + ", kept until this program ends");
    PrintFile("statistics", LUMO_DATABASE_FILE);
    PrintRow("earliest time", Printable(EarliestTime(), 100));
    PrintFile("heal events", ZORV_HEAL_DATABASE_FILE);
    PrintConfiguration();
    PrintRow("switch", SwitchAndItsOrigin());
    PrintRow("alarms", Alarms());
    PrintRow("start-up", Startup());
    return STATUS_OK;
}
}  // namespace zorv
