#include <sstream>

#include "agent/agent_console.h"
#include "host/command/columns.h"
#include "host/console/commands.h"
#include "host/state/document.h"
#include "host/state/host_status.h"
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

std::string Local(int64_t time) {
    return LocalTime(time, ZoneOffsetAt(time));
}

void PrintFile(const char* name, const FileStatus& file, int64_t now) {
    PrintRow(name, Printable(file.path));
    if (file.changed) {
        PrintRow("",
                 Size(*file.bytes) + ", changed " + Local(*file.changed) + ", " + Age(now - *file.changed));
    }
    if (!file.problem.empty()) {
        PrintRow("", file.problem);
    }
}

void PrintStatistics(const StatisticsStatus& statistics, int64_t now) {
    PrintFile("statistics", statistics.file, now);
    const std::string& unknown = statistics.earliestProblem;
    PrintRow("earliest time", Printable(unknown.empty() ? statistics.earliest : "unknown: " + unknown));
    if (statistics.rows) {
        PrintRow("rows", Local(statistics.rows->start) + " to " + Local(statistics.rows->end) +
                             ", the newest " + Age(now - statistics.rows->end));
        const Coverage& hour = statistics.lastHour;
        PrintRow("last hour",
                 !hour.rows ? "no rows" : hour.Intervals() + (hour.isPart ? ", it has gaps" : ""));
    } else if (statistics.isOpen && statistics.rowsProblem.empty()) {
        PrintRow("rows", "none");
    }
    if (!statistics.rowsProblem.empty()) {
        PrintRow(statistics.rows ? "last hour" : "rows", "unknown: " + Printable(statistics.rowsProblem));
    }
}

void PrintConfiguration(const HostStatus& status) {
    PrintFile("configuration", status.configuration, status.now);
    if (!status.configurationProblem.empty()) {
        PrintRow("", "no causes can be found: " + status.configurationProblem);
    } else if (!status.graphs.problem.empty()) {
        PrintRow("", "not read again: " + status.graphs.problem);
    }
    Words graphs;
    for (const RouteGraph& graph : status.graphs.graphs) {
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

std::string Startup(const std::vector<StartupResult>& rows) {
    std::string text;
    for (const StartupResult& row : rows) {
        text += (text.empty() ? "" : ", ") + Printable(row.name) + " " + std::to_string(row.result);
    }
    return text.empty() ? "no rows were run" : text;
}

void PrintStatus(const HostStatus& status) {
    PrintRow("node", std::to_string(status.node) + ", master " + std::to_string(status.master));
    PrintRow("zone", ZoneText(ZoneOffsetAt(status.now)) + ", kept until this program ends");
    PrintStatistics(status.statistics, status.now);
    PrintFile("heal events", status.healEvents, status.now);
    PrintConfiguration(status);
    PrintRow("switch", TextOf(status.faultSwitch));
    PrintRow("alarms", std::to_string(status.alarms.sent) + " sent, " +
                           std::to_string(status.alarms.suppressed) + " suppressed, " +
                           std::to_string(status.alarms.lost) + " lost since the start");
    PrintRow("start-up", Startup(status.startup));
}
}  // namespace

ExitStatus RunStatus(const Words& words, ConsoleState& state) {
    if (words.size() > 1) {
        throw UsageError("usage: status [--json]");
    }
    const HostStatus status = LookAtHost();
    if (state.wantsJson) {
        PrintDocument(words.front(), ValueOf(status));
    } else {
        PrintStatus(status);
    }
    return status.IsSound() ? STATUS_OK : STATUS_FAILED;
}
}  // namespace zorv
