// What a stream of this process can show.
#pragma once

#include "text/screen_style.h"

namespace zorv {
// Of what is printed to `descriptor`: as wide as the terminal, within bounds, or 80 cells where it is none;
// UTF-8 where the environment's locale has it; colours where WantsColour() says so. Changes no locale. Any
// thread.
ScreenStyle StyleOf(int descriptor);
}  // namespace zorv
