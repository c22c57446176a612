#include "host/process/settings.h"

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
    return settings.capture.value_or(settings.root) + path;
}
}  // namespace zorv
