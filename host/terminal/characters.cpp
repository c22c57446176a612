#include "host/terminal/characters.h"

#include <cstdlib>
#include <cwchar>

namespace zorv {
std::wstring Wide(const std::string& text) {
    std::wstring characters;
    std::mbstate_t state{};
    for (size_t at = 0; at < text.size();) {
        wchar_t character = 0;
        const size_t used = std::mbrtowc(&character, text.data() + at, text.size() - at, &state);
        if (used == 0 || used > text.size()) {
            break;
        }
        characters += character;
        at += used;
    }
    return characters;
}

std::string Narrow(wchar_t character) {
    std::string bytes(MB_CUR_MAX, '\0');
    std::mbstate_t state{};
    const size_t count = std::wcrtomb(bytes.data(), character, &state);
    bytes.resize(count == static_cast<size_t>(-1) ? 0 : count);
    return bytes;
}

int WidthOf(wchar_t character) {
    constexpr int OF_A_CONTROL_CHARACTER = 2;
    const int width = wcwidth(character);
    return width < 0 ? OF_A_CONTROL_CHARACTER : width;
}
}  // namespace zorv
