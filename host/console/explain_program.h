// zorv-explain, the program beside this one.
#pragma once

#include <string>

#include "host/command/command.h"

namespace zorv {
// Runs it with the shared options and the arguments, without standard input, and waits for its end; it gets
// the terminal's signals. Returns its exit status. With `output`, what it prints is appended there and it
// says nothing on stderr; else it prints to this process's streams. Throws std::runtime_error when it cannot
// be run or a signal ended it.
ExitStatus RunExplainProgram(const Words& sharedOptions, const Words& arguments,
                             std::string* output = nullptr);
}  // namespace zorv
