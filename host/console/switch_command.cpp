#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <optional>

#include "agent/agent_console.h"
#include "agent/agent_heal.h"
#include "agent/agent_message.h"
#include "agent/agent_switch.h"
#include "host/console/commands.h"
#include "host/console/document.h"
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

// The value that a node takes it for, whatever is stored.
Json::Value ValueOf(int32_t number) {
    const auto known = std::find_if(VALUES.begin(), VALUES.end(),
                                    [=](const SwitchValue& value) { return value.number == number; });
    Json::Value value;
    value["stored"] = number == FAULT_DIAG_SWITCH_UNREADABLE ? Json::Value() : Json::Value(number);
    value["value"] = known == VALUES.end() ? "on-silent" : known->word;
    return value;
}

void PrintAnswer(const Json::Value& now, const Json::Value& before) {
    Json::Value answer;
    answer["switch"] = now;
    answer["before"] = before;
    answer["from_node"] = ZORV_GetMasterNid();
    PrintDocument("switch", answer);
}

void Get(const ConsoleState& state) {
    const int32_t number = AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0);
    if (!state.wantsJson) {
        DBG_Print("%s, from %s\n", Described(number).c_str(), Master().c_str());
        return;
    }
    PrintAnswer(ValueOf(number), Json::Value());
}

void Set(int32_t number, const ConsoleState& state) {
    const int32_t before = AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0);
    const std::string old = Described(before);
    const int32_t result = AskMaster(ZORV_OP_SET_FAULTDIAG_SWITCH, number);
    if (result != 0) {
        throw std::runtime_error(Master() + " could not store the value, result " + std::to_string(result));
    }
    const int32_t after = AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0);
    if (after != number) {
        throw std::runtime_error(Master() + " stored the value, but now it has " + Described(after));
    }
    if (!state.wantsJson) {
        DBG_Print("old value: %s\nnew value: %s, confirmed by %s\n", old.c_str(), Described(after).c_str(),
                  Master().c_str());
        return;
    }
    PrintAnswer(ValueOf(after), ValueOf(before));
}
}  // namespace

ExitStatus RunSwitch(const Words& words, ConsoleState& state) {
    if (words.size() == 2 && words[1] == "get") {
        Get(state);
    } else if (words.size() == 3 && words[1] == "set") {
        Set(NumberOf(words[2]), state);
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

SwitchInUse AskSwitch() {
    SwitchInUse inUse{FAULT_DIAG_SWITCH_UNREADABLE, SwitchInUse::MASTER, true};
    try {
        inUse.number = AskMaster(ZORV_OP_GET_FAULTDIAG_SWITCH, 0);
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
    const std::string master = "master " + Master();
    if (inUse.origin == SwitchInUse::MASTER) {
        return Described(inUse.number) + ", from " + master;
    }
    return Described(inUse.number) +
           (inUse.origin == SwitchInUse::FILE_OF_NODE ? ", from the file of this node" : "") +
           (inUse.masterAnswers ? "" : "; " + master + " does not answer");
}

Json::Value ValueOf(const SwitchInUse& inUse) {
    constexpr std::array<const char*, 3> ORIGINS = {"master", "file", "default"};
    Json::Value value = ValueOf(inUse.number);
    value["origin"] = ORIGINS.at(inUse.origin);
    value["master_answers"] = inUse.masterAnswers;
    return value;
}
}  // namespace zorv
