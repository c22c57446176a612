#include <gtest/gtest.h>

#include "fault_debug/fault_debug_command.h"
#include "support/recording_agent.h"

namespace {

const std::string MEGABYTE(1U << 20, '9');

TEST(DigitString, LooksAtNoMoreThanTheMaximum) {
    const std::tuple<const char*, int32_t, bool> cases[] = {
        {"", 5, true},    {"123", 3, true},    {"123", 9, true}, {"12a", 3, false},
        {"12a", 2, true}, {"a", 0, true},      {"a", -1, true},  {"-1", 2, false},
        {" 1", 2, false}, {"1\xff", 2, false}, {"/", 1, false},  {":", 1, false}};
    for (const auto& [text, maximum, expected] : cases) {
        EXPECT_EQ(CheckDigitString(text, maximum), expected) << text << " " << maximum;
    }
}

// The clock stands at 2021-08-04 00:00:00 local time.
TEST(TimeArgs, AreTwoTimesOrMinutesUpToNow) {
    const std::string now = "20210804000000";
    const struct {
        Lines own;
        std::string start, end;  // empty when refused
    } cases[] = {
        {{}, "", ""},
        {{"a", "b"}, "a", "b"},
        {{"1", "2", "3"}, "", ""},
        {{"30"}, "20210803233000", now},
        {{"0"}, now, now},
        {{"00000000000030abc"}, "20210803233000", now},  // 14 characters are looked at
        {{"30abc"}, "", ""},
        {{"-30"}, "", ""},
        {{""}, "", ""},
        {{"2147483648"}, "", ""},
        {{"99999999999999"}, "", ""},
        {{MEGABYTE}, "", ""},
        {{"\xff\x01"}, "", ""},
        {{"2147483647"}, "20210804000100", now},  // -60 seconds: 32 bits wrap
        {{"35791394"}, "19530716204600", now},    // 2147483640 seconds
        {{"35791395"}, "20890822031316", now},    // -2147483596 seconds
    };
    for (const auto& test : cases) {
        std::vector<char*> argv = {nullptr, nullptr, nullptr};
        Lines own = test.own;
        for (std::string& word : own) {
            argv.push_back(word.data());
        }
        std::string start;
        std::string end;
        const uint32_t result = ParseTimeArgs(static_cast<int32_t>(argv.size()), argv.data(), 3, start, end);
        EXPECT_EQ(std::tuple(result, start, end),
                  std::tuple(test.end.empty() ? 1U : 0U, test.start, test.end))
            << argv.size() << (own.empty() ? "" : own[0].substr(0, 20));
    }
    std::string start;
    std::string end;
    char minutes[] = "1";
    char* argv[] = {minutes, nullptr};
    EXPECT_EQ(ParseTimeArgs(5, nullptr, 3, start, end), 1U);
    EXPECT_EQ(ParseTimeArgs(2, argv, 1, start, end), 1U);
    EXPECT_EQ(ParseTimeArgs(2, argv, 0, start, end), 1U);
    Agent::SetLocalTime(99999999999999);  // in the year 3170843: the first 15 characters remain
    EXPECT_EQ(ParseTimeArgs(1, argv, 0, start, end), 0U);
    EXPECT_EQ(end, "317084311070946");
}

TEST(TimeRange, IsTwoAscendingDatesAtMostTwoDaysApart) {
    const std::string from = "20210803150000";
    const std::string date = "\t\t[ERROR]: date input err\n";
    const std::string range = "\t\t[ERROR]: Time range beyond two days\n";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {from, "20210805150000", ""},
        {from, "20210803150001", ""},
        {from, "20210805150001", range},
        {from, "99991231235959", range},
        {"20211399999998", "20211399999999", ""},  // fields carry over
        {from, from, date},
        {"20210803150001", from, date},
        {"2021080315000", from, date},
        {from, "202108031500010", date},
        {"", from, date},
        {from, "", date},
        {"", "", date},
        {from, "2021080315000x", date},
        {" 0210803150000", from, date},
        {"-0210803150000", from, date},
        {"0", MEGABYTE, date},
        {std::string(1U << 20, '\xff'), from, date}};
    for (const auto& [start, end, printed] : cases) {
        EXPECT_EQ(CheckTimeRange(start, end), printed.empty())
            << start.substr(0, 20) << " " << end.substr(0, 20);
        EXPECT_EQ(Agent::TakeConsole(), printed);
    }
}

}  // namespace
