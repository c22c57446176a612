// What a command of the console is, whoever brought it.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "host/command/command_line.h"
#include "host/command/status.h"

namespace zorv {
// What a command may know and change of the console that runs it.
struct ConsoleState {
    const Words sharedOptions;  // of this program: those that it runs take them over
    const bool wantsHints;      // at what an answer does not tell, although that takes longer
    bool wantsJson = false;     // of the command that runs: a document instead of its text
    bool leaving = false;       // the operator has asked to leave, or can no longer be told anything
};

struct Command {
    std::string group;  // under which help lists it
    std::string name;
    std::string help;  // lines with their ends; the first begins with the name and tells the arguments
    // The words that can follow the given ones, of which the first is the name; empty: only the operator
    // knows.
    std::function<Words(const Words& before)> wordsAfter;
    size_t start = 0;        // the word where START stands, END behind it; 0: none, or it reads times itself
    bool isProgram = false;  // the status is that of a program, which may be any
    // Runs the words, of which the first is the name. Prints results by DBG_Print. Throws UsageError for
    // words that it does not know, and std::runtime_error when it failed.
    std::function<ExitStatus(const Words& words, ConsoleState& state)> run;
};
}  // namespace zorv
