// Lines for a terminal of fixed width.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace explain {

constexpr size_t LINE_CELLS = 80;

// The cells that printable UTF-8 text takes: two for an ideograph, none for a combining mark.
size_t CellsOf(std::string_view text);

// With blanks up to so many cells; longer text stays as it is.
std::string PadRight(const std::string& text, size_t cells);
std::string PadLeft(const std::string& text, size_t cells);

// A line with `text` behind `columns`; where it has no room there, `text` stands on a line of its own, which
// is as long as it has to be.
std::string Beside(const std::string& columns, const std::string& text);

// `text` in lines of at most `cells`, broken at blanks, words longer than a line anywhere. The first line
// begins with `lead`, the others with as many blanks. Ends with a line end.
std::string Paragraph(const std::string& lead, std::string_view text, size_t cells = LINE_CELLS);

}  // namespace explain
