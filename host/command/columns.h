// Choices on a screen.
#pragma once

#include <cstddef>
#include <string>

#include "host/command/command_line.h"

namespace zorv {
// The words in columns, one below the other, on lines of at most `width` letters, each with its end. What
// does not fit into `height` lines is counted on the last one: "... and 7 more".
std::string InColumns(const Words& words, size_t width, size_t height);
}  // namespace zorv
