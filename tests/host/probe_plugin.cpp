// A plug-in that shows what the host does: commands that print and throw, and the switch's handler.
#include <cstring>
#include <stdexcept>

#include "agent/agent_alarm.h"
#include "agent/agent_console.h"
#include "agent/agent_heal.h"
#include "agent/agent_log.h"
#include "agent/agent_message.h"
#include "agent/agent_storage.h"
#include "agent/agent_switch.h"

extern "C" uint32_t ZorvSmartDiagnoseInit();

namespace {
uint32_t Echo(int32_t argc, char** argv) {
    for (int32_t i = 0; i < argc; ++i) {
        DBG_Print("[%s]", argv[i]);
    }
    DBG_Print(argv[argc] == nullptr ? "\n" : "no null behind the arguments\n");
    return 0;
}

uint32_t Report(int32_t /*argc*/, char** /*argv*/) {
    vplog(422, VPLOG_LEVEL_WARNING, "probe.cpp", 7, "Report", 0, "of\n%s", "the probe");
    const uint32_t alarm = ALM_SendAlarm(422, 0xF00C90150, 1, "a\nb");
    DBG_Print("root %s, alarm %u\n", vopx_root_directory(), alarm);
    return 0;
}

// Gives a query up and answers all the same, or does not answer.
uint32_t Detect(int32_t argc, char** /*argv*/) {
    vplog(422, VPLOG_LEVEL_ERROR, "probe.cpp", 8, "Detect", 0, "faild for %d times, donot retry again.", 35);
    return argc == 3 ? DBG_Print("lumoLocName\n"), 0U : 1U;
}

char g_group[] = "probe";
ZORV_DIAG_CMD_S g_commands[] = {
    {"echo", Echo, "echo [WORD...]: show the words;\nthey may be quoted."},
    {"print", [](int32_t, char** argv) { return DBG_Print("%s\n", argv[3]), 7U; }, "a line of text"},
    {"throw", [](int32_t, char**) -> uint32_t { throw std::runtime_error("thrown by a handler"); }, nullptr},
    {"probe", Report, "probe"},
    {"delaydetect", Detect, nullptr},
    {nullptr, nullptr, nullptr}};

uint32_t AnswerSwitch(ZORV_COMM_INFO_S* info, char* msg, void* /*context*/) {
    int32_t value = FAULT_DIAG_SWITCH_UNREADABLE;
    if (info->msgOPCode == ZORV_OP_GET_FAULTDIAG_SWITCH) {
        HealReadZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, &value, 0);
    } else {
        std::memcpy(&value, msg, sizeof value);
        value = static_cast<int32_t>(HealWriteZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, value, 0));
    }
    return ZORV_CommSendAckMsg(info, &value, sizeof value);
}
}  // namespace

uint32_t ZorvSmartDiagnoseInit() {
    ZORV_CommRegMsgHandle(ZORV_OP_SET_FAULTDIAG_SWITCH, AnswerSwitch);
    ZORV_CommRegMsgHandle(ZORV_OP_GET_FAULTDIAG_SWITCH, AnswerSwitch);
    return Zorvdebug_RegDiagnose(g_group, g_commands);
}
