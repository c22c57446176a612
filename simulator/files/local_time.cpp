#include "simulator/files/local_time.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "text/local_time.h"

namespace lumosim {
namespace {

std::string Format(const char* format, int64_t utc, int64_t zoneOffset) {
    const time_t local = utc + zoneOffset;
    std::tm date{};
    gmtime_r(&local, &date);
    std::array<char, 96> text{};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // both formats stand in this file
    std::snprintf(text.data(), text.size(), format, date.tm_year + 1900, date.tm_mon + 1, date.tm_mday,
                  date.tm_hour, date.tm_min, date.tm_sec);
#pragma GCC diagnostic pop
    return text.data();
}

}  // namespace

int64_t ZoneOffset() {
    return ZoneOffsetAt(std::time(nullptr));
}

std::string CompactTime(int64_t utc, int64_t zoneOffset) {
    return Format("%04d%02d%02d%02d%02d%02d", utc, zoneOffset);
}

std::string ReadableTime(int64_t utc, int64_t zoneOffset) {
    return Format("%d/%d/%d %d:%d:%d", utc, zoneOffset);
}

std::optional<int64_t> ParseCompactTime(std::string_view text, int64_t zoneOffset) {
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    if (text.size() != 14 || !std::all_of(text.begin(), text.end(), isDigit)) {
        return std::nullopt;
    }
    const auto number = [&](size_t begin, size_t count) {
        return std::stoi(std::string(text.substr(begin, count)));
    };
    std::tm date{};
    date.tm_year = number(0, 4) - 1900;
    date.tm_mon = number(4, 2) - 1;
    date.tm_mday = number(6, 2);
    date.tm_hour = number(8, 2);
    date.tm_min = number(10, 2);
    date.tm_sec = number(12, 2);
    if (date.tm_year < 71 || date.tm_year > 1099) {
        return std::nullopt;
    }
    const int64_t utc = timegm(&date) - zoneOffset;
    // A date that the calendar lacks comes back as another one.
    return CompactTime(utc, zoneOffset) == text ? std::optional<int64_t>(utc) : std::nullopt;
}

}  // namespace lumosim
