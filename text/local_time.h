// This process's zone, and local times as text. No service of the agent is needed.
#pragma once

#include <cstdint>
#include <string>

// Seconds east of UTC at the UTC second `time`, in whole hours: the plug-in reads no more of the zone, and
// both must agree. Any thread.
int64_t ZoneOffsetAt(int64_t time);

// Makes `zone`, a sign and four digits such as "+0800", the zone of this process and of the programs that it
// starts. Not thread-safe: call it before anything asks for local time.
void SetZone(const std::string& zone);

// Makes the offset that the zone has now the zone of this process and of the programs that it starts: a
// change of daylight saving time passes them by, as it does the plug-in, which asks for the offset once. Not
// thread-safe, as SetZone().
void KeepZone();

// Local time as "2023-01-05 14:03:00", or "@" and the seconds since 1970 where the calendar has no such time
// in a year of four digits. `zoneOffset` is in seconds east of UTC.
std::string LocalTime(int64_t time, int64_t zoneOffset);

// The same in compact form, "20230105140300".
std::string CompactTime(int64_t time, int64_t zoneOffset);

// "+08:00".
std::string ZoneText(int64_t zoneOffset);
