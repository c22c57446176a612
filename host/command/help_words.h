// What the help text of a registered command tells of the words behind the command.
#pragma once

#include <string>
#include <vector>

#include "host/command/command_line.h"

namespace zorv {
// What can stand at one place of a command line. Both empty: only the operator knows, as with a time.
struct WordPlace {
    Words words;
    bool takesPoint = false;  // the name of a trace point
};

// The places behind the command, in their order, of a text such as
// "show [point] [kind] [start end] | [minutes]: what it does; [kind]:READ, WRITE." A word in brackets stands
// for the values that the text lists for it, for a point ("LocName" in it), for something else (capitals in
// it), or for itself. Brackets with a word for itself, one behind the other, are choices at one place; behind
// them a point can stand.
std::vector<WordPlace> PlacesOfHelp(const std::string& help);
}  // namespace zorv
