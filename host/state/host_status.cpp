#include "host/state/host_status.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "agent/agent_message.h"
#include "agent/agent_storage.h"
#include "host/basis/statistics_file.h"
#include "host/process/settings.h"

namespace zorv {
namespace {
constexpr int64_t HOUR = 3600;

// Only stat(): to open and close a database file would drop SQLite's locks on it.
FileStatus LookAtFile(const char* fixedPath) {
    FileStatus file{GivenPath(fixedPath), {}, {}, ""};
    struct stat status {};
    if (stat(file.path.c_str(), &status) != 0) {
        file.problem = std::strerror(errno);
        return file;
    }
    file.bytes = status.st_size;
    file.changed = status.st_mtim.tv_sec;
    file.problem = access(file.path.c_str(), R_OK) == 0 ? "" : std::strerror(errno);
    return file;
}

// The time in the oldest table's name, behind its prefix, or why it is not known.
void ReadEarliest(const StatisticsFile& file, StatisticsStatus& status) {
    constexpr size_t PREFIX = 10;
    if (file.Tables().empty()) {
        status.earliestProblem = "there is no table";
    } else if (const std::string& table = file.Tables().front(); table.size() > PREFIX) {
        status.earliest = table.substr(PREFIX);
    } else {
        status.earliestProblem = "a table's name is '" + table + "'";
    }
}

StatisticsStatus LookAtStatistics(int64_t now) {
    StatisticsStatus status;
    status.file = LookAtFile(LUMO_DATABASE_FILE);
    std::string* problem = &status.earliestProblem;
    try {
        StatisticsFile file;
        status.isOpen = true;
        ReadEarliest(file, status);
        problem = &status.rowsProblem;
        status.rows = file.Rows();
        if (status.rows) {
            status.lastHour = file.CoverageOf({now - HOUR, now});
        }
    } catch (const DatabaseError& error) {
        *problem = error.what();
    }
    return status;
}
}  // namespace

bool HostStatus::IsSound() const {
    const bool isStarted =
        std::all_of(startup.begin(), startup.end(), [](const StartupResult& row) { return row.result == 0; });
    return statistics.rows && statistics.rowsProblem.empty() && healEvents.problem.empty() &&
           configurationProblem.empty() && graphs.problem.empty() && isStarted;
}

HostStatus LookAtHost() {
    HostStatus status;
    status.now = std::time(nullptr);
    status.node = ZORV_GetLocalNid();
    status.master = ZORV_GetMasterNid();
    status.statistics = LookAtStatistics(status.now);
    status.healEvents = LookAtFile(ZORV_HEAL_DATABASE_FILE);
    status.configuration = LookAtFile(ZORV_ROUTE_CONFIG_FILE);
    status.graphs = CurrentRouteFile();
    status.configurationProblem = ConfigurationProblem();
    status.faultSwitch = AskSwitch();
    status.alarms = CountAlarms();
    status.startup = StartupResults();
    return status;
}
}  // namespace zorv
