// Texts to numbers, the way std::stoi() and std::stoll() do it in base 10: leading blanks and a sign are
// allowed, what follows the digits is ignored. Unlike these they do not look at the process's locale, and
// they do not allocate unless they fail.
#pragma once

#include <cstdint>
#include <string_view>

// Throws std::invalid_argument when there are no digits, std::out_of_range when the number does not fit.
int64_t FaultToInt64(std::string_view text);
int32_t FaultToInt32(std::string_view text);

// The text of a result cell. Throws std::invalid_argument for a null cell.
std::string_view FaultCellText(const char* cell);

// Sums and differences that wrap around in two's complement: no input is undefined behaviour.
constexpr int64_t FaultWrapAdd(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}
constexpr int64_t FaultWrapSubtract(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}
