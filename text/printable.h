// Texts from outside that a person is to see.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

// printf's output as a string; the text of a format that cannot be converted is empty.
std::string FormatText(const char* format, va_list args) __attribute__((format(printf, 1, 0)));

// A character as it can be shown.
struct ShownCharacter {
    std::string text;   // the character itself; or an escape ("\n", "\x1b", "\u202e")
    size_t length = 0;  // of what it stands for, in bytes
};

// The character that `text`, which must not be empty, begins with. Control characters, bytes that are no
// UTF-8, and characters that are not seen, turn the direction of writing or are none become escapes, but
// those of `kept` stay.
ShownCharacter FirstShown(std::string_view text, std::string_view kept = {});

// `text` with its characters as they can be shown, so that it stays on one line and does nothing to a
// terminal or to the text around it. Of a text longer than `most` bytes about the first `most` are shown (no
// character is cut), then "...".
std::string Printable(std::string_view text, size_t most = std::string_view::npos,
                      std::string_view kept = {});
