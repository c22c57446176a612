#include <json/value.h>

#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "agent/agent_storage.h"
#include "cli/program.h"
#include "explain/analysis/analysis.h"
#include "explain/input.h"
#include "explain/output.h"
#include "explain/overview.h"
#include "explain/point_series.h"
#include "explain/report.h"
#include "explain/request.h"
#include "explain/survey.h"
#include "explain/watch.h"
#include "explain/wording.h"
#include "host/capture/inputs.h"
#include "host/process/interrupt.h"
#include "host/process/process.h"
#include "host/process/screen.h"
#include "host/process/statements.h"
#include "text/printable.h"

namespace explain {
using namespace zorv;
namespace {

Report MakeReport(const Options& options, const Request& request, const Input& input,
                  const std::vector<std::string>& arguments, const LocalClock& clock) {
    Report report;
    report.node = options.node;
    report.again = AgainOf(options);
    report.isInConsole = options.isInConsole;
    report.question = request.question;
    report.zoneOffset = request.zoneOffset;
    report.madeAt = clock.time;
    report.stamp =
        MakeStamp(arguments, input.PathOf(ZORV_ROUTE_CONFIG_FILE), input.PathOf(LUMO_DATABASE_FILE));
    input.Open();
    try {
        Stores stores{SampleStore(StretchesOf(request.question)), {}};
        Survey(request, stores, report);
    } catch (...) {
        throw std::runtime_error(FailureOf(ReasonOfFailure(), FailedStatements()));
    }
    return report;
}

ExitStatus StatusOf(const Report& report) {
    bool cannotTell = report.errorsReason.has_value();
    if (!report.errors.empty()) {
        return STATUS_ANSWERED;
    }
    for (const Analysis& analysis : report.analyses) {
        if (analysis.HasAnswer() && !analysis.isWeak) {
            return STATUS_ANSWERED;
        }
        cannotTell = cannotTell || analysis.verdict == Verdict::CANNOT_TELL;
    }
    return cannotTell || report.coverage.IsPart() ? STATUS_CANNOT_TELL : STATUS_NOTHING;
}

// Nothing that is read is written to, and nothing in a capture.
void RefuseInputs(const Options& options) {
    std::error_code ignored;
    const std::string written = options.html.value_or(options.textFile.value_or(""));
    if (!written.empty() && !options.log.empty() && !std::filesystem::is_other(written, ignored) &&
        std::filesystem::weakly_canonical(written, ignored) ==
            std::filesystem::weakly_canonical(options.log, ignored)) {
        throw cli::UsageError("'" + options.log + "' cannot be the log and what else is written");
    }
    const Inputs inputs = {options.capture.value_or(options.root.value_or("")), options.capture.has_value()};
    for (const std::string& path : {options.html.value_or(""), options.textFile.value_or(""), options.log}) {
        const std::optional<std::string> reason = path.empty() ? std::nullopt : WhyNotWritten(path, inputs);
        if (reason) {
            throw cli::UsageError(*reason);
        }
    }
}

PointSeries SeriesOf(const Options& options, const Request& request, const Input& input,
                     const LocalClock& clock) {
    Report report;
    report.node = options.node;
    report.question = request.question;
    report.zoneOffset = request.zoneOffset;
    report.madeAt = clock.time;
    input.Open();
    try {
        return LoadSeries(*options.series, options.columns, report);
    } catch (...) {
        throw std::runtime_error(FailureOf(ReasonOfFailure(), FailedStatements()));
    }
}

// For whoever reads it: a person, or a program.
void PrintSeries(const PointSeries& series, bool isJson) {
    PrintAnswer(isJson                       ? SeriesJson(series)
                : isatty(STDOUT_FILENO) == 1 ? SeriesText(series, StyleOf(STDOUT_FILENO))
                                             : SeriesCsv(series));
}

int RunSeries(const Options& options, const Request& request, const Input& input, const LocalClock& clock) {
    PrintSeries(SeriesOf(options, request, input, clock), options.json);
    return STATUS_ANSWERED;
}

int RunReport(const Options& options, const Report& report) {
    PrintAnswer(options.json       ? JsonReport(report)
                : options.overview ? OverviewText(report, StyleOf(STDOUT_FILENO))
                                   : TextReport(report));
    if (options.html) {
        WritePage(*options.html, HtmlReport(report));
    }
    return StatusOf(report);
}

int ExplainOnce(const Options& options, const Input& input, const std::vector<std::string>& arguments) {
    const LocalClock clock = ClockAt(std::time(nullptr));
    const Request request = RequestOf(options, clock);
    const CommandRun run;  // so a wait for a locked database is told
    return options.series ? RunSeries(options, request, input, clock)
                          : RunReport(options, MakeReport(options, request, input, arguments, clock));
}

int Run(Options& options, const std::vector<std::string>& arguments) {
    RefuseInputs(options);  // before a large capture is copied for nothing
    const Input input(options);
    options.node = options.node ? options.node : input.Node();
    try {
        return options.watch ? Watch(options, input) : ExplainOnce(options, input, arguments);
    } catch (const OutputError& error) {
        if (error.what()[0] != '\0') {
            std::fprintf(stderr, "zorv-explain: %s\n", Printable(error.what()).c_str());
        }
        return STATUS_NOT_WRITTEN;
    }
}

}  // namespace
}  // namespace explain

int main(int argc, char** argv) {
    zorv::BeginProcess();
    explain::Options options;
    if (const std::optional<int> status = explain::ParseOptions(argc, argv, options)) {
        return *status;
    }
    return cli::RunProgram("zorv-explain", explain::STATUS_NO_DATA, [&] {
        return explain::Run(options, {argv, argv + argc});
    });
}
