// The cluster's fault diagnosis switch, as an operator sees and sets it from any node.
#pragma once

#include "host/console/command_line.h"

// Runs "switch get" or "switch set WORD"; `words` begins with "switch". Prints the answer to the console.
// Blocks for the answers of the node that keeps the switch. Throws UsageError for other words, and
// std::runtime_error when that node did not answer or could not store the value.
void RunSwitchCommand(const Words& words);

// The words that can follow `words`, a command line that begins with "switch get" or "switch set".
Words SwitchWordsAfter(const Words& words);

// The value that the plug-in obeys, what it means, and where it comes from. Blocks as above; never throws for
// a node that does not answer.
std::string SwitchAndItsOrigin();
