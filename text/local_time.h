// Local times as text, in this process's zone. No service of the agent is needed.
#pragma once

#include <cstdint>
#include <string>

// Seconds east of UTC at the UTC second `time`, in whole hours: the plug-in reads no more of the zone, and
// both must agree. Any thread.
int64_t ZoneOffsetAt(int64_t time);

// Local time as "2023-01-05 14:03:00", or "@" and the seconds since 1970 where the calendar has no such time
// in a year of four digits. `zoneOffset` is in seconds east of UTC.
std::string LocalTime(int64_t time, int64_t zoneOffset);

// The same in compact form, "20230105140300".
std::string CompactTime(int64_t time, int64_t zoneOffset);

// "2023-01-05T14:03:00+08:00"; empty where the calendar has no such time in a year of four digits.
std::string IsoTime(int64_t time, int64_t zoneOffset);

// "+08:00".
std::string ZoneText(int64_t zoneOffset);
