#include "host/console/commands.h"
#include "host/console/explain_program.h"

namespace zorv {
ExitStatus RunOverview(const Words& words, ConsoleState& state) {
    Words arguments = {"--overview", "--console"};
    arguments.insert(arguments.end(), words.begin() + 1, words.end());
    return RunExplainProgram(state.sharedOptions, arguments);
}

Words WordsAfterOverview(const Words& before) {
    return before.size() == 1 ? Words{"60", "240", "1440", "-4h", "today", "yesterday", "--html"} : Words{};
}
}  // namespace zorv
