#include "host/services/text.h"

#include <cstdio>

namespace {
void AppendEscaped(std::string& out, char letter) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\x%02x",
                  static_cast<unsigned>(static_cast<unsigned char>(letter)));
    out += letter == '\n' ? "\\n" : letter == '\t' ? "\\t" : escape;
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

std::string Printable(std::string_view text, size_t most) {
    std::string out;
    for (const char letter : text.substr(0, most)) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte < 0x20 || byte == 0x7f) {
            AppendEscaped(out, letter);
        } else {
            out += letter;
        }
    }
    return text.size() > most ? out + "..." : out;
}
