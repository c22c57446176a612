#include <stdexcept>

#include "agent/agent_console.h"
#include "agent/agent_message.h"
#include "host/console/commands.h"
#include "host/state/document.h"
#include "host/state/switch_state.h"

namespace zorv {
namespace {
void PrintAnswer(const Json::Value& now, const Json::Value& before) {
    Json::Value answer;
    answer["switch"] = now;
    answer["before"] = before;
    answer["from_node"] = ZORV_GetMasterNid();
    PrintDocument("switch", answer);
}

void Get(const ConsoleState& state) {
    const int32_t number = AskForSwitch();
    if (!state.wantsJson) {
        DBG_Print("%s, from %s\n", SwitchText(number).c_str(), MasterNode().c_str());
        return;
    }
    PrintAnswer(SwitchDocument(number), Json::Value());
}

void Set(int32_t number, const ConsoleState& state) {
    const int32_t before = AskForSwitch();
    const std::string old = SwitchText(before);
    const int32_t result = AskToStoreSwitch(number);
    if (result != 0) {
        throw std::runtime_error(MasterNode() + " could not store the value, result " +
                                 std::to_string(result));
    }
    const int32_t after = AskForSwitch();
    if (after != number) {
        throw std::runtime_error(MasterNode() + " stored the value, but now it has " + SwitchText(after));
    }
    if (!state.wantsJson) {
        DBG_Print("old value: %s\nnew value: %s, confirmed by %s\n", old.c_str(), SwitchText(after).c_str(),
                  MasterNode().c_str());
        return;
    }
    PrintAnswer(SwitchDocument(after), SwitchDocument(before));
}
}  // namespace

ExitStatus RunSwitch(const Words& words, ConsoleState& state) {
    if (words.size() == 2 && words[1] == "get") {
        Get(state);
    } else if (words.size() == 3 && words[1] == "set") {
        Set(SwitchNumberOf(words[2]), state);
    } else {
        throw UsageError("usage: switch get | switch set on|on-silent|off");
    }
    return STATUS_OK;
}

Words WordsAfterSwitch(const Words& before) {
    if (before.size() == 1) {
        return {"get", "set"};
    }
    return before.size() == 2 && before[1] == "set" ? SwitchWords() : Words();
}
}  // namespace zorv
