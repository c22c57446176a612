#include "host/console/registered_commands.h"

#include <stdexcept>

#include "host/basis/answer_basis.h"
#include "host/basis/route_file.h"
#include "host/command/known_commands.h"
#include "host/console/hint.h"
#include "host/process/error_lines.h"
#include "host/services/console.h"
#include "text/nearest_name.h"

namespace zorv {
namespace {
// A help text that says which command it is about, and ends with a line break.
std::string CompleteHelp(const std::string& name, std::string text) {
    if (text.compare(0, name.size(), name) != 0) {
        text = name + (text.empty() ? "" : ": " + text);
    }
    text.erase(text.find_last_not_of('\n') + 1);
    return text + '\n';
}

Words WordsByHelp(const std::string& name, const std::string& help, const Words& before) {
    const std::vector<WordPlace> places = PlacesOf(name, help);
    const size_t place = before.size() - 1;
    if (place >= places.size()) {
        return {};
    }
    return places[place].takesPoint ? PointNames(CurrentRouteFile()) : places[place].words;
}

// Its handler tells by an error line whether it failed.
void RunHandler(const RegisteredCommand& command, const Words& words) {
    Words texts = {"diagnose", command.group};
    texts.insert(texts.end(), words.begin(), words.end());
    std::vector<char*> argv;
    for (std::string& text : texts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);
    command.row->handler(static_cast<int32_t>(texts.size()), argv.data());
}

// Whether delaydetect has flagged nothing: its header is the last that was printed.
bool IsHeader(const std::string& last) {
    return last.rfind("lumoLocName", 0) == 0;
}

// showgraph, for a point that its graph does not have.
bool IsOfUnknownPoint(const std::string& answer) {
    return answer.find(" not exist !") != std::string::npos;
}

// A command that is given a range answers something, and says nothing of what that rests on.
ExitStatus RunKnown(const RegisteredCommand& command, const Words& words, const ConsoleState& state) {
    const KnownCommand& known = KnownCommandOf(command.row->name);
    const std::string point = known.point != 0 && words.size() > known.point ? words[known.point] : "";
    AnswerBasis basis(known.basis == Basis::ROWS_OF_POINT ? point : "", known.basis == Basis::GRAPHS);
    RunHandler(command, words);
    const Printed printed = GetPrinted();
    if (printed.last.empty()) {
        throw std::runtime_error("the command gave no answer; the log tells why");
    }
    const std::string problem = known.basis == Basis::UNTOLD ? "" : basis.Problem(printed);
    if (known.basis == Basis::ROWS && state.wantsHints && basis.HasRows() && IsHeader(printed.last)) {
        HintAtEvent(words, state);
    }
    if (const std::string other = IsOfUnknownPoint(printed.last) ? DidYouMean(point, basis.Points()) : "";
        !other.empty()) {
        PrintErrorLines("zorv-local: no such point" + other + '\n');
    }
    if (!problem.empty()) {
        throw std::runtime_error(problem);
    }
    return STATUS_OK;
}

ExitStatus RunRegistered(const RegisteredCommand& command, const std::string& help, const Words& words,
                         const ConsoleState& state) {
    ExitStatus status = STATUS_OK;
    if (KnownCommandOf(command.row->name).start != 0) {
        status = RunKnown(command, words, state);
    } else {
        RunHandler(command, words);
    }
    PrintErrorLines(UsageFor(GetPrinted().last, command.row->name, help));
    return status;
}

Command CommandOf(const RegisteredCommand& registered) {
    const std::string name = registered.row->name;
    const std::string help = registered.row->help == nullptr ? "" : registered.row->help;
    const KnownCommand& known = KnownCommandOf(name);
    const std::string whole = CompleteHelp(name, help);
    return {registered.group,
            name,
            whole + known.help + (known.help[0] == '\0' ? "" : "\n"),
            [name, help](const Words& before) { return WordsByHelp(name, help, before); },
            known.start,
            false,
            [registered, whole](const Words& words, ConsoleState& state) {
                return RunRegistered(registered, whole, words, state);
            }};
}
}  // namespace

std::vector<Command> CommandsOfThePlugin() {
    std::vector<Command> commands;
    for (const RegisteredCommand& registered : RegisteredCommands()) {
        commands.push_back(CommandOf(registered));
    }
    return commands;
}
}  // namespace zorv
