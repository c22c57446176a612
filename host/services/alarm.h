// What became of alarms since the program's start.
#pragma once

#include <cstdint>

// Under the root.
constexpr const char* ALARM_FILE = "/VRA/coffer_log/log/alarm/alarms.jsonl";

struct AlarmCounts {
    uint64_t sent = 0;        // written to the alarm file
    uint64_t lost = 0;        // could not be written
    uint64_t suppressed = 0;  // kept back by the plug-in, which only logs them
};

// Any thread.
AlarmCounts CountAlarms();

// Counts the log line with this format when it tells that the plug-in kept an alarm back: the service itself
// never hears of that. Any thread.
void CountSuppressedAlarm(const char* logFormat);
