#include "text/zone.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "text/local_time.h"
#include "text/printable.h"

namespace {
constexpr int64_t MINUTE = 60;
constexpr int64_t HOUR = 3600;
constexpr int64_t FARTHEST = 15 * HOUR;  // beyond any zone; the system would take such a one for UTC
constexpr std::string_view DIGITS = "0123456789";

// The zone's file, as the system looks for it, if it is one.
bool IsKnownName(const std::string& name) {
    const char* const directory = std::getenv("TZDIR");
    const std::string folder = directory == nullptr ? "/usr/share/zoneinfo" : directory;
    const std::string path = name.front() == '/' ? name : folder + '/' + name;
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) {  // a pipe would be waited for
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    std::array<char, 4> start{};
    file.read(start.data(), start.size());
    return file && std::string_view(start.data(), start.size()) == "TZif";
}

// Whether TZ says what the zone is instead of naming it, such as "CET-1CEST".
bool IsRule(const std::string& zone) {
    const bool isQuoted = zone.front() == '<';
    const size_t offset = isQuoted ? zone.find('>') : zone.find_first_of("+-0123456789");
    const bool hasOffset = offset < zone.size() - (isQuoted ? 1 : 0) && offset > 2;
    return zone == "UTC" || zone == "GMT" || hasOffset;
}

// Why the system takes TZ for UTC; empty when it does not.
std::string ProblemOfTz() {
    const char* const text = std::getenv("TZ");
    const std::string zone = text == nullptr || text[0] != ':' ? (text == nullptr ? "" : text) : text + 1;
    return zone.empty() || IsKnownName(zone) || IsRule(zone)
               ? ""
               : "TZ is '" + Printable(zone, 40) +
                     "', which is no zone that this machine knows: times are UTC";
}

void SetTz(const std::string& zone) {
    setenv("TZ", zone.c_str(), 1);
    tzset();
}

int64_t ExactOffsetNow() {
    const time_t now = std::time(nullptr);
    tm local{};
    return localtime_r(&now, &local) == nullptr ? 0 : local.tm_gmtoff;
}

// Two digits, or the one that is all there is.
std::optional<int64_t> TakeTwoDigits(std::string_view& text) {
    const size_t count = std::min<size_t>({text.find_first_not_of(DIGITS), text.size(), 2});
    if (count == 0 || (count == 1 && text.size() > 1)) {
        return std::nullopt;
    }
    const int64_t number = std::stoi(std::string(text.substr(0, count)));
    text.remove_prefix(count);
    return number;
}
}  // namespace

std::optional<int64_t> OffsetOf(std::string_view zone) {
    if (zone == "Z") {
        return 0;
    }
    if (zone.empty() || (zone.front() != '+' && zone.front() != '-')) {
        return std::nullopt;
    }
    const int64_t sign = zone.front() == '-' ? -1 : 1;
    zone.remove_prefix(1);
    const std::optional<int64_t> hours = TakeTwoDigits(zone);
    zone.remove_prefix(zone.size() == 3 && zone.front() == ':' ? 1 : 0);
    const bool hasMinutes = zone.size() == 2;
    const std::optional<int64_t> minutes = hasMinutes ? TakeTwoDigits(zone) : 0;
    if (!hours || !minutes || *minutes >= MINUTE || !zone.empty()) {
        return std::nullopt;
    }
    const int64_t offset = *hours * HOUR + *minutes * MINUTE;
    return offset < FARTHEST ? std::optional<int64_t>(sign * offset) : std::nullopt;
}

std::string FaultOfZone(const std::string& zone) {
    const bool isKnown =
        OffsetOf(zone) || (!zone.empty() && zone.find("..") == std::string::npos && IsKnownName(zone));
    return isKnown ? ""
                   : "'" + Printable(zone, 40) +
                         "' is no zone: that is +0800, +08:00, +8 or a name such as Asia/Shanghai";
}

std::string KeepZone(const std::optional<std::string>& zone) {
    const std::string problem = zone ? "" : ProblemOfTz();
    const std::optional<int64_t> named = zone ? OffsetOf(*zone) : std::nullopt;
    if (zone && !named) {
        SetTz(*zone);
    }
    const int64_t exact = named ? *named : ExactOffsetNow();
    const int64_t kept = exact / HOUR * HOUR;
    const std::string text = ZoneText(kept);
    // Zones count east, TZ counts west.
    SetTz("<" + text.substr(0, 3) + text.substr(4) + ">" + (kept < 0 ? "+" : "-") + text.substr(1));
    return exact == kept ? problem
                         : "the zone is " + ZoneText(exact) +
                               ", but times count in whole hours, as the plug-in's: " + text;
}
