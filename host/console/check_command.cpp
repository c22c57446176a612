#include <json/reader.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "agent/agent_storage.h"
#include "host/console/commands.h"
#include "host/console/explain_program.h"
#include "host/process/error_lines.h"
#include "host/process/settings.h"
#include "text/counted.h"

namespace zorv {
namespace {
// Those of the shared options that tell where the files are.
Words PlaceOptions(const Words& shared) {
    Words place;
    for (size_t i = 0; i + 1 < shared.size(); ++i) {
        if (shared[i] == "--root" || shared[i] == "--capture") {
            place.insert(place.end(), {shared[i], shared[i + 1]});
        }
    }
    return place;
}

uint64_t ErrorsIn(const std::string& report) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value document;
    const bool isRead = reader->parse(report.data(), report.data() + report.size(), &document, nullptr);
    return isRead && document.isObject() ? document["errors"].asUInt64() : 0;
}
}  // namespace

ExitStatus RunCheck(const Words& words, ConsoleState& state) {
    const bool namesFile = std::any_of(words.begin() + 1, words.end(),
                                       [](const std::string& word) { return word.substr(0, 1) != "-"; });
    Words arguments = namesFile ? Words() : PlaceOptions(state.sharedOptions);
    arguments.insert(arguments.end(), words.begin() + 1, words.end());
    return RunCheckProgram(arguments);
}

Words WordsAfterCheck(const Words& /*before*/) {
    return {"--strict", "--json", "--list", "--help"};
}

void TellConfigurationErrors() {
    std::string report;
    try {
        RunCheckProgram({"--json", RootedPath(ZORV_ROUTE_CONFIG_FILE)}, &report);
        if (const uint64_t errors = ErrorsIn(report); errors > 0) {
            PrintErrorLines("zorv-local: the configuration has " + Counted(errors, "error") +
                            "; 'check' lists them\n");
        }
    } catch (const std::exception&) {
        // The program is not there, or was stopped: the console works without it.
    }
}
}  // namespace zorv
