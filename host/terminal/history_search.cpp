#include "host/terminal/history_search.h"

#include "text/printable.h"

namespace zorv {
void HistorySearch::Add(const std::string& character) {
    characters.push_back(character);
    place = FindFrom(place);
}

// From the newest line on: a shorter text may be in one that the longer one was not in.
void HistorySearch::Erase() {
    if (!characters.empty()) {
        characters.pop_back();
        place = FindFrom(0);
    }
}

void HistorySearch::Older() {
    const std::string shown = Found();
    for (size_t next = FindFrom(place + 1); !shown.empty() && next < lines.size();
         next = FindFrom(next + 1)) {
        if (lines[next] != shown) {
            place = next;
            return;
        }
    }
}

std::string HistorySearch::Found() const {
    return characters.empty() || place >= lines.size() ? "" : lines[place];
}

std::string HistorySearch::Prompt() const {
    const bool isLost = !characters.empty() && place >= lines.size();
    return (isLost ? "nothing has '" : "search '") + Printable(Text()) + "': ";
}

size_t HistorySearch::FindFrom(size_t from) const {
    const std::string text = Text();
    while (from < lines.size() && lines[from].find(text) == std::string::npos) {
        ++from;
    }
    return from;
}

std::string HistorySearch::Text() const {
    std::string text;
    for (const std::string& character : characters) {
        text += character;
    }
    return text;
}
}  // namespace zorv
