// The commands that the plug-in registered, as commands of the console.
#pragma once

#include <vector>

#include "host/command/command.h"

namespace zorv {
// In the order of their registration. Any thread.
std::vector<Command> CommandsOfThePlugin();
}  // namespace zorv
