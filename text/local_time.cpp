#include "text/local_time.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <ctime>

int64_t ZoneOffsetAt(int64_t time) {
    constexpr long HOUR = 3600;
    const time_t seconds = time;
    tm local{};
    return localtime_r(&seconds, &local) == nullptr ? 0 : local.tm_gmtoff / HOUR * HOUR;
}

std::string LocalTime(int64_t time, int64_t zoneOffset) {
    constexpr int64_t FIRST = -62135596800, LAST = 253402300799;  // of the years 1 to 9999
    const time_t seconds = std::clamp(time, 2 * FIRST, 2 * LAST) + zoneOffset;
    if (seconds < FIRST || seconds > LAST) {
        return "@" + std::to_string(time);
    }
    tm date{};
    gmtime_r(&seconds, &date);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%04" PRId64 "-%02d-%02d %02d:%02d:%02d",
                  int64_t{date.tm_year} + 1900, date.tm_mon + 1, date.tm_mday, date.tm_hour, date.tm_min,
                  date.tm_sec);
    return text.data();
}

std::string CompactTime(int64_t time, int64_t zoneOffset) {
    std::string text = LocalTime(time, zoneOffset);
    text.erase(
        std::remove_if(text.begin(), text.end(), [](char letter) { return letter < '0' || letter > '9'; }),
        text.end());
    return text;
}

std::string IsoTime(int64_t time, int64_t zoneOffset) {
    std::string text = LocalTime(time, zoneOffset);
    std::replace(text.begin(), text.end(), ' ', 'T');
    return text.front() == '@' ? "" : text + ZoneText(zoneOffset);
}

std::string ZoneText(int64_t zoneOffset) {
    const int64_t minutes = std::abs(zoneOffset) / 60;
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%c%02d:%02d", zoneOffset < 0 ? '-' : '+',
                  static_cast<int>(minutes / 60), static_cast<int>(minutes % 60));
    return text.data();
}
