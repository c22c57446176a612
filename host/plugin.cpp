#include "host/plugin.h"

#include <dlfcn.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <stdexcept>

#include "host/services/log.h"

namespace zorv {
namespace {
using PluginEntry = uint32_t (*)();

constexpr const char* ENTRY_NAME = "ZorvSmartDiagnoseInit";
constexpr const char* ADVICE =
    "; name another file with --plugin, or build the plug-in of this release (target smartdiagnose)";

// Seen from this program's directory: as built, and as installed.
constexpr std::array<const char*, 2> PLACES = {"../lib/libsmartdiagnose.so", ZORV_INSTALLED_PLUGIN};

std::filesystem::path DefaultPlugin() {
    const auto directory = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    std::string tried;
    for (const char* place : PLACES) {
        auto file = (directory / place).lexically_normal();
        std::error_code ignored;
        if (std::filesystem::exists(file, ignored)) {
            return file;
        }
        tried += (tried.empty() ? " " : ", ") + file.string();
    }
    throw std::runtime_error("there is no plug-in; looked for" + tried + ADVICE);
}

PluginEntry LoadEntry(const std::filesystem::path& file) {
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw std::runtime_error("cannot load the plug-in: " + std::string(dlerror()) + ADVICE);
    }
    void* const entry = dlsym(library, ENTRY_NAME);
    if (entry == nullptr) {
        throw std::runtime_error(file.string() + " is not a plug-in of this host: it has no " + ENTRY_NAME +
                                 ADVICE);
    }
    return reinterpret_cast<PluginEntry>(entry);
}
}  // namespace

void StartPlugin(const std::optional<std::string>& file) {
    // An absolute path: dlopen() would look for a bare name in the system's library folders.
    const PluginEntry entry =
        LoadEntry(file.has_value() ? std::filesystem::absolute(*file) : DefaultPlugin());
    const uint32_t result = Guarded("plug-in entry", 1U, entry);
    if (result != 0) {
        HOST_LOG(VPLOG_LEVEL_ERROR, "the plug-in's entry reports failure %u", result);
    }
}
}  // namespace zorv
