// A plug-in that shows what the host does: commands that print, fail and throw, and the switch's handlers.
#include <cstring>
#include <stdexcept>

#include "agent/agent_alarm.h"
#include "agent/agent_console.h"
#include "agent/agent_heal.h"
#include "agent/agent_log.h"
#include "agent/agent_message.h"
#include "agent/agent_startup.h"
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
    const char* const root = vopx_root_directory == nullptr ? nullptr : vopx_root_directory();
    vplog(422, VPLOG_LEVEL_WARNING, "probe.cpp", 7, "Report", 0, "of %s", "the probe");
    DBG_Print("root %s, alarm %u\n", root == nullptr ? "none" : root,
              ALM_SendAlarm(422, 0xF00C90150, 1, "probe"));
    return 0;
}

char g_group[] = "probe";
ZORV_DIAG_CMD_S g_commands[] = {
    {"echo", Echo, "echo [WORD...]: print the words;\nthey may be quoted."},
    {"length", [](int32_t, char** argv) { return DBG_Print("%zu\n", std::strlen(argv[3])), 0U; },
     "length WORD: bytes of the word."},
    {"printerror", [](int32_t, char**) { return DBG_Print("\t\t[ERROR]: %s\n", "input err"), 0U; },
     "print an error line"},
    {"innererror", [](int32_t, char**) { return DBG_Print("\ninner error\n"), 0U; }, nullptr},
    {"quoteerrors",
     [](int32_t, char**) {
         return DBG_Print("said \t\t[ERROR]: x\n"), DBG_Print("\ninner error\nonce\n"), 7U;
     },
     "quoteerrors"},
    {"throw", [](int32_t, char**) -> uint32_t { throw std::runtime_error("thrown by a handler"); }, "throw"},
    {"report", Report, "report"},
    {nullptr, nullptr, nullptr}};

uint32_t SetSwitch(ZORV_COMM_INFO_S* info, char* msg, void* /*context*/) {
    int32_t value = 0;
    std::memcpy(&value, msg, sizeof value);
    auto result = static_cast<int32_t>(HealWriteZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, value, 0));
    return ZORV_CommSendAckMsg(info, &result, sizeof result);
}

uint32_t GetSwitch(ZORV_COMM_INFO_S* info, char* /*msg*/, void* /*context*/) {
    int32_t value = FAULT_DIAG_SWITCH_UNREADABLE;
    HealReadZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, &value, 0);
    return ZORV_CommSendAckMsg(info, &value, sizeof value);
}

uint32_t RegisterCommands() {
    return Zorvdebug_RegDiagnose(g_group, g_commands);
}
uint32_t RegisterMessages() {
    return ZORV_CommRegMsgHandle(ZORV_OP_SET_FAULTDIAG_SWITCH, SetSwitch) +
           ZORV_CommRegMsgHandle(ZORV_OP_GET_FAULTDIAG_SWITCH, GetSwitch);
}

ZORV_MODULE_INIT_S g_rows[] = {{"Commands", RegisterCommands, 0}, {"Messages", RegisterMessages, 0}};
}  // namespace

uint32_t ZorvSmartDiagnoseInit() {
    return ZORV_ModulesStartup(g_rows, 2);
}
