// When colours may be used, and which.
#pragma once

namespace zorv {
// Whether what is printed to `descriptor` may have colours: it is a terminal that knows them, and NO_COLOR is
// not set. Any thread.
bool WantsColour(int descriptor);

constexpr const char* COLOUR_RED = "\x1b[31m";
constexpr const char* COLOUR_YELLOW = "\x1b[33m";
constexpr const char* COLOUR_BOLD = "\x1b[1m";
constexpr const char* COLOUR_END = "\x1b[0m";
}  // namespace zorv
