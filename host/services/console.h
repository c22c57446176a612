// The console service as the host sees it: the registered commands, and what became of their output.
#pragma once

#include <string>
#include <vector>

#include "agent/agent_console.h"

namespace zorv {
struct RegisteredCommand {
    const char* group;
    const ZORV_DIAG_CMD_S* row;
};

// Every registered command, in the order of registration. Any thread.
std::vector<RegisteredCommand> RegisteredCommands();

// What was printed since the last call of ForgetPrinted().
struct Printed {
    bool hasErrorLine = false;
    std::string last;  // the text of the last call; empty: nothing was printed
};

// Any thread, as for the next.
Printed GetPrinted();

void ForgetPrinted();

// 0 while all that was printed reached stdout; else the errno of the first failure. Any thread.
int OutputError();
}  // namespace zorv
