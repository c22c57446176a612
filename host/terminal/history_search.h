// Looking for a line that was typed before, by a part of it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zorv {
class HistorySearch {
public:
    // The newest line first.
    explicit HistorySearch(std::vector<std::string> typedLines) : lines(std::move(typedLines)) {}

    // Adds a character, in this process's locale, to what is looked for, or takes the last one away.
    void Add(const std::string& character);
    void Erase();

    // Goes on to the next older line, if there is one.
    void Older();

    // The newest line from here on that has what is looked for; empty before anything is, or where none has.
    std::string Found() const;

    // What stands before the line meanwhile: "search 'st': ", or "nothing has 'st': ".
    std::string Prompt() const;

private:
    // The first line from `from` on that has the text; behind the last one when there is none.
    size_t FindFrom(size_t from) const;
    std::string Text() const;

    const std::vector<std::string> lines;
    std::vector<std::string> characters;
    size_t place = 0;  // from where on lines are looked at
};
}  // namespace zorv
