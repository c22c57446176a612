#include "host/console/registered_commands.h"

#include <map>

#include "host/console/help_words.h"
#include "host/console/route_file.h"
#include "host/services/console.h"

namespace zorv {
namespace {
// What their help texts do not tell in one form: where START stands.
const std::map<std::string, size_t> PLACES_OF_START = {
    {"simudetect", 1}, {"delaydetect", 1},     {"delayanal", 1},   {"showallerr", 1}, {"errcodeshowall", 1},
    {"datashow", 2},   {"showfaultfactor", 2}, {"errcodeshow", 3}, {"showgraph", 3}};

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
ExitStatus RunHandler(const RegisteredCommand& command, const Words& words) {
    Words texts = {"diagnose", command.group};
    texts.insert(texts.end(), words.begin(), words.end());
    std::vector<char*> argv;
    for (std::string& text : texts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);
    command.row->handler(static_cast<int32_t>(texts.size()), argv.data());
    return STATUS_OK;
}

Command CommandOf(const RegisteredCommand& registered) {
    const std::string name = registered.row->name;
    const std::string help = registered.row->help == nullptr ? "" : registered.row->help;
    const auto place = PLACES_OF_START.find(name);
    return {registered.group,
            name,
            CompleteHelp(name, help),
            [help](const Words& before) { return WordsByHelp(help, before); },
            place == PLACES_OF_START.end() ? 0 : place->second,
            false,
            [registered](const Words& words, ConsoleState&) { return RunHandler(registered, words); }};
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
