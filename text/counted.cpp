#include "text/counted.h"

std::string Counted(size_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string Counted(size_t least, size_t most, const std::string& thing) {
    return (least == most ? "" : std::to_string(least) + " to ") + Counted(most, thing);
}

std::string Duration(int64_t seconds) {
    const auto unit = [](int64_t count, const char* name) { return std::to_string(count) + name; };
    if (seconds < 60) {
        return unit(seconds, " s");
    }
    const bool isLong = seconds >= 3600;
    const int64_t rest = isLong ? seconds % 3600 / 60 : seconds % 60;
    const std::string first = isLong ? unit(seconds / 3600, " h") : unit(seconds / 60, " min");
    return rest == 0 ? first : first + " " + unit(rest, isLong ? " min" : " s");
}
