#include <array>
#include <cmath>
#include <cstdio>

#include "explain/report.h"
#include "explain/wording.h"

namespace explain {

std::string TimeOfDay(int64_t time, int64_t zoneOffset) {
    const std::string text = LocalTime(time, zoneOffset);
    return text.substr(text.find(' ') + 1);
}

std::string LocalTimes(int64_t start, int64_t end, int64_t zoneOffset) {
    const std::string first = LocalTime(start, zoneOffset);
    const std::string last = LocalTime(end, zoneOffset);
    const size_t day = first.find(' ');
    const bool isSameDay = first.compare(0, day, last, 0, last.find(' ')) == 0;
    return start == end ? first : first + " to " + (isSameDay ? TimeOfDay(end, zoneOffset) : last);
}

std::string Fixed(double value, int decimals) {
    std::array<char, 400> text{};  // the largest number has 309 digits
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

std::string Percent(double share) {
    return Fixed(share * 100.0, 1) + " %";
}

std::string Microseconds(double delay) {
    return Fixed(delay, delay < 100.0 ? 1 : 0) + " us";
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

const char* WordOf(BaselinePart part) {
    switch (part) {
        case BaselinePart::FIRST_HALF:
            return "first half";
        case BaselinePart::SECOND_HALF:
            return "second half";
        case BaselinePart::FIRST_THIRD:
            return "first third";
        case BaselinePart::MIDDLE_THIRD:
            return "middle third";
        case BaselinePart::LAST_THIRD:
            return "last third";
        case BaselinePart::WITHOUT_LAST_HOUR:
            return "without the last hour";
        case BaselinePart::WHOLE:
            break;
    }
    return "whole";
}

const char* WordOf(Certainty certainty) {
    switch (certainty) {
        case Certainty::SURE:
            return "sure";
        case Certainty::LIKELY:
            return "likely";
        case Certainty::UNSURE:
            break;
    }
    return "unsure";
}

std::string DeviationsOf(double deviations) {
    return Fixed(std::fabs(deviations), 1) + " deviations " + (deviations < 0.0 ? "below" : "above") +
           " the usual";
}

}  // namespace explain
