#include "explain/input.h"

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "agent/agent_log.h"
#include "agent/agent_storage.h"
#include "fault_common/fault_path.h"
#include "fault_database/fault_database.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "host/process/settings.h"
#include "host/process/statements.h"
#include "host/services/log.h"
#include "text/printable.h"

namespace explain {
using namespace zorv;
namespace {

std::string DirectoryOf(const Options& options) {
    const std::optional<std::string>& named = options.capture ? options.capture : options.root;
    return named ? std::filesystem::absolute(*named).lexically_normal().string() : std::string();
}

std::unique_ptr<Capture> OpenCapture(const Options& options) {
    if (!options.capture) {
        return nullptr;
    }
    auto capture = std::make_unique<Capture>(*options.capture, options.emptyHeal, !options.zone);
    for (const std::string& note : capture->Notes()) {
        std::fprintf(stderr, "zorv-explain: %s\n", Printable(note).c_str());
    }
    return capture;
}

}  // namespace

Input::Input(const Options& options) : directory(DirectoryOf(options)) {
    if (options.root && !std::filesystem::is_directory(*options.root)) {
        throw std::runtime_error("the root '" + *options.root + "' is not a directory");
    }
    capture = OpenCapture(options);
    cli::TakeZone("zorv-explain", options.zone || !capture ? options.zone : capture->Zone());
    HostSettings settings;
    settings.root = capture ? capture->Root() : directory;
    SetHostSettings(settings);
    if (const std::string advice = AdviceWithoutFiles(); !advice.empty()) {
        throw std::runtime_error(advice);
    }
    ConfigureLog(options.log, VPLOG_LEVEL_WARNING);
    WatchStatements();
}

void Input::ReadConfiguration() const {
    if (FaultJsonObject::GetInstance().ParseJsonConfig(FaultPath(ZORV_ROUTE_CONFIG_FILE)) != 0) {
        throw std::runtime_error("the configuration " + directory + ZORV_ROUTE_CONFIG_FILE +
                                 " cannot be read");
    }
}

void Input::OpenDatabases() const {
    for (const char* const file : {LUMO_DATABASE_FILE, ZORV_HEAL_DATABASE_FILE}) {
        if (std::error_code ignored; !std::filesystem::exists(FaultPath(file), ignored)) {
            throw std::runtime_error("the database " + directory + file + " is not there");
        }
    }
    if (FaultDataBaseInit() != 0) {
        throw std::runtime_error("the databases " + directory + LUMO_DATABASE_FILE + " and " + directory +
                                 ZORV_HEAL_DATABASE_FILE + " cannot both be opened");
    }
}

}  // namespace explain
