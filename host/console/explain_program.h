// The programs beside this one.
#pragma once

#include <string>

#include "host/console/command.h"

namespace zorv {
// Runs zorv-explain with the shared options and the arguments, without standard input, and waits for its end;
// it gets the terminal's signals. Returns its exit status. With `output`, what it prints is appended there
// and it says nothing on stderr; else it prints to this process's streams. Throws std::runtime_error when it
// cannot be run or a signal ended it.
ExitStatus RunExplainProgram(const Words& sharedOptions, const Words& arguments,
                             std::string* output = nullptr);

// The same for zorv-check, of whose options there are not all that programs share.
ExitStatus RunCheckProgram(const Words& arguments, std::string* output = nullptr);
}  // namespace zorv
