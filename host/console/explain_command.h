// The command that explains why a point was slow: a program of its own, which lies beside this one.
#pragma once

#include "host/console/command_line.h"

// Runs the program with the options `shared`, then the arguments of "explain ARGUMENTS...", which are
// `words`. It prints to this process's streams, reads nothing, and gets the terminal's signals. Blocks until
// it has ended; returns its exit status. Throws std::runtime_error when it cannot be run or a signal ended
// it.
int RunExplainCommand(const Words& words, const Words& shared);
