#include "host/console/completion.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "host/console/command_table.h"
#include "host/console/help_words.h"
#include "host/console/route_file.h"
#include "host/console/switch_command.h"
#include "host/services/console.h"
#include "text/printable.h"

namespace {
Words GraphNames() {
    Words names;
    for (const RouteGraph& graph : CurrentRouteFile().graphs) {
        names.push_back(graph.name);
    }
    return names;
}

// Options can stand at every place, other words at the first one.
Words HostWords(const HostCommand& command, size_t place) {
    std::istringstream all(command.words);
    Words words{std::istream_iterator<std::string>(all), {}};
    const auto misplaced = [&](const std::string& word) { return place > 0 && word.front() != '-'; };
    words.erase(std::remove_if(words.begin(), words.end(), misplaced), words.end());
    return words;
}

Words RegisteredWords(const Words& before) {
    for (const RegisteredCommand& command : RegisteredCommands()) {
        if (before.front() != command.row->name) {
            continue;
        }
        const std::vector<WordPlace> places =
            PlacesOfHelp(command.row->help == nullptr ? "" : command.row->help);
        const size_t place = before.size() - 1;
        if (place >= places.size()) {
            return {};
        }
        return places[place].takesPoint ? PointNames(CurrentRouteFile()) : places[place].words;
    }
    return {};
}

Words AllWordsAfter(const Words& words) {
    const std::string command = words.empty() ? "help" : words.front();
    if (command == "help") {
        return words.size() < 2 ? CommandNames() : Words();
    }
    if (words.back() == "--point") {
        return PointNames(CurrentRouteFile());
    }
    if (words.back() == "--graph") {
        return GraphNames();
    }
    if (command == "switch" && words.size() > 1) {
        return SwitchWordsAfter(words);
    }
    for (const HostCommand& row : HOST_COMMANDS) {
        if (command == row.name) {
            return HostWords(row, words.size() - 1);
        }
    }
    return RegisteredWords(words);
}

// What would have to be quoted, or would do something to the terminal, is not offered.
bool IsPlain(const std::string& word) {
    return !word.empty() && word.find_first_of(" '\"") == std::string::npos && Printable(word) == word;
}
}  // namespace

Words CommandNames() {
    Words names;
    for (const RegisteredCommand& command : RegisteredCommands()) {
        names.emplace_back(command.row->name);
    }
    for (const HostCommand& command : HOST_COMMANDS) {
        names.emplace_back(command.name);
    }
    return names;
}

Words WordsAfter(const Words& words) {
    Words all = AllWordsAfter(words);
    all.erase(std::remove_if(all.begin(), all.end(), [](const auto& word) { return !IsPlain(word); }),
              all.end());
    return all;
}
