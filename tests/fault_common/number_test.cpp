#include "fault_common/fault_number.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <vector>

namespace {

// The number as text, or which standard error was thrown.
template <typename Convert>
std::string Outcome(Convert convert, const std::string& text) {
    try {
        return std::to_string(convert(text));
    } catch (const std::invalid_argument&) {
        return "invalid";
    } catch (const std::out_of_range&) {
        return "out of range";
    }
}

TEST(Number, ConvertsAsTheStandardConversionsDo) {
    std::istringstream list(
        "0|-0|+7|-7|  12|\t\n\v\f\r 34|56 78|9x|0x10|1.9|007|2147483647|2147483648|-2147483648|-2147483649|"
        "9223372036854775807|9223372036854775808|-9223372036854775808|-9223372036854775809|"
        "99999999999999999999abc|| |+|-|+-5|-+5|--5|++5|+ 5|- 5|abc|.5|\xff|\xa0 5");
    std::vector<std::string> texts = {std::string(1U << 20, '9'), std::string(1U << 20, ' ') + "5",
                                      std::string(1U << 20, '0') + "5", std::string("4\0009", 3)};
    for (std::string text; std::getline(list, text, '|');) {
        texts.push_back(text);
    }
    for (const std::string& text : texts) {
        SCOPED_TRACE(text.substr(0, 40));
        EXPECT_EQ(Outcome(FaultToInt64, text), Outcome([](auto& t) { return std::stoll(t); }, text));
        EXPECT_EQ(Outcome(FaultToInt32, text), Outcome([](auto& t) { return std::stoi(t); }, text));
    }
    EXPECT_EQ(FaultCellText("x"), "x");
    EXPECT_THROW(FaultCellText(nullptr), std::invalid_argument);
}

}  // namespace
