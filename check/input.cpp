#include "check/input.h"

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "agent/agent_storage.h"
#include "check/newest_day.h"
#include "check/source/source_text.h"
#include "text/printable.h"

namespace check {
namespace {

std::unique_ptr<zorv::Capture> OpenCapture(const Options& options) {
    if (!options.capture) {
        return nullptr;
    }
    auto capture = std::make_unique<zorv::Capture>(*options.capture, true);  // healing is of no interest
    for (const std::string& note : capture->Notes()) {
        std::fprintf(stderr, "zorv-check: %s\n", Printable(note).c_str());
    }
    return capture;
}

}  // namespace

Input::Input(const Options& options) : capture(OpenCapture(options)) {
    if (options.file) {
        file = configuration = *options.file;
        return;
    }
    const std::string root = options.capture.value_or(options.root.value_or(""));
    if (options.root && !std::filesystem::is_directory(root)) {
        throw std::runtime_error("the root '" + root + "' is not a directory");
    }
    const std::string read = capture ? capture->Root() : root;
    file = capture ? capture->Files().PathOf(ZORV_ROUTE_CONFIG_FILE) : root + ZORV_ROUTE_CONFIG_FILE;
    configuration = read + ZORV_ROUTE_CONFIG_FILE;
    database = read + LUMO_DATABASE_FILE;
}

std::string Input::Configuration() const {
    return ReadSource(configuration);
}

std::optional<PointStatistics> Input::Statistics() const {
    return database.empty() ? std::nullopt : std::optional<PointStatistics>(ReadNewestDay(database));
}

}  // namespace check
