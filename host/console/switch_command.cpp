#include <array>
#include <cstring>
#include <filesystem>
#include <optional>

#include "agent/agent_console.h"
#include "agent/agent_heal.h"
#include "agent/agent_message.h"
#include "agent/agent_switch.h"
#include "host/console/commands.h"
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

// The value and what it means to a node that reads it.
std::string Described(int32_t number) {
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

int32_t NumberOf(const std::string& word) {
    for (const SwitchValue& value : VALUES) {
        if (word == value.word) {
            return value.number;
        }
    }
    throw UsageError("the switch cannot be '" + Printable(word, 40) + "'; it can be on, on-silent or off");
}

// "node N", the master.
std::string Master() {
    return "node " + std::to_string(ZORV_GetMasterNid());
}

void Set(int32_t number) {
    const std::string before = Described(AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0));
    const int32_t result = AskMaster(ZORV_OP_SET_FAULTDIAG_SWITCH, number);
    if (result != 0) {
        throw std::runtime_error(Master() + " could not store the value, result " + std::to_string(result));
    }
    const int32_t after = AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0);
    if (after != number) {
        throw std::runtime_error(Master() + " stored the value, but now it has " + Described(after));
    }
    DBG_Print("old value: %s\nnew value: %s, confirmed by %s\n", before.c_str(), Described(after).c_str(),
              Master().c_str());
}
}  // namespace

ExitStatus RunSwitch(const Words& words, ConsoleState& /*state*/) {
    if (words.size() == 2 && words[1] == "get") {
        const int32_t value = AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0);
        DBG_Print("%s, from %s\n", Described(value).c_str(), Master().c_str());
    } else if (words.size() == 3 && words[1] == "set") {
        Set(NumberOf(words[2]));
    } else {
        throw UsageError("usage: switch get | switch set on|on-silent|off");
    }
    return STATUS_OK;
}

Words WordsAfterSwitch(const Words& before) {
    if (before.size() == 1) {
        return {"get", "set"};
    }
    Words next;
    if (before.size() == 2 && before[1] == "set") {
        for (const SwitchValue& value : VALUES) {
            next.emplace_back(value.word);
        }
    }
    return next;
}

std::string SwitchAndItsOrigin() {
    const std::string master = "master node " + std::to_string(ZORV_GetMasterNid());
    int32_t number = FAULT_DIAG_SWITCH_UNREADABLE;
    std::string silence;
    try {
        number = AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0);
    } catch (const std::runtime_error&) {
        silence = "; " + master + " does not answer";
    }
    if (number != FAULT_DIAG_SWITCH_UNREADABLE) {
        return Described(number) + ", from " + master;
    }
    const bool isLocal = HealReadZorvModePrivateIni(FAULT_DIAG_SWITCH_FILE, &number, 0) == 0;
    return isLocal ? Described(number) + ", from the file of this node" + silence
                   : Described(FAULT_DIAG_SWITCH_UNREADABLE) + silence;
}
}  // namespace zorv
