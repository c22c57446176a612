// The cluster's fault diagnosis switch, as the node that keeps it has it.
#pragma once

#include <json/forwards.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zorv {
// "node N", the master, which keeps the switch.
std::string MasterNode();

// Asks the master for the value, FAULT_DIAG_SWITCH_UNREADABLE where none is stored, or to store one and for
// the result, 0 when it did. Both block for its answer; throw std::runtime_error when there is none.
int32_t AskForSwitch();
int32_t AskToStoreSwitch(int32_t number);

// The value and what it means to a node that reads it: "3 (off)".
std::string SwitchText(int32_t number);

// The same as a part of a document.
Json::Value SwitchDocument(int32_t number);

// The words for the values, and the value of one. Throws UsageError for any other word.
std::vector<std::string> SwitchWords();
int32_t SwitchNumberOf(const std::string& word);

// The value of the switch that the plug-in obeys, and where it comes from.
struct SwitchInUse {
    enum Origin { MASTER, FILE_OF_NODE, DEFAULT };
    int32_t number = 0;
    Origin origin = DEFAULT;
    bool masterAnswers = true;
};

// Blocks as above; never throws for a node that does not answer.
SwitchInUse AskSwitch();

// What the value means and where it comes from; the same as a part of a document.
std::string TextOf(const SwitchInUse& inUse);
Json::Value ValueOf(const SwitchInUse& inUse);
}  // namespace zorv
