// Numbers among the words of the cluster file.
#pragma once

#include <charconv>
#include <string_view>
#include <system_error>

namespace zorv {
// Whether the whole text is a number in decimal that T can hold, which `number` is then.
template <typename T>
bool ParseNumber(std::string_view text, T& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}
}  // namespace zorv
