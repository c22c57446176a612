#include "host/console/commands.h"

namespace zorv {
ExitStatus RunQuit(const Words& words, ConsoleState& state) {
    if (words.size() > 1) {
        throw UsageError("usage: quit");
    }
    state.leaving = true;
    return STATUS_OK;
}
}  // namespace zorv
