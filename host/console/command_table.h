// Every command that an operator can type: the registered ones and the console's own.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/command/command.h"

namespace zorv {
// The registered ones come first, in the order of their registration. Any thread, as for all of these.
std::vector<Command> AllCommands();

Words CommandNames();

// The command that runs for `name`: the console's own, or else a registered one.
std::optional<Command> FindCommand(const std::string& name);

// The same. Throws UsageError, which names the nearest one, when there is none.
Command CommandNamed(const std::string& name);
}  // namespace zorv
