#include "explain/text/layout.h"

#include <clocale>
#include <cwchar>

#include "text/utf8.h"

namespace explain {
namespace {

// The widths are those of the C library, whose default locale knows no more than ASCII.
size_t CellsOfCharacter(char32_t code) {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t previous = uselocale(utf8);
    const int cells = wcwidth(static_cast<wchar_t>(code));
    uselocale(previous);
    return cells < 0 ? 1 : static_cast<size_t>(cells);
}

// How many bytes of `text` fit into so many cells; at least one character.
size_t BytesWithin(std::string_view text, size_t cells) {
    size_t bytes = 0;
    size_t used = 0;
    while (bytes < text.size()) {
        const Utf8Character character = FirstCharacter(text.substr(bytes));
        used += CellsOfCharacter(character.code);
        if (used > cells && bytes > 0) {
            break;
        }
        bytes += character.length;
    }
    return bytes;
}

// Takes one line off the front of `text`.
std::string_view TakeLine(std::string_view& text, size_t cells) {
    size_t length = BytesWithin(text, cells);
    size_t next = length;
    if (length < text.size()) {
        size_t blank = text.rfind(' ', length);
        if (blank != std::string_view::npos && blank > 0 && text.substr(blank + 1, 1) == "%") {
            blank = text.rfind(' ', blank - 1);  // a share stays in one piece
        }
        if (blank != std::string_view::npos && blank > 0) {
            length = blank;
            next = blank + 1;
        }
    }
    const std::string_view line = text.substr(0, length);
    text.remove_prefix(next);
    return line;
}

}  // namespace

size_t CellsOf(std::string_view text) {
    size_t cells = 0;
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        cells += CellsOfCharacter(character.code);
        text.remove_prefix(character.length);
    }
    return cells;
}

std::string PadRight(const std::string& text, size_t cells) {
    const size_t used = CellsOf(text);
    return used < cells ? text + std::string(cells - used, ' ') : text;
}

std::string PadLeft(const std::string& text, size_t cells) {
    const size_t used = CellsOf(text);
    return used < cells ? std::string(cells - used, ' ') + text : text;
}

std::string Beside(const std::string& columns, const std::string& text) {
    const bool fits = CellsOf(columns) + CellsOf(text) <= LINE_CELLS;
    return columns + (fits ? "" : "\n    ") + text + "\n";
}

std::string Paragraph(const std::string& lead, std::string_view text, size_t cells) {
    const size_t indent = CellsOf(lead);
    std::string lines = lead;
    do {
        lines += (lines.size() > lead.size() ? std::string(indent, ' ') : "");
        lines += TakeLine(text, cells - indent);
        lines += '\n';
    } while (!text.empty());
    return lines;
}

}  // namespace explain
