#include "host/terminal/completion.h"

#include <algorithm>

#include "host/console/command_table.h"
#include "text/printable.h"

namespace zorv {
namespace {
// What would have to be quoted, or would do something to the terminal, is not offered.
bool IsPlain(const std::string& word) {
    return !word.empty() && word.find_first_of(" '\"") == std::string::npos && Printable(word) == word;
}
}  // namespace

Words WordsAfter(const Words& words) {
    const std::optional<Command> command = words.empty() ? std::nullopt : FindCommand(words.front());
    Words all = words.empty() ? CommandNames() : command ? command->wordsAfter(words) : Words();
    all.erase(std::remove_if(all.begin(), all.end(), [](const auto& word) { return !IsPlain(word); }),
              all.end());
    return all;
}
}  // namespace zorv
