// The console service as the host sees it: the registered commands, and what became of their output.
#pragma once

#include <vector>

#include "agent/agent_console.h"

namespace zorv {
struct RegisteredCommand {
    const char* group;
    const ZORV_DIAG_CMD_S* row;
};

// Every registered command, in the order of registration. Any thread.
std::vector<RegisteredCommand> RegisteredCommands();

// Whether an error line was printed since the last call of this function, which starts afresh. Any thread.
bool TakeErrorLine();

// 0 while all that was printed reached stdout; else the errno of the first failure. Any thread.
int OutputError();
}  // namespace zorv
