// The characters of UTF-8 text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The character that stands for bytes which are no UTF-8.
constexpr char32_t REPLACEMENT_CHARACTER = 0xFFFD;

struct Utf8Character {
    char32_t code = REPLACEMENT_CHARACTER;
    size_t length = 1;  // bytes
    bool isValid = false;
};

// The character that `text`, which must not be empty, begins with. Where the bytes are not the shortest form
// of a character, the answer is one invalid byte.
Utf8Character FirstCharacter(std::string_view text);

// `text` with the replacement character in place of each invalid byte.
std::string ValidUtf8(std::string_view text);
