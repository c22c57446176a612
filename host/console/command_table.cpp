#include "host/console/command_table.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "host/console/commands.h"
#include "host/console/registered_commands.h"
#include "host/state/document.h"
#include "text/nearest_name.h"
#include "text/printable.h"

namespace zorv {
namespace {
struct Row {
    const char* name;
    const char* arguments;  // as a usage line shows them; empty when it takes none
    const char* help;       // what it does, on one line
    Words (*wordsAfter)(const Words& before);
    size_t start;
    bool isProgram;
    ExitStatus (*run)(const Words& words, ConsoleState& state);
};

// Rows whose commands answer with a document when --json is among their words.
constexpr const char* JSON = "--json";
constexpr std::array<const char*, 3> WITH_JSON = {"status", "alarms", "switch"};

bool HasJson(const Row& row) {
    return std::any_of(WITH_JSON.begin(), WITH_JSON.end(),
                       [&](const char* name) { return std::strcmp(name, row.name) == 0; });
}

// A document says too that there is no answer.
ExitStatus RunWithJson(const Row& row, Words words, ConsoleState& state) {
    const auto others = std::remove(words.begin(), words.end(), JSON);
    state.wantsJson = others != words.end();
    words.erase(others, words.end());
    try {
        return row.run(words, state);
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& error) {
        if (state.wantsJson) {
            PrintDocument(row.name, {}, error.what());
        }
        throw;
    }
}

Words WordsWithJson(const Row& row, const Words& before) {
    Words words = row.wordsAfter(before);
    if (std::find(before.begin(), before.end(), JSON) == before.end()) {
        words.emplace_back(JSON);
    }
    return words;
}

Words NoWords(const Words& /*before*/) {
    return {};
}

constexpr std::array<Row, 10> ROWS = {
    {{"help", "[COMMAND]", "list the commands, or explain one.", WordsAfterHelp, 0, false, RunHelp},
     {"status", "[--json]", "what this host works on: files, configuration, switch, alarms, start-up.",
      NoWords, 0, false, RunStatus},
     {"alarms", "[N] [--json]", "the last N alarms, 20 if not told, the newest last.", NoWords, 0, false,
      RunAlarms},
     {"switch", "get | set on|on-silent|off [--json]", "show or set the cluster's fault diagnosis switch.",
      WordsAfterSwitch, 0, false, RunSwitch},
     {"explain", "[OPTIONS] START END | MINUTES",
      "where the extra delay of slow points goes; --help tells more.", WordsAfterExplain, 0, true,
      RunExplain},
     {"overview", "[START END | MINUTES]",
      "the last four hours, or a range, on one screen: points, errors, healings, events.", WordsAfterOverview,
      0, true, RunOverview},
     {"series", "POINT [--columns NAMES] START END | MINUTES",
      "the rows that the statistics have of a point.", WordsAfterSeries, 0, true, RunSeries},
     {"check", "[OPTIONS] [FILE]", "what is wrong with the configuration's graphs; --help tells more.",
      WordsAfterCheck, 0, true, RunCheck},
     {"capture", "[--name NAME] [--timeout SECONDS] DIR|FILE.tar.zst",
      "copies this node's files, consistent beside their writers, for --capture elsewhere.",
      WordsAfterCapture, 0, false, RunCapture},
     {"quit", "", "leave; so does Ctrl-D.", NoWords, 0, false, RunQuit}}};

Command CommandOf(const Row& row) {
    const std::string arguments = row.arguments;
    const std::string help = row.name + (arguments.empty() ? "" : " " + arguments) + ": " + row.help + '\n';
    Command command = {"console", row.name, help, row.wordsAfter, row.start, row.isProgram, row.run};
    if (HasJson(row)) {
        command.wordsAfter = [row](const Words& before) { return WordsWithJson(row, before); };
        command.run = [row](const Words& words, ConsoleState& state) {
            return RunWithJson(row, words, state);
        };
    }
    return command;
}

std::vector<Command> OwnCommands() {
    std::vector<Command> commands;
    std::transform(ROWS.begin(), ROWS.end(), std::back_inserter(commands), CommandOf);
    return commands;
}
}  // namespace

std::vector<Command> AllCommands() {
    std::vector<Command> commands = CommandsOfThePlugin();
    for (Command& command : OwnCommands()) {
        commands.push_back(std::move(command));
    }
    return commands;
}

Words CommandNames() {
    Words names;
    for (const Command& command : AllCommands()) {
        names.push_back(command.name);
    }
    return names;
}

std::optional<Command> FindCommand(const std::string& name) {
    for (const std::vector<Command>& commands : {OwnCommands(), CommandsOfThePlugin()}) {
        for (const Command& command : commands) {
            if (command.name == name) {
                return command;
            }
        }
    }
    return std::nullopt;
}

Command CommandNamed(const std::string& name) {
    if (const std::optional<Command> command = FindCommand(name)) {
        return *command;
    }
    const std::string other = DidYouMean(name, CommandNames());
    throw UsageError("unknown command '" + Printable(name, 40) + "'" +
                     (other.empty() ? "; 'help' lists the commands" : other));
}
}  // namespace zorv
