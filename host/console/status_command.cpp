#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <ctime>
#include <optional>
#include <sstream>

#include "agent/agent_console.h"
#include "agent/agent_message.h"
#include "agent/agent_storage.h"
#include "host/basis/route_file.h"
#include "host/basis/statistics_file.h"
#include "host/console/columns.h"
#include "host/console/commands.h"
#include "host/process/settings.h"
#include "host/services/alarm_counts.h"
#include "host/services/startup.h"
#include "text/counted.h"
#include "text/local_time.h"
#include "text/printable.h"

namespace zorv {
namespace {
constexpr size_t GRAPHS_WIDTH = 64;  // what is left of 80 columns
constexpr int64_t HOUR = 3600;

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
// Returns whether it can be opened.
bool PrintFile(const char* name, const char* fixedPath) {
    const std::string path = GivenPath(fixedPath);
    PrintRow(name, Printable(path));
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        PrintRow("", std::strerror(errno));
        return false;
    }
    const time_t changed = status.st_mtim.tv_sec;
    PrintRow("", Size(status.st_size) + ", changed " + LocalTime(changed, ZoneOffsetAt(changed)) + ", " +
                     Age(std::time(nullptr) - changed));
    if (access(path.c_str(), R_OK) != 0) {
        PrintRow("", std::strerror(errno));
        return false;
    }
    return true;
}

// The time in the oldest table's name, behind its prefix, or why it is not known.
std::string EarliestTime(const StatisticsFile& file) {
    constexpr size_t PREFIX = 10;
    if (file.Tables().empty()) {
        return "unknown: there is no table";
    }
    const std::string& table = file.Tables().front();
    return table.size() > PREFIX ? table.substr(PREFIX) : "unknown: a table's name is '" + table + "'";
}

// Returns whether there are rows.
bool PrintRows(StatisticsFile& file, int64_t now) {
    const std::optional<TimeRange> rows = file.Rows();
    if (!rows) {
        PrintRow("rows", "none");
        return false;
    }
    PrintRow("rows", LocalTime(rows->start, ZoneOffsetAt(rows->start)) + " to " +
                         LocalTime(rows->end, ZoneOffsetAt(rows->end)) + ", the newest " +
                         Age(now - rows->end));
    const Coverage hour = file.CoverageOf({now - HOUR, now});
    PrintRow("last hour", !hour.rows    ? "no rows"
                          : hour.isPart ? hour.Intervals() + ", it has gaps"
                                        : hour.Intervals());
    return true;
}

bool PrintStatistics() {
    PrintFile("statistics", LUMO_DATABASE_FILE);
    const char* row = "earliest time";
    try {
        StatisticsFile file;
        PrintRow(row, Printable(EarliestTime(file)));
        row = "rows";
        return PrintRows(file, std::time(nullptr));
    } catch (const DatabaseError& error) {
        PrintRow(row, "unknown: " + Printable(error.what()));
        return false;
    }
}

// Returns whether the plug-in has graphs.
bool PrintConfiguration() {
    PrintFile("configuration", ZORV_ROUTE_CONFIG_FILE);
    const RouteFile& file = CurrentRouteFile();
    const std::string lack = ConfigurationProblem();
    if (!lack.empty()) {
        PrintRow("", "no causes can be found: " + lack);
    } else if (!file.problem.empty()) {
        PrintRow("", "not read again: " + file.problem);
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
    return lack.empty() && file.problem.empty();
}

std::string Alarms() {
    const AlarmCounts counts = CountAlarms();
    return std::to_string(counts.sent) + " sent, " + std::to_string(counts.suppressed) + " suppressed, " +
           std::to_string(counts.lost) + " lost since the start";
}

bool IsStarted() {
    const std::vector<StartupResult> rows = StartupResults();
    return std::all_of(rows.begin(), rows.end(), [](const StartupResult& row) { return row.result == 0; });
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
    const bool hasRows = PrintStatistics();
    const bool hasHealEvents = PrintFile("heal events", ZORV_HEAL_DATABASE_FILE);
    const bool hasGraphs = PrintConfiguration();
    PrintRow("switch", SwitchAndItsOrigin());
    PrintRow("alarms", Alarms());
    PrintRow("start-up", Startup());
    return hasRows && hasHealEvents && hasGraphs && IsStarted() ? STATUS_OK : STATUS_FAILED;
}
}  // namespace zorv
