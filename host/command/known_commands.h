// What the host knows of the plug-in's commands that their help texts do not tell, or not in one form.
#pragma once

#include <cstddef>
#include <string>

#include "host/command/command_line.h"
#include "host/command/help_words.h"

namespace zorv {
// What an answer rests on.
enum class Basis { UNTOLD, ROWS, ROWS_OF_POINT, GRAPHS };

struct KnownCommand {
    size_t start = 0;  // the word where START stands; 0: the command is not known
    Basis basis = Basis::UNTOLD;
    const char* arguments = "";  // a name for each place, behind them what can stand for the times
    size_t point = 0;            // the word that names a trace point; 0: none does
    const char* help = "";       // a line for whom the command's own help leaves alone; may be empty
    Words modules = {};  // that are valid in the place of MODULE, where the help text does not list them
};

const KnownCommand& KnownCommandOf(const std::string& name);

// The places of the words behind the command, by its help text and what is known of it.
std::vector<WordPlace> PlacesOf(const std::string& name, const std::string& help);

// For the answer of a command that refuses what was typed: how the command is used, and the words that are
// valid where it takes one of several; whole lines. Empty for any other answer.
std::string UsageFor(const std::string& answer, const std::string& name, const std::string& help);
}  // namespace zorv
