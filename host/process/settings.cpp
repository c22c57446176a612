#include "host/process/settings.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "agent/agent_storage.h"

#include "host/process/immortal.h"

namespace zorv {
namespace {
HostSettings& Settings() {
    static HostSettings& settings = MakeImmortal<HostSettings>();
    return settings;
}
}  // namespace

void SetHostSettings(const HostSettings& settings) {
    Settings() = settings;
}

const HostSettings& GetHostSettings() {
    return Settings();
}

std::string RootedPath(const std::string& path) {
    return GetHostSettings().root + path;
}

std::string GivenPath(const std::string& path) {
    const HostSettings& settings = GetHostSettings();
    const auto moved = settings.movedFiles.find(path);
    return moved != settings.movedFiles.end() ? moved->second
                                              : settings.capture.value_or(settings.root) + path;
}

std::string AdviceWithoutFiles() {
    const std::array<const char*, 3> files = {ZORV_ROUTE_CONFIG_FILE, LUMO_DATABASE_FILE,
                                              ZORV_HEAL_DATABASE_FILE};
    const bool isNode =
        !GetHostSettings().root.empty() || std::any_of(files.begin(), files.end(), [](const char* file) {
            std::error_code ignored;
            return std::filesystem::exists(file, ignored);
        });
    return isNode ? ""
                  : "this machine has none of the storage system's files, such as " LUMO_DATABASE_FILE
                    ": name the folder that they are below with --root, or a copy of them with --capture";
}
}  // namespace zorv
