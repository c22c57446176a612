#include "explain/figures.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "agent/agent_time.h"

namespace explain {
namespace {

constexpr double MILLISECOND = 1e3;  // in microseconds
constexpr double SECOND = 1e6;
constexpr double MOST_OF_A_UNIT = 10.0;  // thousands, before the next unit reads better
constexpr const char* SPACE = "\u00a0";  // a number and its unit stay on one line

}  // namespace

std::string Figure(double value, int digits) {
    if (!std::isfinite(value)) {
        return UNKNOWN_FIGURE;
    }
    std::array<char, 400> text{};  // the largest number has 309 digits
    std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    const std::string figure = text.data();
    const bool isZero = figure.find_first_of("123456789") == std::string::npos;
    return isZero && figure[0] == '-' ? figure.substr(1) : figure;
}

std::string Figure(const std::optional<double>& value, int digits) {
    return value ? Figure(*value, digits) : UNKNOWN_FIGURE;
}

std::string Percent(double share) {
    return Figure(share * 100.0, 1) + SPACE + "%";
}

std::string DelayFigure(const std::optional<double>& microseconds) {
    return microseconds ? DelayFigure(*microseconds, *microseconds) : UNKNOWN_FIGURE;
}

std::string DelayFigure(double microseconds, double largest) {
    const double size = std::fabs(largest);
    return size < MOST_OF_A_UNIT * MILLISECOND ? Figure(microseconds, 0) + SPACE + "\u00b5s"
           : size < MOST_OF_A_UNIT * SECOND    ? Figure(microseconds / MILLISECOND, 1) + SPACE + "ms"
                                               : Figure(microseconds / SECOND, 1) + SPACE + "s";
}

std::string Counted(size_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string LocalTime(int64_t utc, int64_t zoneOffset) {
    VOPX_TIME_S time{};
    vopx_time_gmtime(utc + zoneOffset, &time);
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month, time.day,
                  time.hour, time.minute, time.second);
    return text.data();
}

std::string LocalClock(int64_t utc, int64_t zoneOffset) {
    const std::string time = LocalTime(utc, zoneOffset);
    return time.substr(time.find(' ') + 1);
}

std::string LocalTimes(int64_t start, int64_t end, int64_t zoneOffset) {
    const std::string first = LocalTime(start, zoneOffset);
    const std::string last = LocalTime(end, zoneOffset);
    const size_t day = first.find(' ');
    const bool isSameDay = first.compare(0, day, last, 0, last.find(' ')) == 0;
    return start == end ? first : first + " to " + (isSameDay ? LocalClock(end, zoneOffset) : last);
}

std::string ZoneFigure(int64_t zoneOffset) {
    const long long minutes = std::llabs(zoneOffset) / 60;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "UTC%c%02lld:%02lld", zoneOffset < 0 ? '-' : '+', minutes / 60,
                  minutes % 60);
    return text.data();
}

}  // namespace explain
