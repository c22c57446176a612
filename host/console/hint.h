// What a command's answer does not tell.
#pragma once

#include "host/command/command.h"

namespace zorv {
// For a delaydetect command that flagged nothing: tells on stderr when zorv-explain sees an event in its
// range. Blocks until that program has looked; says nothing when it cannot.
void HintAtEvent(const Words& words, const ConsoleState& state);
}  // namespace zorv
