// What became of alarms since the program's start. Any thread.
#pragma once

#include <cstdint>

namespace zorv {
struct AlarmCounts {
    uint64_t sent = 0;        // written to the alarm file
    uint64_t lost = 0;        // could not be written
    uint64_t suppressed = 0;  // kept back by the plug-in, which only logs them
};

AlarmCounts CountAlarms();

// Counts an alarm that was raised.
void CountAlarm(bool isSent);

// Counts the log line with this format when it tells that the plug-in kept an alarm back: the service itself
// never hears of that.
void CountSuppressedAlarm(const char* logFormat);
}  // namespace zorv
