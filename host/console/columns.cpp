#include "host/console/columns.h"

#include <algorithm>

namespace {
constexpr size_t GAP = 2;  // blanks between two columns

size_t LongestOf(const Words& words) {
    size_t longest = 1;
    for (const std::string& word : words) {
        longest = std::max(longest, word.size());
    }
    return longest;
}
}  // namespace

std::string InColumns(const Words& words, size_t width, size_t height) {
    const size_t longest = LongestOf(words);
    const size_t columns = std::max<size_t>((width + GAP) / (longest + GAP), 1);
    const bool fits = words.size() <= columns * height;
    const size_t most = fits ? words.size() : columns * (std::max<size_t>(height, 2) - 1);
    const size_t rows = (most + columns - 1) / columns;
    std::string text;
    for (size_t row = 0; row < rows; ++row) {
        for (size_t i = row; i < most; i += rows) {
            const bool isLast = i + rows >= most;
            text += words[i] + std::string(isLast ? 0 : longest + GAP - words[i].size(), ' ');
        }
        text += '\n';
    }
    return fits ? text : text + "... and " + std::to_string(words.size() - most) + " more\n";
}
