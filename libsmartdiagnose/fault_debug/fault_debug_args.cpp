#define FAULT_UNIT_FILE "fault_debug.cpp"
#include <stdexcept>

#include "agent/agent_time.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_number.h"
#include "fault_debug/fault_debug_command.h"

namespace {

constexpr int32_t DATE_LENGTH = 14;
constexpr size_t DATE_LENGTH_MAX = 15;  // of a time that the console makes itself; what is longer is cut

// Minutes to seconds in 32 bits, which wraps around.
int32_t SecondsOf(int32_t minutes) {
    return static_cast<int32_t>(static_cast<uint32_t>(minutes) * 60U);
}

// Whether the text is a number of minutes that fits.
bool ParseMinutes(const char* text, int32_t& minutes) {
    if (text == nullptr || !CheckDigitString(text, DATE_LENGTH)) {
        return false;
    }
    try {
        minutes = FaultToInt32(text);
        return true;
    } catch (const std::logic_error&) {
        return false;
    }
}

bool IsDate(const std::string& text) {
    return text.size() == DATE_LENGTH && CheckDigitString(text.c_str(), DATE_LENGTH);
}

}  // namespace

bool CheckDigitString(const char* text, int32_t maxLength) {
    for (int32_t i = 0; i < maxLength && text[i] != '\0'; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return false;
        }
    }
    return true;
}

uint32_t ParseTimeArgs(int32_t argc, char** argv, int32_t first, std::string& start, std::string& end) {
    if (argv == nullptr || argc <= first) {
        return 1;
    }
    if (argc == first + 2 && argv[first] != nullptr && argv[first + 1] != nullptr) {
        start = argv[first];
        end = argv[first + 1];
        return 0;
    }
    int32_t minutes = 0;
    if (argc != first + 1 || !ParseMinutes(argv[first], minutes)) {
        return 1;
    }
    const int64_t now = vopx_time_getlocaltime(nullptr);
    FaultFormatCompactTime(now, DATE_LENGTH_MAX, end);
    FaultFormatCompactTime(FaultWrapSubtract(now, SecondsOf(minutes)), DATE_LENGTH_MAX, start);
    return 0;
}

bool FaultParseRange(int32_t argc, char** argv, int32_t first, std::string& start, std::string& end) {
    if (ParseTimeArgs(argc, argv, first, start, end) != 0) {
        FaultPrintError("input err");
        return false;
    }
    return true;
}

bool CheckTimeRange(const std::string& start, const std::string& end) {
    if (!IsDate(start) || !IsDate(end) || FaultToInt64(start) >= FaultToInt64(end)) {
        FaultPrintError("date input err");
        return false;
    }
    std::string startTime;
    std::string endTime;
    if (TransDateToTime(start, startTime) != 0 || TransDateToTime(end, endTime) != 0) {
        return false;
    }
    if (FaultWrapSubtract(FaultToInt64(endTime), FaultToInt64(startTime)) > FAULT_RANGE_SECONDS_MAX) {
        FaultPrintError("Time range beyond two days");
        return false;
    }
    return true;
}
