#include "host/console/console.h"

#include <cstdio>
#include <cstring>

#include "host/console/alarms_command.h"
#include "host/console/command_table.h"
#include "host/console/completion.h"
#include "host/console/explain_command.h"
#include "host/console/status_command.h"
#include "host/console/switch_command.h"
#include "host/console/time_arguments.h"
#include "host/process/interrupt.h"
#include "host/services/console.h"
#include "host/services/log.h"
#include "text/nearest_name.h"
#include "text/printable.h"

namespace {
constexpr const char* EXPLAIN = "explain";

void Report(const std::string& place, const std::string& text) {
    std::fprintf(stderr, "zorv-local: %s%s\n", place.c_str(), Printable(text, text.npos, "\n").c_str());
}

// Of an interrupted command: it failed because of that.
void ReportFailure(const std::string& place, const std::string& text) {
    if (!Interrupted()) {
        Report(place, text);
    }
}

[[noreturn]] void ThrowUnknown(const std::string& name) {
    const std::string nearest = NearestName(name, CommandNames());
    throw UsageError("unknown command '" + Printable(name, 40) + "'; " +
                     (nearest.empty() ? "'help' lists the commands" : "did you mean '" + nearest + "'?"));
}

const ZORV_DIAG_CMD_S* FindRegistered(const std::vector<RegisteredCommand>& commands, const std::string& name,
                                      const char** group) {
    for (const RegisteredCommand& command : commands) {
        if (name == command.row->name) {
            *group = command.group;
            return command.row;
        }
    }
    return nullptr;
}

// A help text that says which command it is about, and ends with a line break.
std::string CompleteHelp(const std::string& name, const char* help) {
    std::string text = help == nullptr ? "" : help;
    if (text.compare(0, name.size(), name) != 0) {
        text = name + (text.empty() ? "" : ": " + text);
    }
    text.erase(text.find_last_not_of('\n') + 1);
    return text + '\n';
}

void PrintFirstLine(const std::string& name, const char* help) {
    const std::string text = CompleteHelp(name, help);
    DBG_Print("  %s\n", text.substr(0, text.find('\n')).c_str());
}

void PrintWhole(const std::string& name, const char* help) {
    const std::string text = CompleteHelp(name, help);
    const char* indent = "";
    for (size_t start = 0; start < text.size();) {
        const size_t end = text.find('\n', start);
        DBG_Print("%s%s\n", indent, text.substr(start, end - start).c_str());
        indent = "    ";
        start = end + 1;
    }
}

std::string HelpOf(const HostCommand& command) {
    const std::string arguments = command.arguments;
    return command.name + (arguments.empty() ? "" : " " + arguments) + ": " + command.help;
}

void ListCommands() {
    const char* group = "";
    for (const RegisteredCommand& command : RegisteredCommands()) {
        if (std::strcmp(command.group, group) != 0) {
            group = command.group;
            DBG_Print("%s\n", group);
        }
        PrintFirstLine(command.row->name, command.row->help);
    }
    DBG_Print("console\n");
    for (const HostCommand& command : HOST_COMMANDS) {
        PrintFirstLine(command.name, HelpOf(command).c_str());
    }
}

void ExplainCommand(const std::string& name) {
    for (const HostCommand& command : HOST_COMMANDS) {
        if (name == command.name) {
            return PrintWhole(name, HelpOf(command).c_str());
        }
    }
    const std::vector<RegisteredCommand> commands = RegisteredCommands();
    const char* group = nullptr;
    const ZORV_DIAG_CMD_S* const row = FindRegistered(commands, name, &group);
    if (row == nullptr) {
        ThrowUnknown(name);
    }
    PrintWhole(name, row->help);
}

void RunHelp(const Words& words) {
    if (words.size() > 2) {
        throw UsageError("usage: help [COMMAND]");
    }
    words.size() == 1 ? ListCommands() : ExplainCommand(words[1]);
}

void RunRegistered(const Words& words) {
    const char* group = nullptr;
    const ZORV_DIAG_CMD_S* const row = FindRegistered(RegisteredCommands(), words.front(), &group);
    if (row == nullptr) {
        ThrowUnknown(words.front());
    }
    Words texts = {"diagnose", group};
    const Words given = WithCompactTimes(words);
    texts.insert(texts.end(), given.begin(), given.end());
    std::vector<char*> argv;
    for (std::string& text : texts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);
    row->handler(static_cast<int32_t>(texts.size()), argv.data());
}
}  // namespace

ExitStatus Console::RunLine(std::string_view line, const std::string& place) {
    try {
        const Words words = SplitLine(line);
        const ExitStatus status = words.empty() ? STATUS_OK : Run(words, place);
        return status != STATUS_OK && words.front() == EXPLAIN ? STATUS_FAILED : status;
    } catch (const UsageError& error) {
        Report(place, error.what());
        return STATUS_USAGE;
    }
}

ExitStatus Console::Run(const Words& words, const std::string& place) {
    const CommandRun run;
    ExitStatus status = STATUS_OK;
    try {
        TakeErrorLine();
        status = Dispatch(words);
        status = TakeErrorLine() ? STATUS_FAILED : status;
    } catch (const UsageError& error) {
        Report(place, error.what());
        status = STATUS_USAGE;
    } catch (const std::exception& error) {
        ReportFailure(place, error.what());
        status = STATUS_FAILED;
    } catch (...) {
        ReportFailure(place, "the command ended with an unknown exception");
        status = STATUS_FAILED;
    }
    if (OutputError() != 0) {
        Report(place, std::string("cannot print the results: ") + std::strerror(OutputError()));
        leaving = true;
        status = STATUS_FAILED;
    }
    if (Interrupted()) {
        Report(place, "interrupted: what is printed above is not all");
        status = STATUS_FAILED;
    }
    return status;
}

ExitStatus Console::Dispatch(const Words& words) {
    if (words.front() == EXPLAIN) {
        return static_cast<ExitStatus>(RunExplainCommand(words, sharedOptions));
    }
    if (words.front() == "help") {
        RunHelp(words);
    } else if (words.front() == "switch") {
        RunSwitchCommand(words);
    } else if (words.front() == "status") {
        RunStatusCommand(words);
    } else if (words.front() == "alarms") {
        RunAlarmsCommand(words);
    } else if (words.front() == "quit") {
        Quit(words);
    } else {
        RunRegistered(words);
    }
    return STATUS_OK;
}

void Console::Quit(const Words& words) {
    if (words.size() > 1) {
        throw UsageError("usage: quit");
    }
    leaving = true;
}
