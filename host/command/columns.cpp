#include "host/command/columns.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace zorv {
namespace {
constexpr size_t GAP = 2;  // blanks between two columns

// The words from the first on, so many that they fill `columns` columns of `rows` rows.
struct Layout {
    size_t rows, words;
    std::vector<size_t> widths;  // of the columns
    bool Fits(size_t width) const {
        return std::accumulate(widths.begin(), widths.end(), GAP * (widths.size() - 1)) <= width;
    }
};

Layout WithColumns(const Words& words, size_t columns, size_t height) {
    const bool isAll = words.size() <= columns * height;
    const size_t count = isAll ? words.size() : columns * (std::max<size_t>(height, 2) - 1);
    Layout layout{(count + columns - 1) / columns, std::min(count, words.size()), {}};
    for (size_t i = 0; i < layout.words; ++i) {
        layout.widths.resize(i / layout.rows + 1);
        layout.widths.back() = std::max(layout.widths.back(), words[i].size());
    }
    return layout;
}

Layout WidestLayout(const Words& words, size_t width, size_t height) {
    size_t columns = std::clamp<size_t>(width / (1 + GAP), 1, words.size());
    Layout layout = WithColumns(words, columns, height);
    while (columns > 1 && !layout.Fits(width)) {
        layout = WithColumns(words, --columns, height);
    }
    return layout;
}
}  // namespace

std::string InColumns(const Words& words, size_t width, size_t height) {
    if (words.empty()) {
        return {};
    }
    const Layout layout = WidestLayout(words, width, height);
    std::string text;
    for (size_t row = 0; row < layout.rows; ++row) {
        for (size_t i = row; i < layout.words; i += layout.rows) {
            const bool isLast = i + layout.rows >= layout.words;
            text += words[i] +
                    std::string(isLast ? 0 : layout.widths[i / layout.rows] + GAP - words[i].size(), ' ');
        }
        text += '\n';
    }
    const size_t more = words.size() - layout.words;
    return more == 0 ? text : text + "... and " + std::to_string(more) + " more\n";
}
}  // namespace zorv
