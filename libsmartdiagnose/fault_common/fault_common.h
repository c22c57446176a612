// Conversions between the three text forms in which times move through the plug-in:
//   epoch     UTC seconds since 1970, decimal: "1691046000"
//   compact   local date and time, 14 digits: "20230803150000"
//   readable  local date and time for the console, without leading zeros: "2023/8/3 15:0:0"
// Local means the node's zone in whole hours; the minutes of an offset such as +0530 are left out.
//
// Each returns 0, or non-zero with the output unchanged. A text that is no number throws the standard
// conversion errors (std::invalid_argument, std::out_of_range). Any thread; the first call runs the system's
// date command and waits for it.
#pragma once

#include <cstdint>
#include <string>

#include "fault_common/fault_export.h"

// Seconds east of UTC as signed decimal text ("28800"). Asked once, then remembered for the life of the
// process; a failure is not remembered.
FAULT_EXPORT uint32_t GetTimeZoneOffset(std::string& offset);

// Epoch to compact.
FAULT_EXPORT uint32_t TransUtcTimeToLocalTime(const std::string& utcTime, std::string& localTime);

// Compact to epoch. Any other length than 14 is a failure; fields out of their range carry over.
FAULT_EXPORT uint32_t TransDateToTime(const std::string& date, std::string& utcTime);

// Epoch to readable.
FAULT_EXPORT uint32_t TransUtcTimeToDate(const std::string& utcTime, std::string& date);

// A broken-down time in the compact form, written as the calendar service yields it, without a zone. Returns
// 0; non-zero when the text was longer than `maxLength` characters (at most 31) and was cut there.
uint32_t FaultFormatCompactTime(int64_t seconds, size_t maxLength, std::string& text);
