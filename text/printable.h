// Text helpers of the services and the console.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

// printf's output as a string; the text of a format that cannot be converted is empty.
std::string FormatText(const char* format, va_list args) __attribute__((format(printf, 1, 0)));

// `text` with each control character shown as an escape ("\n", "\x1b"), so that it stays on one line and
// does nothing to a terminal; bytes that are no UTF-8 and characters that are not seen or turn the direction
// of writing are shown as escapes too, but those of `kept` stay. Of a text longer than `most` bytes about the
// first `most` are shown (no character is cut), then "...".
std::string Printable(std::string_view text, size_t most = std::string_view::npos,
                      std::string_view kept = {});
