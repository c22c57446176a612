// Characters of this process's locale, as the line editor has them. Any thread.
#pragma once

#include <string>

namespace zorv {
// The characters of `text`, up to the first that is none, or is not whole.
std::wstring Wide(const std::string& text);

// The bytes of a character; empty for what the locale cannot write.
std::string Narrow(wchar_t character);

// The columns that the editor shows a character in.
int WidthOf(wchar_t character);
}  // namespace zorv
