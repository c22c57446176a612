#include "agent/agent_heal.h"

#include <ini.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>

#include "host/process/files.h"
#include "host/process/settings.h"
#include "host/services/log.h"

namespace zorv {
namespace {
constexpr std::string_view SECTION = "heal";
constexpr std::string_view KEY = "value";
constexpr size_t LARGEST_FILE = 4096;
constexpr size_t LONGEST_LINE = 197;  // the INI reader cuts longer ones, and takes the rest for a new line

// What the INI reader came across.
struct Findings {
    int count = 0;  // of pairs, whatever their name
    bool named = false;
    std::string value;
};

int TakePair(void* user, const char* section, const char* name, const char* value) {
    auto& found = *static_cast<Findings*>(user);
    ++found.count;
    found.named = section == SECTION && name == KEY;
    found.value = value;
    return 1;
}

// Whether the INI reader sees all of the text.
bool IsReadable(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        return false;
    }
    while (!text.empty()) {
        const size_t length = std::min(text.find('\n'), text.size());
        if (length > LONGEST_LINE) {
            return false;
        }
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return true;
}

bool ParseNumber(const std::string& text, int32_t& number) {
    const char* const end = text.data() + text.size();
    int32_t parsed = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, parsed);
    if (error != std::errc() || stop != end) {
        return false;
    }
    number = parsed;
    return true;
}

// Exactly one pair, ours: a file with anything else in it was written by someone else, or is damaged.
bool ParseContent(const std::string& content, int32_t& number) {
    Findings found;
    return IsReadable(content) && ini_parse_string(content.c_str(), TakePair, &found) == 0 &&
           found.count == 1 && found.named && ParseNumber(found.value, number);
}

uint32_t ReadNumber(const std::string& path, int32_t& number) {
    std::string content;
    if (!ReadSmallFile(path, LARGEST_FILE, content)) {
        HOST_LOG(VPLOG_LEVEL_INFO, "%s cannot be read: %s", path.c_str(), std::strerror(errno));
        return 1;
    }
    if (!ParseContent(content, number)) {
        HOST_LOG(VPLOG_LEVEL_WARNING, "%s does not hold a number", path.c_str());
        return 1;
    }
    return 0;
}

uint32_t WriteNumber(const std::string& path, int32_t number) {
    const std::string content =
        "[" + std::string(SECTION) + "]\n" + std::string(KEY) + "=" + std::to_string(number) + "\n";
    if (!MakeDirectoryOf(path) || !ReplaceFile(path, content)) {
        HOST_LOG(VPLOG_LEVEL_ERROR, "%s cannot be written: %s", path.c_str(), std::strerror(errno));
        return 1;
    }
    return 0;
}
}  // namespace
}  // namespace zorv

uint32_t HealReadZorvModePrivateIni(const char* path, int32_t* value, uint32_t /*flag*/) {
    if (path == nullptr || value == nullptr) {
        return 1;
    }
    return zorv::Guarded("heal read", 1U, [=] { return zorv::ReadNumber(zorv::RootedPath(path), *value); });
}

uint32_t HealWriteZorvModePrivateIni(const char* path, int32_t value, uint32_t /*flag*/) {
    if (path == nullptr) {
        return 1;
    }
    return zorv::Guarded("heal write", 1U, [=] { return zorv::WriteNumber(zorv::RootedPath(path), value); });
}
