#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <set>

#include "agent/agent_log.h"
#include "agent/agent_storage.h"
#include "explain/analysis.h"
#include "explain/options.h"
#include "explain/report.h"
#include "explain/stamp.h"
#include "fault_algorithm/fault_anomalydetect.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_path.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_database/fault_database.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "host/services/files.h"
#include "host/services/log.h"
#include "host/services/settings.h"
#include "host/services/text.h"

namespace explain {
namespace {

// The command line asks for what cannot be.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Zones count east, TZ counts west.
void SetZone(const std::string& zone) {
    const std::string west = (zone[0] == '+' ? "-" : "+") + zone.substr(1, 2) + ":" + zone.substr(3, 2);
    setenv("TZ", ("<" + zone + ">" + west).c_str(), 1);
    tzset();
}

void SetUpServices(const Options& options) {
    if (options.zone) {
        SetZone(*options.zone);
    }
    HostSettings settings;
    if (options.root) {
        if (!std::filesystem::is_directory(*options.root)) {
            throw NoData("the root '" + *options.root + "' is not a directory");
        }
        settings.root = std::filesystem::absolute(*options.root).lexically_normal();
    }
    SetHostSettings(settings);
    ConfigureLog(options.log, VPLOG_LEVEL_WARNING);
}

int64_t SecondsOf(const std::string& date) {
    std::string seconds;
    if (TransDateToTime(date, seconds) != 0) {
        throw UsageError("'" + date + "' is no time: it has to have 14 digits, such as 20230105103000");
    }
    return FaultToInt64(seconds);
}

Range RangeOf(std::vector<std::string> times) {
    std::vector<char*> arguments;
    for (std::string& time : times) {
        arguments.push_back(time.data());
    }
    Range range;
    if (ParseTimeArgs(static_cast<int32_t>(arguments.size()), arguments.data(), 0, range.startDate,
                      range.endDate) != 0) {
        throw UsageError("'" + times.front() + "' is no length of time in minutes");
    }
    range.startTime = SecondsOf(range.startDate);
    range.endTime = SecondsOf(range.endDate);
    return range;
}

void OpenInput() {
    const std::string config = FaultPath(ZORV_ROUTE_CONFIG_FILE);
    if (FaultJsonObject::GetInstance().ParseJsonConfig(config) != 0) {
        throw NoData("the configuration " + config + " cannot be read");
    }
    if (FaultDataBaseInit() != 0) {
        throw NoData("the databases " + FaultPath(LUMO_DATABASE_FILE) + " and " +
                     FaultPath(ZORV_HEAL_DATABASE_FILE) + " cannot both be opened");
    }
}

// The points to explain, each with a graph.
std::vector<std::pair<std::string, std::string>> Subjects(const Options& options, const Range& range) {
    std::vector<std::string> points;
    if (options.point) {
        points.push_back(*options.point);
    } else {
        for (const AnomalyDetectResult& result : anomalyDetect(range.startDate, range.endDate)) {
            points.push_back(result.lumoLocName);
        }
    }
    std::vector<std::pair<std::string, std::string>> subjects;
    for (const std::string& point : points) {
        if (options.graph) {
            subjects.emplace_back(point, *options.graph);
            continue;
        }
        const auto graphs = g_mapPointSubPoints.equal_range(point);
        if (graphs.first == graphs.second) {
            throw UsageError("no graph is known for " + point + ": name one with --graph");
        }
        subjects.insert(subjects.end(), graphs.first, graphs.second);
    }
    return subjects;
}

Report MakeReport(const Options& options, const std::vector<std::string>& arguments) {
    Report report;
    report.range = RangeOf(options.times);
    report.stamp = MakeStamp(arguments);
    OpenInput();
    std::string offset;
    GetTimeZoneOffset(offset);
    report.zoneOffset = FaultToInt64(offset);
    const std::optional<int64_t> at =
        options.at ? std::optional<int64_t>(SecondsOf(*options.at)) : std::nullopt;
    for (const auto& [point, graph] : Subjects(options, report.range)) {
        report.analyses.push_back(Analyse(point, graph, report.range, at));
    }
    report.flags = CountFlags(report.analyses);
    return report;
}

ExitStatus StatusOf(const Report& report) {
    std::set<Verdict> verdicts;
    for (const Analysis& analysis : report.analyses) {
        verdicts.insert(analysis.verdict);
    }
    return verdicts.count(Verdict::POINT) + verdicts.count(Verdict::LOAD) > 0 ? STATUS_ANSWERED
           : verdicts.count(Verdict::CANNOT_TELL) > 0                         ? STATUS_CANNOT_TELL
                                                                              : STATUS_NOTHING;
}

ExitStatus Run(const Options& options, const std::vector<std::string>& arguments) {
    SetUpServices(options);
    const Report report = MakeReport(options, arguments);
    const std::string text = options.json ? JsonReport(report) : TextReport(report);
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw std::runtime_error("the answer cannot be printed");
    }
    if (options.html && !ReplaceFile(*options.html, HtmlReport(report))) {
        throw std::runtime_error("the page '" + *options.html + "' cannot be written");
    }
    return StatusOf(report);
}

int RunProgram(int argc, char** argv) {
    Options options;
    if (const std::optional<int> status = ParseOptions(argc, argv, options)) {
        return *status;
    }
    try {
        return Run(options, {argv, argv + argc});
    } catch (const UsageError& error) {
        std::fprintf(stderr, "zorv-explain: %s\n", Printable(error.what()).c_str());
        return STATUS_USAGE;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zorv-explain: %s\n", Printable(error.what()).c_str());
        return STATUS_NO_DATA;
    }
}

}  // namespace
}  // namespace explain

int main(int argc, char** argv) {
    return explain::RunProgram(argc, argv);
}
