// When colours may be used.
#pragma once

#include "text/colours.h"

namespace zorv {
// Whether what is printed to `descriptor` may have colours: it is a terminal that knows them, and NO_COLOR is
// not set. Any thread.
bool WantsColour(int descriptor);
}  // namespace zorv
