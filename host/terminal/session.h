// Where command lines come from.
#pragma once

#include "host/console/console.h"

namespace zorv {
// Runs the lines of standard input until it ends, or the console leaves. Returns the worst status; errors in
// a line carry its number. Blocks.
ExitStatus RunLinesOfInput(Console& console);

// Lets an operator type lines on the terminal until the end of input, or the console leaves. Blocks.
// Returns STATUS_OK unless the results could not be printed. Throws std::runtime_error when the terminal
// cannot be edited on.
ExitStatus RunTerminal(Console& console);
}  // namespace zorv
