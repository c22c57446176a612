// Text helpers of the services and the console.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// printf's output as a string; the text of a format that cannot be converted is empty.
std::string FormatText(const char* format, va_list args) __attribute__((format(printf, 1, 0)));

// `text` with each control character shown as an escape ("\n", "\x1b"), so that it stays on one line and
// does nothing to a terminal. Of a text longer than `most` bytes the first `most` are shown, then "...".
std::string Printable(std::string_view text, size_t most = std::string_view::npos);

// The name that was probably meant by `word`: the one with the fewest single-letter changes, unless even
// that is far off, or else one that begins with `word`. Empty when no name is near.
std::string NearestName(const std::string& word, const std::vector<std::string>& names);
