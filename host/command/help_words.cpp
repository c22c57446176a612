#include "host/command/help_words.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>

namespace zorv {
namespace {
constexpr const char* MINUTES = "timelength";  // the one placeholder without capitals or values

bool IsName(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char letter) {
        return std::isalnum(letter) != 0 || letter == '_';
    });
}

// The values of "[word]:A, B, C" in `text`.
Words ValuesOf(const std::string& word, const std::string& text) {
    const std::string start = "[" + word + "]:";
    const size_t found = text.find(start);
    Words values;
    if (found == std::string::npos) {
        return values;
    }
    const size_t first = found + start.size();
    std::istringstream list(text.substr(first, text.find_first_of("[.\n", first) - first));
    for (std::string value; std::getline(list, value, ',');) {
        value.erase(0, value.find_first_not_of(' '));
        if (IsName(value)) {
            values.push_back(value);
        }
    }
    return values;
}

bool StandsForItself(const std::string& word) {
    return IsName(word) && word != MINUTES &&
           std::none_of(word.begin(), word.end(),
                        [](unsigned char letter) { return std::isupper(letter) != 0; });
}

class Places {
public:
    explicit Places(std::string restOfHelp) : rest(std::move(restOfHelp)) {}

    // Adds the words of one pair of brackets.
    void AddGroup(const std::string& group) {
        std::istringstream words(group);
        const Words all{std::istream_iterator<std::string>(words), {}};
        const bool isChoice =
            all.size() == 1 && ValuesOf(all.front(), rest).empty() && StandsForItself(all.front());
        next = isChoice && afterChoice ? next - 1 : next;
        groupStart = next;
        for (const std::string& word : all) {
            Add(word, isChoice);
        }
        afterChoice = isChoice;
    }

    // The next group stands where the last one began.
    void Alternative() { next = groupStart; }

    std::vector<WordPlace> Take() {
        if (afterChoice) {
            places.push_back({{}, true});
        }
        return std::move(places);
    }

private:
    void Add(const std::string& word, bool isChoice) {
        places.resize(std::max(places.size(), next + 1));
        WordPlace& place = places[next++];
        const Words values = isChoice ? Words{word} : ValuesOf(word, rest);
        place.words.insert(place.words.end(), values.begin(), values.end());
        place.takesPoint |= word.find("LocName") != std::string::npos;
    }

    const std::string rest;
    std::vector<WordPlace> places;
    size_t next = 0;
    size_t groupStart = 0;
    bool afterChoice = false;
};
}  // namespace

std::vector<WordPlace> PlacesOfHelp(const std::string& help) {
    const size_t end = std::min(help.find(':'), help.size());
    Places places(help.substr(end));
    for (size_t i = 0; i < end; ++i) {
        if (help[i] == '|') {
            places.Alternative();
        } else if (help[i] == '[') {
            const size_t close = std::min(help.find(']', i), end);
            places.AddGroup(help.substr(i + 1, close - i - 1));
            i = close;
        }
    }
    return places.Take();
}
}  // namespace zorv
