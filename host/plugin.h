// Loading the plug-in.
#pragma once

#include <optional>
#include <string>

namespace zorv {
// Loads the plug-in `file`, or the one that belongs to this program, and runs its entry. It stays loaded for
// the life of the process. Throws std::runtime_error, with a message for the operator, when there is no such
// plug-in or it cannot be loaded. An entry that reports failure is logged only.
void StartPlugin(const std::optional<std::string>& file);
}  // namespace zorv
