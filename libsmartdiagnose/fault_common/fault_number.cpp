#include "fault_common/fault_number.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string>

namespace {

[[noreturn]] void ThrowNoNumber(std::string_view text, bool tooLarge) {
    // A cell may hold a megabyte, or what would look like a log line of its own; its beginning is enough to
    // recognise it.
    std::string shown(text.substr(0, 40));
    std::replace_if(
        shown.begin(), shown.end(), [](unsigned char letter) { return letter < ' ' || letter == 0x7f; }, '?');
    if (tooLarge) {
        throw std::out_of_range("number out of range: '" + shown + "'");
    }
    throw std::invalid_argument("not a number: '" + shown + "'");
}

// As the "C" locale has it.
bool IsBlank(char letter) {
    return letter == ' ' || (letter >= '\t' && letter <= '\r');
}

template <typename Integer>
Integer ToInteger(std::string_view text) {
    std::string_view digits = text;
    while (!digits.empty() && IsBlank(digits[0])) {
        digits.remove_prefix(1);
    }
    // from_chars() knows the minus, but no plus.
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') {
        digits.remove_prefix(1);
    }
    Integer value = 0;
    const std::from_chars_result result =
        std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec != std::errc()) {
        ThrowNoNumber(text, result.ec == std::errc::result_out_of_range);
    }
    return value;
}

}  // namespace

int64_t FaultToInt64(std::string_view text) {
    return ToInteger<int64_t>(text);
}

int32_t FaultToInt32(std::string_view text) {
    return ToInteger<int32_t>(text);
}

std::string_view FaultCellText(const char* cell) {
    if (cell == nullptr) {
        throw std::invalid_argument("null cell");
    }
    return cell;
}
