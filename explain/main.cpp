#include <json/value.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

#include "cli/program.h"
#include "explain/analysis/analysis.h"
#include "explain/input.h"
#include "explain/report.h"
#include "explain/request.h"
#include "explain/survey.h"
#include "explain/wording.h"
#include "host/capture/inputs.h"
#include "host/process/files.h"
#include "host/process/interrupt.h"
#include "host/process/process.h"
#include "host/process/statements.h"
#include "text/local_time.h"
#include "text/printable.h"

namespace explain {
using namespace zorv;
namespace {

Report MakeReport(const Options& options, const Request& request, const Input& input,
                  const std::vector<std::string>& arguments, const LocalClock& clock) {
    Report report;
    report.node = options.node;
    report.question = request.question;
    report.zoneOffset = request.zoneOffset;
    report.madeAt = clock.time;
    report.stamp = MakeStamp(arguments, input.Directory());
    input.Open();
    try {
        SampleStore store(StretchesOf(request.question));
        Survey(request, store, report);
    } catch (...) {
        throw std::runtime_error(FailureOf(ReasonOfFailure(), FailedStatements()));
    }
    return report;
}

ExitStatus StatusOf(const Report& report) {
    bool cannotTell = false;
    for (const Analysis& analysis : report.analyses) {
        if (analysis.HasAnswer() && !analysis.isWeak) {
            return STATUS_ANSWERED;
        }
        cannotTell = cannotTell || analysis.verdict == Verdict::CANNOT_TELL;
    }
    return cannotTell || report.coverage.IsPart() ? STATUS_CANNOT_TELL : STATUS_NOTHING;
}

class OutputError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

void PrintAnswer(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw OutputError(std::string("the answer cannot be printed: ") + std::strerror(errno));
    }
}

// Replaces a file, also one that a link stands for; a device, a pipe or the new file that a link leads to
// takes the page as it is written.
void WritePage(const std::string& path, const std::string& page) {
    bool isWritten = false;
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored) ||
        !std::filesystem::exists(std::filesystem::symlink_status(path, ignored))) {
        isWritten = ReplaceFile(std::filesystem::weakly_canonical(path), page);
    } else {
        std::ofstream stream(path, std::ios::binary);
        stream << page;
        stream.close();
        isWritten = stream.good();
    }
    if (!isWritten) {
        throw OutputError("the page '" + path + "' cannot be written: " + std::strerror(errno));
    }
}

// Nothing that is read is written to, and nothing in a capture.
void RefuseInputs(const Options& options) {
    std::error_code ignored;
    if (options.html && !options.log.empty() && !std::filesystem::is_other(*options.html, ignored) &&
        std::filesystem::weakly_canonical(*options.html, ignored) ==
            std::filesystem::weakly_canonical(options.log, ignored)) {
        throw cli::UsageError("'" + options.log + "' cannot be both the page and the log");
    }
    const Inputs inputs = {options.capture.value_or(options.root.value_or("")), options.capture.has_value()};
    for (const std::string& path : {options.html.value_or(""), options.log}) {
        const std::optional<std::string> reason = path.empty() ? std::nullopt : WhyNotWritten(path, inputs);
        if (reason) {
            throw cli::UsageError(*reason);
        }
    }
}

int Run(const Options& options, const std::vector<std::string>& arguments) {
    if (options.zone) {
        SetZone(*options.zone);
    }
    RefuseInputs(options);  // and all else that is refused, before a large capture is copied for nothing
    const LocalClock clock = ClockAt(std::time(nullptr));
    const Request request = RequestOf(options, clock);
    const Input input(options);
    const CommandRun run;  // so a wait for a locked database is told
    const Report report = MakeReport(options, request, input, arguments, clock);
    try {
        PrintAnswer(options.json ? JsonReport(report) : TextReport(report));
        if (options.html) {
            WritePage(*options.html, HtmlReport(report));
        }
    } catch (const OutputError& error) {
        std::fprintf(stderr, "zorv-explain: %s\n", Printable(error.what()).c_str());
        return STATUS_NOT_WRITTEN;
    }
    return StatusOf(report);
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
