#include <gtest/gtest.h>
#include <signal.h>

#include <array>
#include <future>
#include <random>
#include <sstream>

#include "fault_common/fault_boundary.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_rate_limiter.h"
#include "support/recording_agent.h"
#include "support/temp_world.h"

namespace {

const std::string REFUSED = "failed, unchanged";

// The number as text, or which standard error was thrown.
template <typename Convert>
std::string Outcome(Convert convert, const std::string& text) {
    try {
        return std::to_string(convert(text));
    } catch (const std::logic_error& error) {
        return typeid(error).name();
    }
}

std::string Converted(uint32_t (*convert)(const std::string&, std::string&), const std::string& text) {
    std::string result = "unchanged";
    const uint32_t status = convert(text, result);
    return (status == 0 ? "" : "failed, ") + result;
}

TEST(Number, ConvertsAsTheStandardConversionsDo) {
    std::istringstream list(
        "0|-0|+7|-7|  12|\t\n\v\f\r 34|56 78|9x|0x10|1.9|007|2147483647|2147483648|-2147483648|-2147483649|"
        "9223372036854775807|9223372036854775808|-9223372036854775808|-9223372036854775809|"
        "99999999999999999999abc|| |+|-|+-5|-+5|--5|++5|+ 5|- 5|abc|.5|\xff|\xa0 5");
    for (std::string text; std::getline(list, text, '|');) {
        EXPECT_EQ(Outcome(FaultToInt64, text), Outcome([](auto& t) { return std::stoll(t); }, text)) << text;
        EXPECT_EQ(Outcome(FaultToInt32, text), Outcome([](auto& t) { return std::stoi(t); }, text)) << text;
    }
    EXPECT_THROW(FaultCellText(nullptr), std::invalid_argument);
}

// A zone, and UTC 0 there in both forms.
class TimeInZone : public testing::TestWithParam<std::array<const char*, 3>> {};
INSTANTIATE_TEST_SUITE_P(Zones, TimeInZone,
                         testing::Values(std::array{"CST-8", "19700101080000", "1970/1/1 8:0:0"},
                                         std::array{"UTC", "19700101000000", "1970/1/1 0:0:0"},
                                         std::array{"<+0530>-5:30", "19700101050000", "1970/1/1 5:0:0"},
                                         std::array{"<-0330>3:30", "19691231210000", "1969/12/31 21:0:0"}));

TEST_P(TimeInZone, ConvertsRoundTripsAndAsksTheSystemOnce) {
    const auto [zone, compact, readable] = GetParam();
    setenv("TZ", zone, 1);
    const auto convert = [] { return Converted(TransUtcTimeToLocalTime, "0"); };
    std::future<std::string> other = std::async(std::launch::async, convert);
    EXPECT_EQ(convert(), compact);
    EXPECT_EQ(other.get(), compact);
    setenv("PATH", "/nonexistent", 1);
    EXPECT_EQ(Converted(TransUtcTimeToDate, "0"), readable);
    // Years 0 to 9999 fit the compact form; a day of slack on both sides for the zone.
    std::mt19937_64 random(1);
    std::uniform_int_distribution<int64_t> seconds(-62167132800, 253402214400);
    for (int i = 0; i < 1000; ++i) {
        const std::string time = std::to_string(seconds(random));
        EXPECT_EQ(Converted(TransDateToTime, Converted(TransUtcTimeToLocalTime, time)), time);
    }
}

TEST(Time, ConvertsTexts) {
    const std::pair<const char*, std::string> dates[] = {
        {"20210803150000", "1627974000"}, {"20240229235959", "1709222399"}, {"19691231235959", "-28801"},
        {"20230230000000", "1677686400"}, {"20230101246199", "1672592559"}, {"202301-1000000", "1672329600"},
        {"2021080315000", REFUSED},       {"202108031500000", REFUSED}};
    for (const auto& [date, time] : dates) {
        EXPECT_EQ(Converted(TransDateToTime, date), time) << date;
    }
    EXPECT_THROW(Converted(TransDateToTime, "202108031500xx"), std::invalid_argument);
    EXPECT_EQ(Converted(TransUtcTimeToDate, " 1672898580xyz"), "2023/1/5 14:3:0");
}

TEST(Time, ABrokenZoneCommandIsAFailureAndNotRemembered) {
    const TempWorld world;
    setenv("PATH", (world.Path("/bin") + ":/usr/bin:/bin").c_str(), 1);
    const auto plantDate = [&](const std::string& body) {
        world.Write("/bin/date", "#!/bin/sh\n" + body + "\n");
        std::filesystem::permissions(world.Path("/bin/date"), std::filesystem::perms::owner_all);
    };
    const std::pair<std::string, std::string> cases[] = {{"echo +08", "timezone is incorrect: +08\n."},
                                                         {"exit 1", "timezone is incorrect: \n."},
                                                         {"echo 08000", "charSign is incorrect: 0."},
                                                         {"", "execute cmd faild: echo `date +%z`."}};
    for (const auto& [body, text] : cases) {
        plantDate(body);
        signal(SIGCHLD, body.empty() ? SIG_IGN : SIG_DFL);  // ignored, the exit status is lost
        for (const auto convert : {TransDateToTime, TransUtcTimeToLocalTime, TransUtcTimeToDate}) {
            EXPECT_EQ(Converted(convert, "20210803150000"), REFUSED);
            EXPECT_LOGGED("3 fault_common.cpp GetTimeZoneOffset: " + text);
        }
    }
    signal(SIGCHLD, SIG_DFL);
    plantDate("echo +ab00");
    EXPECT_THROW(Converted(TransUtcTimeToDate, "0"), std::invalid_argument);
    plantDate("echo -1145");
    EXPECT_EQ(Converted(TransUtcTimeToDate, "0"), "1969/12/31 13:0:0");
}

constexpr FaultLogSite SITE{"unit.cpp", 77, "Operation"};

TEST(Boundary, EndsWhateverIsThrown) {
    EXPECT_FALSE(FaultRunGuarded(SITE, [] { throw 7; }));
    EXPECT_LOGGED("3 unit.cpp Operation: Unexpected error.");
}

void LogTimes(FaultUsualLimiter& limiter, int times) {
    for (int i = 0; i < times; ++i) {
        FAULT_LOG_LIMITED(limiter, SITE, FAULT_WARNING, "line");
    }
}

TEST(RateLimiter, FollowsWindowsAndReportsWhatItSuppressed) {
    constexpr uint64_t W = 15000;
    // The time; lines tried; lines passed; the count in the report, 0 for no report.
    // A window ends when exactly W has elapsed, the first one counted from time 0. The report comes with the
    // first window that begins ten windows after time 0, or after the last report; not without a reason.
    const std::tuple<uint64_t, int, size_t, int> steps[] = {
        {10, 2, 2, 0},     {W - 1, 3, 1, 0},      {W, 4, 3, 0},      {2 * W - 1, 1, 0, 0},
        {9 * W, 4, 3, 0},  {10 * W - 1, 1, 0, 0}, {10 * W, 1, 1, 6}, {20 * W - 1, 4, 3, 0},
        {20 * W, 1, 0, 0}, {21 * W - 1, 1, 1, 2}, {40 * W, 1, 1, 0}};
    FaultUsualLimiter limiter;
    for (const auto& [now, times, passed, reported] : steps) {
        Agent()->jiffies = now;
        LogTimes(limiter, times);
        Lines expected(passed, "4 unit.cpp Operation: line");
        if (reported > 0) {
            const std::string text = std::to_string(reported) + " messages suppressed.Operation,line=77.";
            expected.insert(expected.begin(), "3 unit.cpp Operation: print: " + text);
        }
        EXPECT_EQ(Agent::TakeLines(), expected) << now;
    }
}

// A thread may read the clock just before another one opens a window: the older reading opens none of its
// own.
TEST(RateLimiter, ALateThreadOpensNoSecondWindow) {
    FaultUsualLimiter limiter;
    std::future<void> other;
    Agent()->onClock = [&] {
        Agent()->onClock = [] {};
        Agent()->jiffies = 1000001;
        other = std::async(std::launch::async, [&] { LogTimes(limiter, 5); });
        // The deadline is for a limiter that reads the clock under its lock: nobody can overtake it then.
        other.wait_for(std::chrono::milliseconds(500));
    };
    LogTimes(limiter, 1);
    other.get();
    EXPECT_EQ(Agent::TakeLines().size(), 3U);
}

}  // namespace
