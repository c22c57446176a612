#include "page/markup.h"

#include <cstring>

#include "text/printable.h"
#include "text/utf8.h"

namespace page {
namespace {

constexpr const char* ELLIPSIS = "\u2026";
constexpr size_t LONGEST_ATTRIBUTE = size_t{1} << 20;  // outlines of drawings are long

// Each character as it can be shown.
std::vector<std::string> VisibleLetters(std::string_view text, size_t most) {
    std::vector<std::string> letters;
    while (!text.empty() && letters.size() < most) {
        const ShownCharacter letter = FirstShown(text);
        letters.push_back(letter.text);
        text.remove_prefix(letter.length);
    }
    if (!text.empty()) {
        letters.emplace_back(ELLIPSIS);
    }
    return letters;
}

// As it stands in a page.
std::string EntityOf(const std::string& letter) {
    return letter == "&"    ? "&amp;"
           : letter == "<"  ? "&lt;"
           : letter == ">"  ? "&gt;"
           : letter == "\"" ? "&quot;"
           : letter == "'"  ? "&#39;"
                            : letter;
}

// East Asian letters and pictures take two cells; what is counted double without need is cut a little early.
size_t CellsOf(const std::string& letter) {
    const Utf8Character first = FirstCharacter(letter);
    return first.code < 0x80 ? letter.size() : first.code >= 0x1100 ? 2 : 1;
}

bool StandsAlone(const char* name) {
    return std::strcmp(name, "meta") == 0 || std::strcmp(name, "br") == 0;
}

}  // namespace

std::string Escaped(std::string_view text, size_t most) {
    std::string out;
    for (const std::string& letter : VisibleLetters(text, most)) {
        out += EntityOf(letter);
    }
    return out;
}

std::string Shortened(std::string_view text, size_t cells) {
    std::string whole;
    std::vector<std::pair<std::string, size_t>> letters;
    size_t width = 0;
    for (const std::string& letter : VisibleLetters(text, MOST_LETTERS)) {
        letters.emplace_back(letter, CellsOf(letter));
        whole += letter;
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
        attributes.emplace_back("data-name", columns[i].title);  // where the heads have no room
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

}  // namespace page
