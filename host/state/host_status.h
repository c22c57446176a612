// What this host works on, and in which state that is.
#pragma once

#include <json/forwards.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/basis/coverage.h"
#include "host/basis/route_file.h"
#include "host/services/alarm_counts.h"
#include "host/services/startup.h"
#include "host/state/switch_state.h"

namespace zorv {
struct FileStatus {
    std::string path;  // as the operator knows it
    std::optional<int64_t> bytes, changed;
    std::string problem;  // why it cannot be opened; empty when it can
};

struct StatisticsStatus {
    FileStatus file;
    bool isOpen = false;   // whether SQLite reads it
    std::string earliest;  // the time in the oldest table's name
    std::string earliestProblem;
    std::optional<TimeRange> rows;
    Coverage lastHour;
    std::string rowsProblem;  // why nothing is known of rows; empty when there are none
};

struct HostStatus {
    int64_t now = 0;  // UTC seconds, as all times
    uint32_t node = 0, master = 0;
    StatisticsStatus statistics;
    FileStatus healEvents, configuration;
    std::string configurationProblem;  // why the plug-in finds no causes
    RouteFile graphs;
    SwitchInUse faultSwitch;
    AlarmCounts alarms;
    std::vector<StartupResult> startup;

    // Whether all of it can be used.
    bool IsSound() const;
};

// Blocks for one question to the statistics database, which is not repeated, and one to the master node.
HostStatus LookAtHost();

// The same as the answer of a document.
Json::Value ValueOf(const HostStatus& status);
}  // namespace zorv
