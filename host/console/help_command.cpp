#include "agent/agent_console.h"
#include "host/console/command_table.h"
#include "host/console/commands.h"

namespace zorv {
namespace {
void ListCommands() {
    std::string group;
    for (const Command& command : AllCommands()) {
        if (command.group != group) {
            group = command.group;
            DBG_Print("%s\n", group.c_str());
        }
        DBG_Print("  %s", command.help.substr(0, command.help.find('\n') + 1).c_str());
    }
}

void PrintWhole(const std::string& text) {
    const char* indent = "";
    for (size_t start = 0; start < text.size();) {
        const size_t end = text.find('\n', start);
        DBG_Print("%s%s\n", indent, text.substr(start, end - start).c_str());
        indent = "    ";
        start = end + 1;
    }
}
}  // namespace

ExitStatus RunHelp(const Words& words, ConsoleState& /*state*/) {
    if (words.size() > 2) {
        throw UsageError("usage: help [COMMAND]");
    }
    words.size() == 1 ? ListCommands() : PrintWhole(CommandNamed(words[1]).help);
    return STATUS_OK;
}

Words WordsAfterHelp(const Words& before) {
    return before.size() < 2 ? CommandNames() : Words();
}
}  // namespace zorv
