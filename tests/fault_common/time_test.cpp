#include "fault_common/fault_common.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <random>
#include <stdexcept>

#include "support/recording_agent.h"
#include "support/temp_world.h"

namespace {

using Conversion = uint32_t (*)(const std::string&, std::string&);

const std::string UNCHANGED = "status 1, unchanged";

std::string Converted(Conversion convert, const std::string& text) {
    std::string result = "unchanged";
    const uint32_t status = convert(text, result);
    return status == 0 ? result : "status " + std::to_string(status) + ", " + result;
}

std::string Offset() {
    return Converted([](const std::string&, std::string& offset) { return GetTimeZoneOffset(offset); }, "");
}

struct Zone {
    const char *name, *tz, *offset;
    const char *compact, *readable;  // UTC 0
};

class TimeInZone : public testing::TestWithParam<Zone> {};

INSTANTIATE_TEST_SUITE_P(
    Zones, TimeInZone,
    testing::Values(Zone{"EastEight", "CST-8", "28800", "19700101080000", "1970/1/1 8:0:0"},
                    Zone{"Utc", "UTC", "0", "19700101000000", "1970/1/1 0:0:0"},
                    Zone{"EastFiveAndAHalf", "<+0530>-5:30", "18000", "19700101050000", "1970/1/1 5:0:0"},
                    Zone{"WestThree", "<-03>3", "-10800", "19691231210000", "1969/12/31 21:0:0"},
                    Zone{"WestThreeAndAHalf", "<-0330>3:30", "-10800", "19691231210000",
                         "1969/12/31 21:0:0"}),
    [](const auto& zone) { return zone.param.name; });

TEST_P(TimeInZone, ConvertsRoundTripsAndAsksTheSystemOnce) {
    setenv("TZ", GetParam().tz, 1);
    EXPECT_EQ(Offset(), GetParam().offset);
    setenv("PATH", "/nonexistent", 1);
    EXPECT_EQ(Offset(), GetParam().offset);
    EXPECT_EQ(Converted(TransUtcTimeToLocalTime, "0"), GetParam().compact);
    EXPECT_EQ(Converted(TransDateToTime, GetParam().compact), "0");
    EXPECT_EQ(Converted(TransUtcTimeToDate, "0"), GetParam().readable);
    // Years 0 to 9999 fit the compact form; a day of slack on both sides for the zone.
    std::mt19937_64 random(1);
    std::uniform_int_distribution<int64_t> seconds(-62167132800, 253402214400);
    for (int i = 0; i < 1000; ++i) {
        const std::string time = std::to_string(seconds(random));
        EXPECT_EQ(Converted(TransDateToTime, Converted(TransUtcTimeToLocalTime, time)), time);
    }
}

TEST(Time, ConvertsTexts) {
    setenv("TZ", "UTC", 1);
    const std::string invalid = "invalid";  // the standard error
    const struct {
        Conversion convert;
        std::string from, to;
    } cases[] = {
        {TransDateToTime, "20210803150000", "1628002800"},
        {TransDateToTime, "20240229235959", "1709251199"},
        {TransDateToTime, "19691231235959", "-1"},
        {TransDateToTime, "20230230000000", "1677715200"},  // 2 March
        {TransDateToTime, "20231301000000", "1704067200"},
        {TransDateToTime, "20230000000000", "1669766400"},
        {TransDateToTime, "20230101246199", "1672621359"},
        {TransDateToTime, "202301-1000000", "1672358400"},
        {TransDateToTime, "2023+1 1 0 0 0", "1672531200"},
        {TransDateToTime, "2021080315000", UNCHANGED},
        {TransDateToTime, "202108031500000", UNCHANGED},
        {TransDateToTime, "", UNCHANGED},
        {TransDateToTime, "abcdefghijklmn", invalid},
        {TransDateToTime, "202108031500xx", invalid},
        {TransUtcTimeToDate, "1672927380", "2023/1/5 14:3:0"},
        {TransUtcTimeToDate, "", invalid},
        {TransUtcTimeToLocalTime, " -1xyz", "19691231235959"},
        {TransUtcTimeToLocalTime, "x", invalid},
    };
    for (const auto& [convert, from, to] : cases) {
        if (to == invalid) {
            EXPECT_THROW(Converted(convert, from), std::invalid_argument) << from;
        } else {
            EXPECT_EQ(Converted(convert, from), to) << from;
        }
    }
    EXPECT_EQ(Agent::TakeLines(), Lines());
    Agent::Fail("snprintf_s", -1);
    EXPECT_EQ(Converted(TransUtcTimeToLocalTime, "0"), UNCHANGED);
    EXPECT_EQ(Agent::TakeLines(), Lines{"3 fault_common.cpp TransUtcTimeToLocalTime: snprintf_s failed."});
}

TEST(Time, ABrokenZoneCommandIsAFailureAndNotRemembered) {
    const TempWorld world;
    setenv("PATH", (world.Path("/bin") + ":/usr/bin:/bin").c_str(), 1);
    const auto plantDate = [&](const std::string& body) {
        world.Write("/bin/date", "#!/bin/sh\n" + body + "\n");
        chmod(world.Path("/bin/date").c_str(), S_IRWXU);
    };
    const std::pair<const char*, const char*> cases[] = {{"echo +08", "timezone is incorrect: +08\n."},
                                                         {"exit 1", "timezone is incorrect: \n."},
                                                         {"echo 08000", "charSign is incorrect: 0."}};
    for (const auto& [body, text] : cases) {
        plantDate(body);
        EXPECT_EQ(Offset(), UNCHANGED);
        EXPECT_EQ(Agent::TakeLines(), Lines{std::string("3 fault_common.cpp GetTimeZoneOffset: ") + text});
        EXPECT_EQ(Converted(TransDateToTime, "20210803150000"), UNCHANGED);
        EXPECT_EQ(Converted(TransUtcTimeToLocalTime, "0"), UNCHANGED);
        EXPECT_EQ(Converted(TransUtcTimeToDate, "0"), UNCHANGED);
        EXPECT_EQ(Agent::TakeLines().size(), 3U);
    }
    plantDate("echo +ab00");
    EXPECT_THROW(Offset(), std::invalid_argument);
    plantDate("echo -1145");
    EXPECT_EQ(Offset(), "-39600");
}

TEST(Time, AZoneCommandWithoutAnExitStatusIsAFailure) {
    signal(SIGCHLD, SIG_IGN);  // the status is lost then
    EXPECT_EQ(Offset(), UNCHANGED);
    EXPECT_EQ(Agent::TakeLines(),
              Lines{"3 fault_common.cpp GetTimeZoneOffset: execute cmd faild: echo `date +%z`."});
}

}  // namespace
