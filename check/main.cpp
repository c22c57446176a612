#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "check/input.h"
#include "check/options.h"
#include "check/plant/plant.h"
#include "check/report.h"
#include "check/rules/rule.h"
#include "cli/program.h"
#include "host/process/process.h"
#include "text/printable.h"

namespace check {
namespace {

void Print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        // Who closed a pipe has read enough: nothing is to be told of that.
        throw std::runtime_error(
            errno == EPIPE ? "" : std::string("the findings cannot be printed: ") + std::strerror(errno));
    }
}

// What the database holds. Where it cannot be read that is told, and the configuration is checked all the
// same.
std::optional<PointStatistics> StatisticsOf(const Input& input, bool& isReadable) {
    try {
        return input.Statistics();
    } catch (const std::runtime_error& error) {
        isReadable = false;
        std::fprintf(stderr, "zorv-check: %s\n", Printable(error.what()).c_str());
        return std::nullopt;
    }
}

int Run(const Options& options) {
    if (options.list) {
        Print(RuleList());
        return STATUS_CLEAN;
    }
    const Input input(options);
    const Document document(input.Configuration());
    const Model model(document);
    if (options.plant) {
        bool allFound = false;
        Print(PlantFaults(options, input, model, allFound));
        return options.strict && !allFound ? STATUS_FAULTS : STATUS_CLEAN;
    }
    bool isReadable = true;
    const std::optional<PointStatistics> statistics = StatisticsOf(input, isReadable);
    const Findings findings = Check(document, model, statistics ? &*statistics : nullptr);
    Print((options.json ? JsonReport : TextReport)(input.File(), model, findings));
    if (!isReadable) {
        return STATUS_UNREADABLE;
    }
    return findings.errors > 0 || (options.strict && findings.warnings > 0) ? STATUS_FAULTS : STATUS_CLEAN;
}

}  // namespace
}  // namespace check

int main(int argc, char** argv) {
    zorv::BeginProcess();
    check::Options options;
    if (const std::optional<int> status = check::ParseOptions(argc, argv, options)) {
        return *status;
    }
    return cli::RunProgram("zorv-check", check::STATUS_UNREADABLE, [&] { return check::Run(options); });
}
