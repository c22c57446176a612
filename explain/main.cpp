#include <json/value.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <set>

#include "agent/agent_log.h"
#include "agent/agent_storage.h"
#include "explain/analysis/analysis.h"
#include "explain/options.h"
#include "explain/report.h"
#include "explain/stamp.h"
#include "explain/wording.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_path.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_database/fault_database.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_spectrum_graph/fault_detect_object.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "host/capture/capture.h"
#include "host/process/files.h"
#include "host/process/interrupt.h"
#include "host/process/process.h"
#include "host/process/settings.h"
#include "host/process/statements.h"
#include "host/services/log.h"
#include "text/local_time.h"
#include "text/printable.h"
#include "text/time_words.h"

namespace explain {
using namespace zorv;
namespace {

// The command line asks for what cannot be.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The directory whose files are explained: the one that was named, even if another stands for it.
std::string InputDirectory(const Options& options) {
    const std::optional<std::string>& named = options.capture ? options.capture : options.root;
    return named ? std::filesystem::absolute(*named).lexically_normal().string() : std::string();
}

std::unique_ptr<Capture> OpenCapture(const Options& options) {
    auto capture = std::make_unique<Capture>(*options.capture, options.emptyHeal);
    for (const std::string& note : capture->Notes()) {
        std::fprintf(stderr, "zorv-explain: %s\n", Printable(note).c_str());
    }
    return capture;
}

// Returns the capture, which is used as long as it lives.
std::unique_ptr<Capture> SetUpServices(const Options& options) {
    if (options.root && !std::filesystem::is_directory(*options.root)) {
        throw NoData("the root '" + *options.root + "' is not a directory");
    }
    std::unique_ptr<Capture> capture = options.capture ? OpenCapture(options) : nullptr;
    HostSettings settings;
    settings.root = capture ? capture->Root() : InputDirectory(options);
    SetHostSettings(settings);
    ConfigureLog(options.log, VPLOG_LEVEL_WARNING);
    return capture;
}

// The conversion itself takes the 40th of a month, and letters after the first digits.
int64_t SecondsOf(const std::string& date) {
    std::string seconds;
    std::string again;
    if (date.find_first_not_of("0123456789") != std::string::npos || TransDateToTime(date, seconds) != 0 ||
        TransUtcTimeToLocalTime(seconds, again) != 0 || again != date) {
        throw UsageError("'" + date + "' is no time: it has to have 14 digits, such as 20230105103000");
    }
    return FaultToInt64(seconds);
}

// Times as an operator writes them become compact ones; what was understood is told.
std::vector<std::string> CompactTimes(std::vector<std::string> times, const LocalClock& clock) {
    const std::string understood = TurnRange(times, 0, clock);
    if (times.size() > 2) {
        throw UsageError("'" + times[2] + "' is too much after a START and an END; --help tells more");
    }
    if (!understood.empty()) {
        std::fprintf(stderr, "%s\n", understood.c_str());
    }
    return times;
}

Range RangeOf(std::vector<std::string> times) {
    std::vector<char*> arguments;
    arguments.reserve(times.size());
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
    if (range.startTime >= range.endTime || range.endTime - range.startTime > FAULT_RANGE_SECONDS_MAX) {
        throw UsageError("the end has to be after the start, at most two days");
    }
    return range;
}

void OpenInput(const std::string& directory) {
    if (FaultJsonObject::GetInstance().ParseJsonConfig(FaultPath(ZORV_ROUTE_CONFIG_FILE)) != 0) {
        throw NoData("the configuration " + directory + ZORV_ROUTE_CONFIG_FILE + " cannot be read");
    }
    if (FaultDataBaseInit() != 0) {
        throw NoData("the databases " + directory + LUMO_DATABASE_FILE + " and " + directory +
                     ZORV_HEAL_DATABASE_FILE + " cannot both be opened");
    }
}

// The points that the detector flags.
std::vector<std::string> FlaggedPoints(const Range& range) {
    FaultDetectObject detector;
    detector.InitObject();
    detector.GetData(range.startDate, range.endDate);
    size_t most = 0;
    for (auto& [point, series] : detector.data) {
        most = std::max(most, series["avgdelay"].size());
    }
    if (most == 0) {
        throw NoData("there are no rows of the detector's points in the range");
    }
    if (most < FEWEST_FOR_SIGMA) {
        throw NoData("there are too few rows of the detector's points in the range: " + TooFewForSigma(most) +
                     ". Name a longer range");
    }
    std::vector<std::string> points;
    for (const AnomalyDetectResult& result : detector.DoDetect(range.startDate, range.endDate)) {
        points.push_back(result.lumoLocName);
    }
    return points;
}

// The points to explain, each with a graph.
std::vector<std::pair<std::string, std::string>> Subjects(const Options& options, const Range& range) {
    std::vector<std::pair<std::string, std::string>> subjects;
    for (const std::string& point :
         options.point ? std::vector<std::string>{*options.point} : FlaggedPoints(range)) {
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

// Explains all of them. One that has no data leaves the others their answers; throws NoData when all are
// such.
std::vector<Analysis> AnalyseAll(const std::vector<std::pair<std::string, std::string>>& subjects,
                                 const Range& range, const std::optional<int64_t>& at) {
    std::vector<Analysis> analyses;
    size_t failures = 0;
    for (const auto& [point, graph] : subjects) {
        try {
            analyses.push_back(Analyse(point, graph, range, at));
        } catch (const NoData& error) {
            if (++failures == subjects.size()) {
                throw;
            }
            analyses.emplace_back();
            analyses.back().point = point;
            analyses.back().graph = graph;
            analyses.back().reason = error.what();
        }
    }
    return analyses;
}

struct Request {
    Range range;
    std::optional<int64_t> at;
};

Request RequestOf(const Options& options) {
    const LocalClock clock = ClockAt(std::time(nullptr));
    Request request;
    request.range = RangeOf(CompactTimes(options.times, clock));
    if (options.at) {
        request.at = SecondsOf(TurnTime(*options.at, clock));
        if (*request.at < request.range.startTime || *request.at > request.range.endTime) {
            throw UsageError("the time of --at is not within the range");
        }
    }
    return request;
}

Report MakeReport(const Options& options, const Request& request, const std::vector<std::string>& arguments) {
    Report report;
    report.range = request.range;
    report.stamp = MakeStamp(arguments, InputDirectory(options));
    OpenInput(InputDirectory(options));
    std::string offset;
    GetTimeZoneOffset(offset);
    report.zoneOffset = FaultToInt64(offset);
    report.analyses = AnalyseAll(Subjects(options, report.range), report.range, request.at);
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

// Replaces a file, also one that a link stands for; a device, a pipe or the new file that a link leads to
// takes the page as it is written. Returns false with errno.
bool WritePage(const std::string& path, const std::string& page) {
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored) ||
        !std::filesystem::exists(std::filesystem::symlink_status(path, ignored))) {
        return ReplaceFile(std::filesystem::weakly_canonical(path), page);
    }
    std::ofstream stream(path, std::ios::binary);
    stream << page;
    stream.close();
    return stream.good();
}

ExitStatus Run(const Options& options, const std::vector<std::string>& arguments) {
    if (options.zone) {
        SetZone(*options.zone);
    }
    const Request request = RequestOf(options);  // before a large capture is copied for nothing
    const std::unique_ptr<Capture> capture = SetUpServices(options);
    WatchStatements();
    const CommandRun run;  // so a wait for a locked database is told
    const Report report = MakeReport(options, request, arguments);
    const std::string text = options.json ? JsonReport(report) : TextReport(report);
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw std::runtime_error("the answer cannot be printed");
    }
    if (options.html && !WritePage(*options.html, HtmlReport(report))) {
        throw std::runtime_error("the page '" + *options.html +
                                 "' cannot be written: " + std::strerror(errno));
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
    } catch (const TimeError& error) {
        std::fprintf(stderr, "zorv-explain: %s\n", error.what());
        return STATUS_USAGE;
    } catch (const Json::Exception& error) {
        std::fprintf(stderr, "zorv-explain: the configuration is not what it should be: %s\n",
                     Printable(error.what()).c_str());
        return STATUS_NO_DATA;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zorv-explain: %s\n", Printable(error.what()).c_str());
        return STATUS_NO_DATA;
    }
}

}  // namespace
}  // namespace explain

int main(int argc, char** argv) {
    zorv::BeginProcess();
    return explain::RunProgram(argc, argv);
}
