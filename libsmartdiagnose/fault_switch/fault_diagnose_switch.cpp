#include "fault_switch/fault_diagnose_switch.h"

#include <cstring>

#include "agent/agent_heal.h"
#include "agent/agent_memory.h"
#include "agent/agent_switch.h"
#include "fault_common/fault_boundary.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_rate_limiter.h"

namespace {

constexpr uint32_t VALUE_LENGTH = sizeof(int32_t);  // payload of every switch message
constexpr uint32_t NEED_REPLY = 1;

constexpr const char* SET_HANDLER = "ZorvSetFaultDiagSwitchMsgHandle";
constexpr const char* GET_HANDLER = "ZorvGetFaultDiagSwitchMsgHandle";

// Length errors come from a peer that will repeat them for hours.
constexpr uint64_t LENGTH_ERROR_WINDOW = 900000;
constexpr uint32_t LENGTH_ERROR_BURST = 10;

// Leaves a handler whose argument is not as it must be, with a line that names the condition.
#define RETURN_UNLESS(condition, conditionText, handler)                                                \
    do {                                                                                                \
        static FaultUsualLimiter conditionLimiter;                                                      \
        if (!(condition)) {                                                                             \
            FAULT_LOG_LIMITED(conditionLimiter, FAULT_IN(handler), FAULT_ERROR, "Fail condition (%s).", \
                              conditionText);                                                           \
            return;                                                                                     \
        }                                                                                               \
    } while (false)

void HandleSet(ZORV_COMM_INFO_S* info, const char* msg) {
    RETURN_UNLESS(info != nullptr, "pstMsgInfo != NULL", SET_HANDLER);
    RETURN_UNLESS(msg != nullptr, "pMsg != NULL", SET_HANDLER);
    RETURN_UNLESS(info->msgOPCode == ZORV_OP_SET_FAULTDIAG_SWITCH,
                  "pstMsgInfo->msgOPCode == ZORV_OP_SET_FAULTDIAG_SWITCH", SET_HANDLER);
    if (info->msgLen != VALUE_LENGTH) {
        static FaultRateLimiter lengthLimiter(LENGTH_ERROR_WINDOW, LENGTH_ERROR_BURST);
        FAULT_LOG_LIMITED(lengthLimiter, FAULT_IN(SET_HANDLER), FAULT_ERROR,
                          "Cannot support msg length(%u), not equal to right length(%u).", info->msgLen,
                          VALUE_LENGTH);
        return;
    }
    int32_t value = 0;
    memcpy(&value, msg, sizeof(value));
    auto result = static_cast<int32_t>(HealWriteZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, value, 0));
    ZORV_CommSendAckMsg(info, &result, VALUE_LENGTH);
    FAULT_LOG(FAULT_IN(SET_HANDLER), FAULT_INFO, "Send set fault diagnose switch(%d) ack msg, result = %d.",
              value, result);
}

void HandleGet(ZORV_COMM_INFO_S* info, const char* msg) {
    RETURN_UNLESS(info != nullptr, "pstMsgInfo != NULL", GET_HANDLER);
    RETURN_UNLESS(msg != nullptr, "pMsg != NULL", GET_HANDLER);
    RETURN_UNLESS(info->msgOPCode == ZORV_OP_GET_FAULTDIAG_SWITCH,
                  "pstMsgInfo->msgOPCode == ZORV_OP_GET_FAULTDIAG_SWITCH", GET_HANDLER);
    int32_t value = 0;
    if (HealReadZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, &value, 0) != 0) {
        value = FAULT_DIAG_SWITCH_UNREADABLE;
    }
    const uint32_t result = ZORV_CommSendAckMsg(info, &value, VALUE_LENGTH);
    if (result != 0) {
        FAULT_LOG(FAULT_IN(GET_HANDLER), FAULT_INFO, "Send read fault diagnose mode ack fail, result =%d.",
                  static_cast<int32_t>(result));
    }
    FAULT_LOG(FAULT_IN(GET_HANDLER), FAULT_INFO, "Send read fault diagnose mode ack success.");
}

// Whether the master told its value.
bool ZorvCoreGetFaultDiagSwitchFromMaster(int32_t& value) {
    ZORV_COMM_INFO_S info{};
    ZORV_COMM_RET_S reply{};
    memset_s(&reply, sizeof(reply), 0, sizeof(reply));
    int32_t request = 0;
    ZORV_CommFillinCommInfoInner(&info, ZORV_GetMasterNid(), FAULT_MODULE, ZORV_OP_GET_FAULTDIAG_SWITCH,
                                 VALUE_LENGTH, NEED_REPLY);
    const uint32_t result = ZORV_CommSendRequestMsg(&info, &request, &reply);
    const void* const data = reply.data;
    const bool answered = result == 0 && data != nullptr && reply.length >= VALUE_LENGTH;
    if (answered) {
        memcpy(&value, data, sizeof(value));
    }
    if (result == 0 && data != nullptr) {
        ZORV_CommFreeRetData(&reply);
    }
    if (!answered) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Get fault diagnose switch from master node fail ret=%d, buf=%p",
                  static_cast<int32_t>(result), data);
        return false;
    }
    if (value == FAULT_DIAG_SWITCH_UNREADABLE) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "Get fault diagnose switch from master fail.");
        return false;
    }
    FAULT_LOG(FAULT_HERE, FAULT_INFO, "Get fault diagnose switch from master success, switch=%d.", value);
    return true;
}

}  // namespace

uint32_t ZorvFaultDiagSwitchMsgHandleInit() {
    uint32_t result = ZORV_CommRegMsgHandle(ZORV_OP_SET_FAULTDIAG_SWITCH, ZorvSetFaultDiagSwitchMsgHandle);
    result += ZORV_CommRegMsgHandle(ZORV_OP_GET_FAULTDIAG_SWITCH, ZorvGetFaultDiagSwitchMsgHandle);
    if (result != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Register msg handle fail, ret=%d.", static_cast<int32_t>(result));
    }
    return result;
}

uint32_t ZorvSetFaultDiagSwitchMsgHandle(ZORV_COMM_INFO_S* info, char* msg, void* /*context*/) {
    FaultRunGuarded(FAULT_HERE, [&] { HandleSet(info, msg); });
    return 0;
}

uint32_t ZorvGetFaultDiagSwitchMsgHandle(ZORV_COMM_INFO_S* info, char* msg, void* /*context*/) {
    FaultRunGuarded(FAULT_HERE, [&] { HandleGet(info, msg); });
    return 0;
}

int32_t ZorvCoreGetFaultDiagSwitch() {
    int32_t value = FAULT_DIAG_SWITCH_ON_SILENT;
    if (!ZorvCoreGetFaultDiagSwitchFromMaster(value) &&
        HealReadZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, &value, 0) != 0) {
        return FAULT_DIAG_SWITCH_ON_SILENT;
    }
    if (value < FAULT_DIAG_SWITCH_ON || value > FAULT_DIAG_SWITCH_OFF) {
        return FAULT_DIAG_SWITCH_ON_SILENT;
    }
    FAULT_LOG(FAULT_HERE, FAULT_INFO, "Get fault diagnose switch(%d) success.", value);
    return value;
}
