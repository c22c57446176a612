#include "host/services/text.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace {
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
    return row[right.size()];
}

bool StartsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

void AppendEscaped(std::string& out, char letter) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\x%02x",
                  static_cast<unsigned>(static_cast<unsigned char>(letter)));
    out += letter == '\n' ? "\\n" : letter == '\t' ? "\\t" : escape;
}
}  // namespace

std::string FormatText(const char* format, va_list args) {
    va_list measured;
    va_copy(measured, args);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0) {
        return {};
    }
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, args);
    text.pop_back();
    return text;
}

std::string Printable(std::string_view text, size_t most) {
    std::string out;
    for (const char letter : text.substr(0, most)) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte < 0x20 || byte == 0x7f) {
            AppendEscaped(out, letter);
        } else {
            out += letter;
        }
    }
    return text.size() > most ? out + "..." : out;
}

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
