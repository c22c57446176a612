// The words that can follow on a command line.
#pragma once

#include "host/command/command_line.h"

namespace zorv {
// The words that can follow `words`, which may be empty: commands, their words, points and graphs. The
// console's thread; may read the route configuration.
Words WordsAfter(const Words& words);
}  // namespace zorv
