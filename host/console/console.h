// The console: every command an operator can type, the plug-in's and the host's own.
#pragma once

#include <string>
#include <utility>

#include "host/command/command.h"

namespace zorv {
// Belongs to one thread, the console's.
class Console {
public:
    // The options of this program that those which it runs take over, and whether to hint at what an answer
    // does not tell.
    Console(Words optionsToShare, bool hints) : state{std::move(optionsToShare), hints} {}

    // Runs one command line, or does nothing when it has no words. Results go to stdout; what is wrong with
    // the line, to stderr, with `place` (such as "line 3: ") before it. The command failed when a program
    // that it runs ends with any other status than 0.
    ExitStatus RunLine(std::string_view line, const std::string& place);

    // The same for a line that is cut into words already; there is at least one. The status of a program
    // that the command runs is returned as it is.
    ExitStatus Run(const Words& words, const std::string& place);

    // Whether the operator has asked to leave, or can no longer be told anything.
    bool IsLeaving() const { return state.leaving; }

    // Whether the command of that name runs a program, which takes options of its own.
    static bool IsProgram(const std::string& name);

private:
    ConsoleState state;
};
}  // namespace zorv
