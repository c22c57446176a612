// Arbitrary switch messages, and arbitrary answers of the master. A step of the input: what it is, the
// opcode's lowest byte, a length, the payload. A message whose payload the input is too short for comes
// without it.
#include <algorithm>
#include <cstring>

#include "agent/agent_switch.h"
#include "campaigns/fuzz/fuzz.h"
#include "fault_switch/fault_diagnose_switch.h"
#include "support/recording_agent.h"

static void Deliver(uint32_t wanted, ZORV_COMM_INFO_S* info, std::vector<char> payload) {
    std::map<std::string, int32_t> stored = Agent()->iniValues;
    const bool whole = info == nullptr || payload.size() == info->msgLen;
    const bool set = wanted == ZORV_OP_SET_FAULTDIAG_SWITCH;
    const bool isGood = info != nullptr && info->msgOPCode == wanted && whole &&
                        (set ? payload.size() == 4 : !payload.empty());
    if (set && isGood) {
        memcpy(&stored[FAULT_DIAG_SWITCH_FILE], payload.data(), 4);
    }
    Agent()->acknowledgements.clear();
    Agent()->handlers.at(wanted)(info, whole ? payload.data() : nullptr, nullptr);
    Demand(Agent()->acknowledgements.empty() != isGood, "well-formed messages are answered, others are not");
    Demand(Agent()->iniValues == stored, "a well-formed set message stores its value, and nothing else does");
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Agent::Reset();
    ZorvFaultDiagSwitchMsgHandleInit();
    for (const uint8_t* end = data + size; end - data >= 3;) {
        const uint8_t* const payload = data + 3;
        const uint8_t kind = data[0];
        ZORV_COMM_INFO_S info{1, 2, 422, 0x70002100U + data[1], data[2], 1, 99};
        data = payload + std::min(std::ptrdiff_t{data[2]}, end - payload);
        if (kind % 4 == 0) {
            Agent()->reply = std::string(payload, data);
            const int32_t value = ZorvCoreGetFaultDiagSwitch();
            Demand(value >= 1 && value <= 3 && Agent()->repliesToFree == 0, "the switch is 1, 2 or 3");
        } else {
            Deliver(0x70002120U + kind % 2, kind % 8 < 7 ? &info : nullptr, {payload, data});
        }
    }
    return 0;
}
