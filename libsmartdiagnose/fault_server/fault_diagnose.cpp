#include "fault_server/fault_diagnose.h"

#include "agent/agent_memory.h"
#include "agent/agent_startup.h"
#include "agent/agent_storage.h"
#include "agent/agent_time.h"
#include "agent/agent_timer.h"
#include "fault_common/fault_boundary.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_path.h"
#include "fault_database/fault_database.h"
#include "fault_debug/fault_debug.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "fault_switch/fault_diagnose_switch.h"

namespace {

constexpr const char* TIMER_NAME = "SmartDiagnoseDetect";
constexpr uint64_t TIMER_PERIOD = 3600000;  // milliseconds
constexpr uint32_t TIMER_LINE = 64;

int64_t g_firstTickTime = 0;  // touched by the agent's timer thread alone

// Detection runs from console commands only; the first tick keeps its time, later ones show that the timer
// lives.
void ZorvSmartDiagnoseDetectTimer(void* /*arg*/) {
    const int64_t now = vopx_time_getlocaltime(nullptr);
    if (g_firstTickTime == 0) {
        g_firstTickTime = now;
        return;
    }
    FAULT_LOG(FAULT_AT_LINE(52), FAULT_INFO, "Smart diagnose timer init success.");
}

// The status of `step`; an exception that leaves it is a failure.
template <typename Step>
uint32_t StatusOf(const FaultLogSite& site, Step step) {
    uint32_t result = 1;
    FaultRunGuarded(site, [&] { result = step(); });
    return result;
}

ZORV_MODULE_INIT_S g_startupTable[] = {
    {"JsonObject", ZorvSmartDiagnoseJsonObjectInit, 0},
    {"Timer", ZorvSmartDiagnoseTimerInit, 0},
    {"MsgHandle", ZorvSmartDiagnoseMsgHandleInit, 0},
    {"DataBase", ZorvSmartDiagnoseDataBaseInit, 0},
    {"Debug", ZorvSmartDiagnoseDebugInit, 0},
    {"LoadFaultDiagSwitchMsg", ZorvFaultDiagSwitchMsgHandleInit, 0},
};

}  // namespace

uint32_t ZorvSmartDiagnoseInit() {
    if (ZORV_ModulesStartup(g_startupTable, static_cast<uint32_t>(std::size(g_startupTable))) != 0) {
        FAULT_LOG(FAULT_AT_LINE(115), FAULT_INFO, "Smart diagnose init failed.");
    }
    FAULT_LOG(FAULT_AT_LINE(117), FAULT_INFO, "Smart diagnose init success.");
    return 0;
}

uint32_t ZorvSmartDiagnoseJsonObjectInit() {
    const uint32_t result = StatusOf(FAULT_HERE, [] {
        return FaultJsonObject::GetInstance().ParseJsonConfig(FaultPath(ZORV_ROUTE_CONFIG_FILE));
    });
    if (result != 0) {
        FAULT_LOG(FAULT_AT_LINE(36), FAULT_WARNING, "Json spectrum pasrse failed.");
    }
    return 0;
}

uint32_t ZorvSmartDiagnoseTimerInit() {
    ZORV_TIMER_TASK_S task;
    memset_s(&task, sizeof(task), 0, sizeof(task));
    if (snprintf_s(task.name, sizeof(task.name), sizeof(task.name) - 1, "%s", TIMER_NAME) < 0) {
        FAULT_LOG(FAULT_AT_LINE(63), FAULT_ERROR, "copy timer name failed.");
    }
    task.period = TIMER_PERIOD;
    task.periodic = 1;
    task.callback = ZorvSmartDiagnoseDetectTimer;
    task.arg = nullptr;
    if (ZORV_ThreadPoolAddTimerTaskSub(&task, FAULT_MODULE, __func__, TIMER_LINE) != 0) {
        FAULT_LOG(FAULT_AT_LINE(66), FAULT_ERROR, "Add %s timer fail.", TIMER_NAME);
        return 1;
    }
    FAULT_LOG(FAULT_AT_LINE(69), FAULT_INFO, "smart diagnose timer init success.");
    return 0;
}

uint32_t ZorvSmartDiagnoseMsgHandleInit() {
    return 0;
}

uint32_t ZorvSmartDiagnoseDataBaseInit() {
    if (StatusOf(FAULT_HERE, FaultDataBaseInit) != 0) {
        FAULT_LOG(FAULT_AT_LINE(76), FAULT_ERROR, "Fault database init failed.");
    }
    if (FaultDataBaseInotifyHandleInit() != 0) {
        FAULT_LOG(FAULT_AT_LINE(80), FAULT_ERROR, "Fault database inotify handle init failed.");
        return 1;
    }
    FAULT_LOG(FAULT_AT_LINE(84), FAULT_INFO, "Fault database init success.");
    return 0;
}

uint32_t ZorvSmartDiagnoseDebugInit() {
    if (FaultDiagnoseDebugInit() != 0) {
        FAULT_LOG(FAULT_AT_LINE(96), FAULT_ERROR, "Fault debug init failed.");
        return 1;
    }
    FAULT_LOG(FAULT_AT_LINE(99), FAULT_INFO, "Fault debug init success.");
    return 0;
}
