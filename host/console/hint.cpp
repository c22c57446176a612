#include "host/console/hint.h"

#include <json/reader.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "host/console/explain_program.h"
#include "host/process/error_lines.h"

namespace zorv {
namespace {
// Whether a report sees an event of one of the points that it looked at.
bool HasEvent(const std::string& report) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value document;
    if (!reader->parse(report.data(), report.data() + report.size(), &document, nullptr)) {
        return false;
    }
    const Json::Value& looks = document["looks"];
    return std::any_of(looks.begin(), looks.end(),
                       [](const Json::Value& look) { return look["samples_in_events"].asUInt64() > 0; });
}
}  // namespace

void HintAtEvent(const Words& words, const ConsoleState& state) {
    Words arguments = {"--json"};
    arguments.insert(arguments.end(), words.begin() + 1, words.end());
    std::string report;
    try {
        RunExplainProgram(state.sharedOptions, arguments, &report);
        if (HasEvent(report)) {
            PrintErrorLines("zorv-local: an event that the detector cannot flag: see explain\n");
        }
    } catch (const std::exception&) {
        // The program is not there, or was stopped: the command's own answer stands.
    }
}
}  // namespace zorv
