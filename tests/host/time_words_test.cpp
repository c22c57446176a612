#include "text/time_words.h"
#include "text/local_time.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace {
using Texts = std::vector<std::string>;

constexpr int64_t NOW = 1672900205;  // 2023-01-05 06:30:05 UTC

// The words from the second on after the turning, and what is echoed; or the reason, with the words
// unchanged.
std::string Turned(Texts words) {
    words.insert(words.begin(), "now");
    const Texts before = words;
    try {
        const std::string echo = TurnRange(words, 1, {NOW, 28800});
        std::string text;
        for (size_t i = 1; i < words.size(); ++i) {
            text += "[" + words[i] + "]";
        }
        return text + echo;
    } catch (const TimeError& error) {
        EXPECT_EQ(words, before);
        return error.what();
    }
}

TEST(TimeWordsTest, TurnsAPairThatIsNotCompact) {
    const std::string halfHour = "2023-01-05 14:03:00 to 2023-01-05 14:30:05, zone +08:00";
    const std::string half = "[20230105140300][20230105143005]" + halfHour;
    const std::string lost = ": the calendar or the clock does not have it";
    const std::string forms =
        "; a time is now, -30m (or s, h, d), today, yesterday, 2023/1/5 14:3:0, 2023-01-05T14:03:00+08:00 or "
        "20230105140300";
    const std::pair<Texts, std::string> cases[] = {
        {{}, ""},
        {{"20230230000000", "x"}, "[20230230000000][x]"},
        {{"-1", "", "x:y"}, "[-1][][x:y]"},
        {{"2023/1/5 14:3:0", "now"}, half},
        {{"2023-01-05", "14:03", "now"}, half},
        {{"20230105140300", "-0s"}, half},
        {{"today  14:3", "20230105143005"}, half},
        {{"today", "14:03:00", "2023/01/05", "14:30:5", "10"},
         "[20230105140300][20230105143005][10]" + halfHour},
        {{"2023-01-05T14:03", "2023-01-05T06:30:05Z"}, half},
        {{"2023/1/5 07:03:00+0100", "2023-01-04", "23:30:05-7", "10"},
         "[20230105140300][20230105143005][10]" + halfHour},
        {{"1625s", "10"}, "[20230105140300][20230105143005][10]" + halfHour},
        {{"yesterday", "-90m"},
         "[20230104000000][20230105130005]2023-01-04 00:00:00 to 2023-01-05 13:00:05, zone +08:00"},
        {{"-2d", "-1h"},
         "[20230103143005][20230105133005]2023-01-03 14:30:05 to 2023-01-05 13:30:05, zone +08:00"},
        {{"2023/2/30", "10:00", "now"}, "'2023/2/30 10:00' is no time" + lost + forms},
        {{"now", "2023/2/29"}, "'2023/2/29' is no time" + lost + forms},
        {{"20230230000000", "now"}, "'20230230000000' is no time" + lost + forms},
        {{"today 24:00", "now"}, "'today 24:00' is no time" + lost + forms},
        {{"2023/1-5", "now"}, "'2023/1-5' is no time" + forms},
        {{"2023/1/5 10", "now"}, "'2023/1/5 10' is no time" + forms},
        {{"-30", "now"}, "'-30' is no time" + forms},
        {{"-3w", "now"}, "'-3w' is no time" + forms},
        {{"2023-01-05T10:00+15:00", "now"}, "'2023-01-05 10:00+15:00' is no time" + forms},
        {{"99999d"}, "'-99999d' is no time: it is not between 1970 and 9999" + forms},
        {{"now", "14:30"}, "'now 14:30' is no time" + forms},
        {{"now", ""}, "'' is no time" + forms},
        {{"now", "\x1b"}, "'\\x1b' is no time" + forms},
        {{"-9999999999s", "now"}, "'-9999999999s' is no time" + forms},
        {{"-99999d", "now"}, "'-99999d' is no time: it is not between 1970 and 9999" + forms},
        {{"-30m"}, "'-30m' begins a range without an end; such as: -30m now"},
    };
    for (const auto& [words, expected] : cases) {
        EXPECT_EQ(Turned(words), expected);
    }
}

TEST(TimeWordsTest, TakesTheZoneOfTheMomentInWholeHours) {
    const char* const europe = "CET-1CEST,M3.5.0,M10.5.0/3";
    const struct {
        const char* zone;
        int64_t time;
        std::string now, today;
    } cases[] = {
        {"XXX-5:30", NOW, "20230105113005", "20230105000000"},
        {"XXX+7:30", NOW, "20230104233005", "20230104000000"},
        {europe, 1679792399, "20230326015959", "20230326000000"},
        {europe, 1679792400, "20230326030000", "20230326000000"},
    };
    for (const auto& row : cases) {
        setenv("TZ", row.zone, 1);
        tzset();
        const LocalClock clock = ClockAt(row.time);
        EXPECT_EQ(CompactTime(TimeOf("now", clock), clock.zoneOffset), row.now);
        EXPECT_EQ(CompactTime(TimeOf("today", clock), clock.zoneOffset), row.today);
    }
}
}  // namespace
