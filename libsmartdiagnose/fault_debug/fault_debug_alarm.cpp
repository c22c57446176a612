#define FAULT_UNIT_FILE "fault_debug.cpp"
#include <algorithm>
#include <array>

#include "agent/agent_alarm.h"
#include "agent/agent_time.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_mutex.h"
#include "fault_common/fault_number.h"
#include "fault_debug/fault_debug_command.h"

namespace {

constexpr uint64_t DELAY_FAULT_ALARM = 0xF00C90150;
constexpr uint32_t ALARM_FAULT = 1;
constexpr int64_t DAY_SECONDS = 86400;
constexpr int64_t FREE_SLOT = 0;

FaultMutex g_alarmMutex;
// When the alarms of the last day were sent, local seconds.
std::array<int64_t, 3> g_alarmTimes FAULT_GUARDED_BY(g_alarmMutex) = {};

}  // namespace

void FaultDiagRecordAndSendAlarm() {
    const int64_t now = vopx_time_getlocaltime(nullptr);
    FaultLock lock(g_alarmMutex);
    for (int64_t& sent : g_alarmTimes) {
        if (sent != FREE_SLOT && FaultWrapSubtract(now, sent) > DAY_SECONDS) {
            sent = FREE_SLOT;
        }
    }
    const auto slot = std::find(g_alarmTimes.begin(), g_alarmTimes.end(), FREE_SLOT);
    if (slot == g_alarmTimes.end()) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO,
                  "The fault diagnose is dected err, but alarm too much, zorv will not send alarm.");
        return;
    }
    FAULT_LOG(FAULT_HERE, FAULT_ERROR, "The fault diagnose dected err, zorv will send alarm.");
    const uint32_t result = ALM_SendAlarm(FAULT_MODULE, DELAY_FAULT_ALARM, ALARM_FAULT, "faultDiagnose");
    if (result != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Send alarm fail, ret=%u.", result);
    }
    *slot = now;
}
