#include "text/nearest_name.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "text/printable.h"

namespace {
// Number of letters to insert, delete or replace between two texts.
size_t EditDistance(std::string_view left, std::string_view right) {
    std::vector<size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < left.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < right.size(); ++j) {
            const size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return *std::prev(row.end());
}

bool StartsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}
}  // namespace

std::string NearestName(const std::string& word, const std::vector<std::string>& names) {
    constexpr size_t LONGEST_WORD = 64;  // beyond it no typing error is left to mend
    if (word.empty() || word.size() > LONGEST_WORD) {
        return {};
    }
    std::string nearest;
    size_t least = std::max<size_t>(2, word.size() / 3) + 1;
    for (const std::string& name : names) {
        const size_t distance = EditDistance(word, name);
        if (distance < least && distance < name.size()) {
            least = distance;
            nearest = name;
        }
    }
    if (nearest.empty()) {
        const auto longer = std::find_if(names.begin(), names.end(),
                                         [&](const std::string& name) { return StartsWith(name, word); });
        return longer == names.end() ? std::string() : *longer;
    }
    return nearest;
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& names) {
    const std::string nearest = NearestName(word, names);
    return nearest.empty() ? "" : "; did you mean '" + Printable(nearest, 64) + "'?";
}
