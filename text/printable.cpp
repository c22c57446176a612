#include "text/printable.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "text/utf8.h"

namespace {
// First and last of a row of characters that are not seen, end a line, or turn the direction of writing:
// controls, line ends, marks of direction, marks around annotations, and all that Unicode has shown as
// nothing (joiners, fillers, selectors of variants, tags); and those that are none, as the last two of each
// plane.
constexpr char32_t UNSEEN[][2] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0xAD, 0xAD},       {0x034F, 0x034F},   {0x061C, 0x061C},
    {0x115F, 0x1160}, {0x17B4, 0x17B5}, {0x180B, 0x180F},   {0x200B, 0x200F},   {0x2028, 0x202E},
    {0x2060, 0x206F}, {0x3164, 0x3164}, {0xFDD0, 0xFDEF},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},
    {0xFFA0, 0xFFA0}, {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF}};

bool IsUnseen(char32_t code) {
    return (code & 0xFFFEU) == 0xFFFEU ||
           std::any_of(std::begin(UNSEEN), std::end(UNSEEN),
                       [code](const auto& row) { return code >= row[0] && code <= row[1]; });
}

std::string Escape(const Utf8Character& character, char first) {
    char escape[16];
    const bool isByte = !character.isValid || character.length == 1;
    const auto number = isByte ? static_cast<unsigned char>(first) : static_cast<unsigned>(character.code);
    std::snprintf(escape, sizeof escape, isByte ? "\\x%02x" : "\\u%04x", number);
    return first == '\n' ? "\\n" : first == '\t' ? "\\t" : escape;
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

ShownCharacter FirstShown(std::string_view text, std::string_view kept) {
    const Utf8Character character = FirstCharacter(text);
    const std::string_view piece = text.substr(0, character.length);
    const bool stays = (character.isValid && !IsUnseen(character.code)) || kept.find(piece) != kept.npos;
    return {stays ? std::string(piece) : Escape(character, piece.front()), character.length};
}

std::string Printable(std::string_view text, size_t most, std::string_view kept) {
    std::string out;
    size_t shown = 0;
    while (shown < text.size() && shown < most) {
        const ShownCharacter character = FirstShown(text.substr(shown), kept);
        out += character.text;
        shown += character.length;
    }
    return shown < text.size() ? out + "..." : out;
}
