#include "host/services/alarm_counts.h"

#include <atomic>
#include <cstring>

namespace zorv {
namespace {
constexpr const char* SUPPRESSED = "alarm too much, zorv will not send alarm";

std::atomic<uint64_t> g_sent{0};
std::atomic<uint64_t> g_lost{0};
std::atomic<uint64_t> g_suppressed{0};
}  // namespace

AlarmCounts CountAlarms() {
    return {g_sent, g_lost, g_suppressed};
}

void CountAlarm(bool isSent) {
    ++(isSent ? g_sent : g_lost);
}

void CountSuppressedAlarm(const char* logFormat) {
    if (std::strstr(logFormat, SUPPRESSED) != nullptr) {
        ++g_suppressed;
    }
}
}  // namespace zorv
