#include "explain/wording.h"

#include <array>
#include <cstdio>

#include "explain/analysis/analysis.h"
#include "explain/analysis/event.h"

namespace explain {

std::string TimeOfDay(int64_t time, int64_t zoneOffset) {
    const std::string text = LocalTime(time, zoneOffset);
    return text.substr(text.find(' ') + 1);
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

std::string Fixed(double value, int decimals) {
    std::array<char, 400> text{};  // the largest number has 309 digits
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

std::string Percent(double share) {
    return Fixed(share * 100.0, 1) + " %";
}

std::string TooFewForSigma(size_t count) {
    return "only " + Counted(count, "sample") + ": three-sigma needs " + std::to_string(FEWEST_FOR_SIGMA) +
           " to fire";
}

const char* WordOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::POINT:
            return "point";
        case Verdict::LOAD:
            return "load";
        case Verdict::NOTHING:
            return "nothing";
        case Verdict::CANNOT_TELL:
            break;
    }
    return "cannot tell";
}

const char* WordOf(Nature nature) {
    switch (nature) {
        case Nature::USUAL:
            return "usual";
        case Nature::LOAD:
            return "load";
        case Nature::DEVICE:
            return "device";
        case Nature::UNKNOWN:
            break;
    }
    return "unknown";
}

}  // namespace explain
