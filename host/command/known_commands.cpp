#include "host/command/known_commands.h"

#include <map>
#include <sstream>

namespace zorv {
namespace {
constexpr const char* RANGE = "START END";
constexpr const char* RANGE_OR_MINUTES = "START END | MINUTES";

const std::map<std::string, KnownCommand> KNOWN = {
    {"simudetect", {1, Basis::UNTOLD, RANGE}},
    {"delaydetect", {1, Basis::ROWS, RANGE_OR_MINUTES}},
    {"delayanal", {1, Basis::GRAPHS, RANGE_OR_MINUTES}},
    {"showallerr", {1, Basis::GRAPHS, RANGE_OR_MINUTES}},
    {"errcodeshowall", {1, Basis::GRAPHS, RANGE_OR_MINUTES}},
    {"datashow",
     {2, Basis::ROWS_OF_POINT, "POINT START END COUNT", 1,
      "shows whether the rows of a range can be read: it loads them for the points of delaydetect, and "
      "prints a title only. 'explain --point POINT START END' shows what they say."}},
    {"showfaultfactor",
     {2,
      Basis::GRAPHS,
      "MODULE START END",
      0,
      "",
      {"SAN_PROTOL", "NAS_PROTOL", "FS", "BLOCK", "POOL", "CACHE", "BDM"}}},
    {"errcodeshow", {3, Basis::GRAPHS, "TYPE MODULE START END | MINUTES"}},
    {"showgraph",
     {3, Basis::UNTOLD, "WORD POINT START END", 2,
      "shows the graph of host reads: its edges, nodes, points and observation points, and the rows of a "
      "POINT; other words take any POINT."}}};

constexpr const char* TIMES =
    "  START and END: the earlier one first, such as 20230105103000, now, -30m or 2023-01-05T10:30:00\n";

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

Words Cut(const std::string& text) {
    std::istringstream stream(text);
    Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

std::string Listed(const std::string& name, const Words& words) {
    std::string list;
    for (const std::string& word : words) {
        list += list.empty() ? "  " + name + ": " : ", ";
        list += word;
    }
    return list + (list.empty() ? "" : "\n");
}
}  // namespace

const KnownCommand& KnownCommandOf(const std::string& name) {
    static const KnownCommand unknown;
    const auto known = KNOWN.find(name);
    return known == KNOWN.end() ? unknown : known->second;
}

std::vector<WordPlace> PlacesOf(const std::string& name, const std::string& help) {
    std::vector<WordPlace> places = PlacesOfHelp(help);
    const KnownCommand& known = KnownCommandOf(name);
    if (!places.empty() && places.front().words.empty()) {
        places.front().words = known.modules;
    }
    return places;
}

std::string UsageFor(const std::string& answer, const std::string& name, const std::string& help) {
    const bool isOfTimes = EndsWith(answer, "date input err\n");
    const bool isOfWords = EndsWith(answer, "type err\n");
    if (!isOfTimes && !isOfWords && !EndsWith(answer, "input err\n")) {
        return {};
    }
    const KnownCommand& known = KnownCommandOf(name);
    const std::string usage =
        "zorv-local: usage: " +
        (known.start == 0 ? help.substr(0, help.find_first_of(":\n")) : name + ' ' + known.arguments) + '\n';
    const Words names = Cut(known.arguments);
    const std::vector<WordPlace> places = PlacesOf(name, help);
    std::string words;
    for (size_t i = 0; i < places.size() && i < names.size(); ++i) {
        words += Listed(names[i], places[i].words);
    }
    return usage + (isOfTimes ? TIMES : words);
}
}  // namespace zorv
