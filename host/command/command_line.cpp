#include "host/command/command_line.h"

namespace zorv {
namespace {
constexpr std::string_view BLANKS = " \t\r\n\v\f";
constexpr std::string_view WORD_ENDS = " \t\r\n\v\f'\"";

bool IsBlank(char letter) {
    return BLANKS.find(letter) != std::string_view::npos;
}

// Moves the word that `line` begins with out of it.
std::string TakeWord(std::string_view& line) {
    std::string word;
    while (!line.empty() && !IsBlank(line.front())) {
        const char quote = line.front();
        if (quote != '\'' && quote != '"') {
            const size_t length = std::min(line.find_first_of(WORD_ENDS), line.size());
            word += line.substr(0, length);
            line.remove_prefix(length);
            continue;
        }
        const size_t close = line.find(quote, 1);
        if (close == std::string_view::npos) {
            throw UsageError(std::string("the quote ") + quote + " is not closed");
        }
        word += line.substr(1, close - 1);
        line.remove_prefix(close + 1);
    }
    return word;
}
}  // namespace

Words SplitLine(std::string_view line) {
    if (line.find('\0') != std::string_view::npos) {
        throw UsageError("a command line cannot hold a NUL byte");
    }
    Words words;
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
        if (line.empty() || (words.empty() && line.front() == '#')) {
            return words;
        }
        words.push_back(TakeWord(line));
    }
}
}  // namespace zorv
