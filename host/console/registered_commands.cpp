#include "host/console/registered_commands.h"

#include <map>
#include <stdexcept>

#include "host/basis/answer_basis.h"
#include "host/basis/route_file.h"
#include "host/console/help_words.h"
#include "host/console/hint.h"
#include "host/services/console.h"

namespace zorv {
namespace {
// What an answer rests on.
enum class Basis { UNTOLD, ROWS, ROWS_OF_POINT, GRAPHS };

// What their help texts do not tell, or not in one form.
struct Known {
    size_t start;  // where START stands
    Basis basis;
};
const std::map<std::string, Known> KNOWN = {
    {"simudetect", {1, Basis::UNTOLD}},      {"delaydetect", {1, Basis::ROWS}},
    {"delayanal", {1, Basis::GRAPHS}},       {"showallerr", {1, Basis::GRAPHS}},
    {"errcodeshowall", {1, Basis::GRAPHS}},  {"datashow", {2, Basis::ROWS_OF_POINT}},
    {"showfaultfactor", {2, Basis::GRAPHS}}, {"errcodeshow", {3, Basis::GRAPHS}},
    {"showgraph", {3, Basis::UNTOLD}}};

// A help text that says which command it is about, and ends with a line break.
std::string CompleteHelp(const std::string& name, std::string text) {
    if (text.compare(0, name.size(), name) != 0) {
        text = name + (text.empty() ? "" : ": " + text);
    }
    text.erase(text.find_last_not_of('\n') + 1);
    return text + '\n';
}

Words WordsByHelp(const std::string& help, const Words& before) {
    const std::vector<WordPlace> places = PlacesOfHelp(help);
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

// A command that is given a range answers something, and says nothing of what that rests on.
ExitStatus RunKnown(const RegisteredCommand& command, const Known& known, const Words& words,
                    const ConsoleState& state) {
    const bool hasPoint = known.basis == Basis::ROWS_OF_POINT && words.size() > 1;
    AnswerBasis basis(hasPoint ? words[1] : "", known.basis == Basis::GRAPHS);
    RunHandler(command, words);
    const Printed printed = GetPrinted();
    if (printed.last.empty()) {
        throw std::runtime_error("the command gave no answer; the log tells why");
    }
    const std::string problem = known.basis == Basis::UNTOLD ? "" : basis.Problem(printed);
    if (known.basis == Basis::ROWS && state.wantsHints && basis.HasRows() && IsHeader(printed.last)) {
        HintAtEvent(words, state);
    }
    if (!problem.empty()) {
        throw std::runtime_error(problem);
    }
    return STATUS_OK;
}

ExitStatus RunRegistered(const RegisteredCommand& command, const Words& words, const ConsoleState& state) {
    const auto known = KNOWN.find(command.row->name);
    if (known != KNOWN.end()) {
        return RunKnown(command, known->second, words, state);
    }
    RunHandler(command, words);
    return STATUS_OK;
}

Command CommandOf(const RegisteredCommand& registered) {
    const std::string name = registered.row->name;
    const std::string help = registered.row->help == nullptr ? "" : registered.row->help;
    const auto known = KNOWN.find(name);
    return {registered.group,
            name,
            CompleteHelp(name, help),
            [help](const Words& before) { return WordsByHelp(help, before); },
            known == KNOWN.end() ? 0 : known->second.start,
            false,
            [registered](const Words& words, ConsoleState& state) {
                return RunRegistered(registered, words, state);
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
