#include "fault_common/fault_common.h"

#include <stdio.h>

#include <array>
#include <optional>

#include "agent/agent_memory.h"
#include "agent/agent_time.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_mutex.h"
#include "fault_common/fault_number.h"

namespace {

constexpr const char* ZONE_COMMAND = "echo `date +%z`";
constexpr size_t ZONE_TEXT_LENGTH = 5;  // "+0800"
constexpr size_t COMPACT_LENGTH = 14;
constexpr int32_t SECONDS_PER_HOUR = 3600;

FaultMutex g_zoneMutex;
std::optional<int32_t> g_zoneOffset FAULT_GUARDED_BY(g_zoneMutex);  // seconds east of UTC, once it is known

uint32_t RunZoneCommand(std::string& output) {
    std::array<char, 64> buffer{};
    size_t length = 0;
    int status = -1;
    if (FILE* pipe = popen(ZONE_COMMAND, "r"); pipe != nullptr) {
        length = fread(buffer.data(), 1, buffer.size(), pipe);
        status = pclose(pipe);
    }
    if (status != 0) {
        FAULT_LOG(FAULT_IN("GetTimeZoneOffset"), FAULT_ERROR, "execute cmd faild: %s.", ZONE_COMMAND);
        return 1;
    }
    output.assign(buffer.data(), length);
    return 0;
}

// Local seconds of a UTC time given as text.
uint32_t LocalSeconds(const std::string& utcTime, int64_t& seconds) {
    std::string offset;
    const uint32_t result = GetTimeZoneOffset(offset);
    if (result == 0) {
        seconds = FaultWrapAdd(FaultToInt64(utcTime), FaultToInt64(offset));
    }
    return result;
}

}  // namespace

uint32_t GetTimeZoneOffset(std::string& offset) {
    FaultLock lock(g_zoneMutex);
    if (g_zoneOffset) {
        offset = std::to_string(*g_zoneOffset);
        return 0;
    }
    std::string zone;
    if (RunZoneCommand(zone) != 0) {
        return 1;
    }
    if (zone.size() < ZONE_TEXT_LENGTH) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "timezone is incorrect: %s.", zone.c_str());
        return 1;
    }
    if (zone[0] != '+' && zone[0] != '-') {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "charSign is incorrect: %c.", zone[0]);
        return 1;
    }
    const int32_t hours = FaultToInt32(std::string_view(zone).substr(1, 2));
    g_zoneOffset = (zone[0] == '-' ? -hours : hours) * SECONDS_PER_HOUR;
    offset = std::to_string(*g_zoneOffset);
    return 0;
}

uint32_t FaultFormatCompactTime(int64_t seconds, size_t maxLength, std::string& text) {
    VOPX_TIME_S time{};
    vopx_time_gmtime(seconds, &time);
    std::array<char, 32> buffer{};
    const int32_t length = snprintf_s(buffer.data(), buffer.size(), maxLength, "%04d%02d%02d%02d%02d%02d",
                                      time.year, time.month, time.day, time.hour, time.minute, time.second);
    text = buffer.data();
    return length < 0 ? 1U : 0U;
}

uint32_t TransUtcTimeToLocalTime(const std::string& utcTime, std::string& localTime) {
    int64_t seconds = 0;
    const uint32_t result = LocalSeconds(utcTime, seconds);
    if (result != 0) {
        return result;
    }
    std::string text;
    if (FaultFormatCompactTime(seconds, 31, text) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "snprintf_s failed.");
        return 1;
    }
    localTime = text;
    return 0;
}

uint32_t TransDateToTime(const std::string& date, std::string& utcTime) {
    if (date.size() != COMPACT_LENGTH) {
        return 1;
    }
    const std::string_view text(date);
    VOPX_TIME_S time{};
    time.year = FaultToInt32(text.substr(0, 4));
    time.month = FaultToInt32(text.substr(4, 2));
    time.day = FaultToInt32(text.substr(6, 2));
    time.hour = FaultToInt32(text.substr(8, 2));
    time.minute = FaultToInt32(text.substr(10, 2));
    time.second = FaultToInt32(text.substr(12, 2));
    std::string offset;
    const uint32_t result = GetTimeZoneOffset(offset);
    if (result == 0) {
        utcTime = std::to_string(FaultWrapSubtract(vopx_time_mktime(&time), FaultToInt64(offset)));
    }
    return result;
}

uint32_t TransUtcTimeToDate(const std::string& utcTime, std::string& date) {
    int64_t seconds = 0;
    const uint32_t result = LocalSeconds(utcTime, seconds);
    if (result != 0) {
        return result;
    }
    VOPX_TIME_S time{};
    vopx_time_gmtime(seconds, &time);
    date = std::to_string(time.year) + "/" + std::to_string(time.month) + "/" + std::to_string(time.day) +
           " " + std::to_string(time.hour) + ":" + std::to_string(time.minute) + ":" +
           std::to_string(time.second);
    return 0;
}
