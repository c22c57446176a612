#include "host/state/switch_state.h"

#include <json/value.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "agent/agent_heal.h"
#include "agent/agent_message.h"
#include "agent/agent_switch.h"
#include "cli/program.h"
#include "host/process/settings.h"
#include "host/services/log.h"
#include "text/printable.h"

namespace zorv {
namespace {
struct SwitchValue {
    int32_t number;
    const char* word;
};

constexpr std::array<SwitchValue, 3> VALUES = {{{FAULT_DIAG_SWITCH_ON, "on"},
                                                {FAULT_DIAG_SWITCH_ON_SILENT, "on-silent"},
                                                {FAULT_DIAG_SWITCH_OFF, "off"}}};

// An answer's data, freed with it.
class Reply {
public:
    Reply() = default;
    ~Reply() { ZORV_CommFreeRetData(&reply); }
    Reply(const Reply&) = delete;
    Reply& operator=(const Reply&) = delete;

    ZORV_COMM_RET_S* Get() { return &reply; }
    std::optional<int32_t> Number() const {
        int32_t number = 0;
        if (reply.data == nullptr || reply.length < sizeof number) {
            return std::nullopt;
        }
        std::memcpy(&number, reply.data, sizeof number);
        return number;
    }

private:
    ZORV_COMM_RET_S reply{};
};

int32_t AskMaster(uint32_t opcode, int32_t payload) {
    const uint32_t master = ZORV_GetMasterNid();
    ZORV_COMM_INFO_S info;
    ZORV_CommFillinCommInfoInner(&info, master, HOST_MODULE, opcode, sizeof payload, 1);
    Reply reply;
    const uint32_t result = ZORV_CommSendRequestMsg(&info, &payload, reply.Get());
    const std::optional<int32_t> number = reply.Number();
    if (result != 0 || !number.has_value()) {
        const bool isSet = opcode == ZORV_OP_SET_FAULTDIAG_SWITCH;
        throw std::runtime_error("node " + std::to_string(master) +
                                 ", which keeps the switch, did not answer" +
                                 (isSet ? "; 'switch get' tells whether it has the value" : ""));
    }
    return *number;
}

// What the answer -1 means: the file is not there, is damaged, or holds just that. Only the node that keeps
// the switch can tell.
std::string WhyDefault() {
    std::error_code ignored;
    if (ZORV_GetMasterNid() != ZORV_GetLocalNid()) {
        return "no value of the switch is stored";
    }
    return std::filesystem::exists(RootedPath(FAULT_DIAG_SWITCH_FILE), ignored)
               ? "what is stored is no value of the switch"
               : "no value is stored";
}
}  // namespace

std::string MasterNode() {
    return "node " + std::to_string(ZORV_GetMasterNid());
}

int32_t AskForSwitch() {
    return AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0);
}

int32_t AskToStoreSwitch(int32_t number) {
    return AskMaster(ZORV_OP_SET_FAULTDIAG_SWITCH, number);
}

std::string SwitchText(int32_t number) {
    if (number == FAULT_DIAG_SWITCH_UNREADABLE) {
        return "2 (on-silent, the default: " + WhyDefault() + ")";
    }
    for (const SwitchValue& value : VALUES) {
        if (value.number == number) {
            return std::to_string(number) + " (" + value.word + ")";
        }
    }
    return std::to_string(number) + " (no value of the switch: taken as 2, on-silent)";
}

// What a node takes it for, whatever is stored.
Json::Value SwitchDocument(int32_t number) {
    const auto known = std::find_if(VALUES.begin(), VALUES.end(),
                                    [=](const SwitchValue& value) { return value.number == number; });
    Json::Value value;
    value["stored"] = number == FAULT_DIAG_SWITCH_UNREADABLE ? Json::Value() : Json::Value(number);
    value["value"] = known == VALUES.end() ? "on-silent" : known->word;
    return value;
}

std::vector<std::string> SwitchWords() {
    return {VALUES[0].word, VALUES[1].word, VALUES[2].word};
}

int32_t SwitchNumberOf(const std::string& word) {
    for (const SwitchValue& value : VALUES) {
        if (word == value.word) {
            return value.number;
        }
    }
    throw cli::UsageError("the switch cannot be '" + Printable(word, 40) +
                          "'; it can be on, on-silent or off");
}

SwitchInUse AskSwitch() {
    SwitchInUse inUse{FAULT_DIAG_SWITCH_UNREADABLE, SwitchInUse::MASTER, true};
    try {
        inUse.number = AskForSwitch();
    } catch (const std::runtime_error&) {
        inUse.masterAnswers = false;
    }
    if (inUse.number == FAULT_DIAG_SWITCH_UNREADABLE) {
        const bool isLocal = HealReadZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, &inUse.number, 0) == 0;
        inUse.origin = isLocal ? SwitchInUse::FILE_OF_NODE : SwitchInUse::DEFAULT;
        inUse.number = isLocal ? inUse.number : int32_t{FAULT_DIAG_SWITCH_UNREADABLE};
    }
    return inUse;
}

std::string TextOf(const SwitchInUse& inUse) {
    const std::string master = "master " + MasterNode();
    if (inUse.origin == SwitchInUse::MASTER) {
        return SwitchText(inUse.number) + ", from " + master;
    }
    return SwitchText(inUse.number) +
           (inUse.origin == SwitchInUse::FILE_OF_NODE ? ", from the file of this node" : "") +
           (inUse.masterAnswers ? "" : "; " + master + " does not answer");
}

Json::Value ValueOf(const SwitchInUse& inUse) {
    constexpr std::array<const char*, 3> ORIGINS = {"master", "file", "default"};
    Json::Value value = SwitchDocument(inUse.number);
    value["origin"] = ORIGINS.at(inUse.origin);
    value["master_answers"] = inUse.masterAnswers;
    return value;
}
}  // namespace zorv
