#include "text/utf8.h"

namespace {
// What the first byte says of a character.
struct Form {
    size_t length;
    char32_t least;            // a smaller code has a shorter form
    unsigned char mask, lead;  // a first byte of this form has the bits `lead` under `mask`
};
constexpr Form FORMS[] = {
    {1, 0, 0x80, 0x00}, {2, 0x80, 0xE0, 0xC0}, {3, 0x800, 0xF0, 0xE0}, {4, 0x10000, 0xF8, 0xF0}};

Utf8Character Decode(std::string_view text, const Form& form) {
    if (text.size() < form.length) {
        return {};
    }
    char32_t code = static_cast<unsigned char>(text[0]) & static_cast<unsigned char>(~form.mask);
    for (const char letter : text.substr(1, form.length - 1)) {
        const auto byte = static_cast<unsigned char>(letter);
        if ((byte & 0xC0U) != 0x80U) {
            return {};
        }
        code = (code << 6U) | (byte & 0x3FU);
    }
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < form.least || code > 0x10FFFF || isSurrogate) {
        return {};
    }
    return {code, form.length, true};
}
}  // namespace

Utf8Character FirstCharacter(std::string_view text) {
    for (const Form& form : FORMS) {
        if ((static_cast<unsigned char>(text[0]) & form.mask) == form.lead) {
            return Decode(text, form);
        }
    }
    return {};
}

std::string ValidUtf8(std::string_view text) {
    std::string valid;
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        valid += character.isValid ? text.substr(0, character.length) : "\xEF\xBF\xBD";
        text.remove_prefix(character.length);
    }
    return valid;
}
