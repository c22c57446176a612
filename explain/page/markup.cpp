#include "explain/page/markup.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace explain {
namespace {

constexpr char32_t REPLACEMENT = 0xfffd;
constexpr const char* ELLIPSIS = "\u2026";
constexpr size_t LONGEST_ATTRIBUTE = size_t{1} << 20;  // outlines of drawings are long

// Takes the first character off `text`, which must not be empty. Of what is no UTF-8, one byte.
char32_t TakeLetter(std::string_view& text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const size_t length = byte(0) < 0x80                      ? 1
                          : byte(0) >= 0xc2 && byte(0) < 0xe0 ? 2
                          : byte(0) >= 0xe0 && byte(0) < 0xf0 ? 3
                          : byte(0) >= 0xf0 && byte(0) < 0xf5 ? 4
                                                              : 0;
    char32_t letter = length < 2 ? byte(0) : byte(0) & (0x7fU >> length);
    bool valid = length > 0 && length <= text.size();
    for (size_t i = 1; valid && i < length; ++i) {
        valid = (byte(i) & 0xc0U) == 0x80;
        letter = letter << 6 | (byte(i) & 0x3fU);
    }
    const bool tooLong = (length == 3 && letter < 0x800) || (length == 4 && letter < 0x10000);
    valid = valid && !tooLong && letter <= 0x10ffff && (letter < 0xd800 || letter > 0xdfff);
    text.remove_prefix(valid ? length : 1);
    return valid ? letter : REPLACEMENT;
}

// Controls, and what reorders or hides the text around it; and what no XML document may hold.
bool IsUnseen(char32_t letter) {
    return letter < 0x20 || (letter >= 0x7f && letter < 0xa0) || letter == 0xad || letter == 0x61c ||
           (letter >= 0x200b && letter <= 0x200f) || (letter >= 0x2028 && letter <= 0x202e) ||
           (letter >= 0x2060 && letter <= 0x206f) || letter == 0xfeff || (letter & 0xfffeU) == 0xfffe ||
           (letter >= 0xfdd0 && letter <= 0xfdef);
}

std::string EscapeOf(char32_t letter) {
    std::array<char, 16> escape{};
    std::snprintf(escape.data(), escape.size(), letter < 0x100 ? "\\x%02x" : "\\u%04x",
                  static_cast<unsigned>(letter));
    return letter == '\n' ? "\\n" : letter == '\t' ? "\\t" : escape.data();
}

// Each character as it can be shown, one string each.
std::vector<std::pair<std::string, char32_t>> VisibleLetters(std::string_view text, size_t most) {
    std::vector<std::pair<std::string, char32_t>> letters;
    while (!text.empty() && letters.size() < most) {
        const std::string_view before = text;
        const char32_t letter = TakeLetter(text);
        const std::string_view bytes = before.substr(0, before.size() - text.size());
        letters.emplace_back(IsUnseen(letter)        ? EscapeOf(letter)
                             : letter == REPLACEMENT ? "\ufffd"
                                                     : std::string(bytes),
                             letter);
    }
    if (!text.empty()) {
        letters.emplace_back(ELLIPSIS, U'.');
    }
    return letters;
}

const char* EntityOf(char32_t letter) {
    switch (letter) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return nullptr;
    }
}

// East Asian letters and pictures take two cells; what is counted double without need is cut a little early.
size_t CellsOf(const std::string& visible, char32_t letter) {
    return IsUnseen(letter) ? visible.size() : letter >= 0x1100 ? 2 : 1;
}

bool StandsAlone(const char* name) {
    return std::strcmp(name, "meta") == 0;
}

}  // namespace

std::string Escaped(std::string_view text, size_t most) {
    std::string out;
    for (const auto& [visible, letter] : VisibleLetters(text, most)) {
        const char* entity = EntityOf(letter);
        out += entity != nullptr ? entity : visible;
    }
    return out;
}

std::string Shortened(std::string_view text, size_t cells) {
    std::string whole;
    std::vector<std::pair<std::string, size_t>> letters;
    size_t width = 0;
    for (const auto& [visible, letter] : VisibleLetters(text, MOST_LETTERS)) {
        letters.emplace_back(visible, CellsOf(visible, letter));
        whole += visible;
        width += letters.back().second;
    }
    if (width <= cells) {
        return whole;
    }
    std::string head;
    std::string tail;
    size_t first = 0;
    size_t last = letters.size();
    for (size_t left = (cells - 1) / 2; letters[first].second <= left; left -= letters[first++].second) {
        head += letters[first].first;
    }
    for (size_t left = cells / 2; letters[last - 1].second <= left; left -= letters[--last].second) {
        tail.insert(0, letters[last - 1].first);
    }
    return head + ELLIPSIS + tail;
}

Markup Text(std::string_view text, size_t most) {
    return Markup(Escaped(text, most));
}

Markup Element(const char* name, const Attributes& attributes, const Markup& content) {
    std::string html = std::string("<") + name;
    for (const auto& [attribute, value] : attributes) {
        html += std::string(" ") + attribute + "=\"" + Escaped(value, LONGEST_ATTRIBUTE) + "\"";
    }
    return Markup(StandsAlone(name) ? html + "/>" : html + ">" + content.html + "</" + name + ">");
}

Markup Element(const char* name, const Markup& content) {
    return Element(name, {}, content);
}

Markup Element(const char* name, std::string_view text) {
    return Element(name, {}, Text(text));
}

void Table::Add(const std::vector<Markup>& cells, const char* style) {
    Markup row;
    for (size_t i = 0; i < columns.size(); ++i) {
        Attributes attributes;
        if (i == 0) {
            attributes.emplace_back("scope", "row");
        }
        if (columns[i].isNumber) {
            attributes.emplace_back("class", "number");
        }
        row += Element(i == 0 ? "th" : "td", attributes, cells[i]);
    }
    rows += Element("tr", style != nullptr ? Attributes{{"class", style}} : Attributes{}, row);
}

Markup Table::Done() const {
    Markup titles;
    for (const Column& column : columns) {
        Attributes attributes{{"scope", "col"}};
        if (column.isNumber) {
            attributes.emplace_back("class", "number");
        }
        titles += Element("th", attributes, Text(column.title));
    }
    const Markup table = Element(
        "table", Element("caption", name) + Element("thead", Element("tr", titles)) + Element("tbody", rows));
    // Narrow screens move the table, not the page; with the keys too.
    return Element("div", {{"class", "scroll"}, {"tabindex", "0"}, {"role", "region"}, {"aria-label", name}},
                   table);
}

}  // namespace explain
