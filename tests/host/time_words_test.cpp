#include "host/services/time_words.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace {
using Texts = std::vector<std::string>;

constexpr int64_t NOW = 1672900205;  // 2023-01-05 06:30:05 UTC

std::string Joined(const Texts& words) {
    std::string text;
    for (const std::string& word : words) {
        text += "[" + word + "]";
    }
    return text;
}

// The words after the turning, and what is echoed; or the reason, with the words unchanged.
std::string Turned(Texts words, size_t first = 0, int64_t zoneOffset = 28800) {
    const Texts before = words;
    try {
        const std::string echo = TurnRange(words, first, {NOW, zoneOffset});
        return Joined(words) + echo;
    } catch (const TimeError& error) {
        EXPECT_EQ(words, before);
        return error.what();
    }
}

TEST(TimeWordsTest, TurnsWhatIsNoCompactPair) {
    const std::string half =
        "[20230105140300][20230105143005]2023-01-05 14:03:00 to 2023-01-05 14:30:05, zone +08:00";
    const std::pair<Texts, std::string> cases[] = {
        {{"20230230000000", "x"}, "[20230230000000][x]"},
        {{"60"}, "[60]"},
        {{"-1", "", "x:y"}, "[-1][][x:y]"},
        {{}, ""},
        {{"2023/1/5 14:3:0", "now"}, half},
        {{"2023-01-05", "14:03", "now"}, half},
        {{"20230105140300", "-0s"}, half},
        {{"today  14:3", "20230105143005"}, half},
        {{"today", "14:03:00", "2023/01/05", "14:30:5", "10"},
         "[20230105140300][20230105143005][10]" + half.substr(32)},
        {{"yesterday", "today"},
         "[20230104000000][20230105000000]2023-01-04 00:00:00 to 2023-01-05 00:00:00, zone +08:00"},
        {{"-2d", "-30m"},
         "[20230103143005][20230105140005]2023-01-03 14:30:05 to 2023-01-05 14:00:05, zone +08:00"},
        {{"-90s", "-0h"},
         "[20230105142835][20230105143005]2023-01-05 14:28:35 to 2023-01-05 14:30:05, zone +08:00"},
    };
    for (const auto& [words, expected] : cases) {
        EXPECT_EQ(Turned(words), expected) << Joined(words);
    }
    EXPECT_EQ(Turned({"now", "today", "now"}, 1, -7 * 3600),
              "[now][20230104000000][20230104233005]2023-01-04 00:00:00 to 2023-01-04 23:30:05, zone -07:00");
    EXPECT_EQ(TurnTime("2024/2/29", {NOW, 0}), "20240229000000");
}

TEST(TimeWordsTest, RejectsWhatIsNoTime) {
    const std::string missing = ": the calendar or the clock does not have it";
    const std::string forms =
        "; a time is now, -30m (or s, h, d), today, yesterday, 2023/1/5 14:3:0 or 20230105140300";
    const std::pair<Texts, std::string> cases[] = {
        {{"2023/2/30", "10:00", "now"}, "'2023/2/30 10:00' is no time" + missing + forms},
        {{"2023/2/29", "now"}, "'2023/2/29' is no time" + missing + forms},
        {{"20230230000000", "now"}, "'20230230000000' is no time" + missing + forms},
        {{"2023/1/5 24:00", "now"}, "'2023/1/5 24:00' is no time" + missing + forms},
        {{"now", "today", "10:60"}, "'today 10:60' is no time" + missing + forms},
        {{"2023/1-5", "now"}, "'2023/1-5' is no time" + forms},
        {{"2023/1/5 10", "now"}, "'2023/1/5 10' is no time" + forms},
        {{"2023/1/5x", "now"}, "'2023/1/5x' is no time" + forms},
        {{"-30", "now"}, "'-30' is no time" + forms},
        {{"-3w", "now"}, "'-3w' is no time" + forms},
        {{"now", "14:30"}, "'now 14:30' is no time" + forms},
        {{"now", ""}, "'' is no time" + forms},
        {{"now", "\x1b"}, "'\\x1b' is no time" + forms},
        {{"-9999999999s", "now"}, "'-9999999999s' is no time" + forms},
        {{"-99999d", "now"}, "'-99999d' is no time: it is not between 1970 and 9999" + forms},
        {{"-30m"}, "'-30m' begins a range without an end; such as: -30m now"},
    };
    for (const auto& [words, expected] : cases) {
        EXPECT_EQ(Turned(words), expected) << Joined(words);
    }
}

TEST(TimeWordsTest, TakesTheZoneOfTheMomentInWholeHours) {
    const struct {
        const char* zone;
        int64_t time;
        std::string now;
    } cases[] = {
        {"CST-8", NOW, "20230105143005"},
        {"XXX-5:30", NOW, "20230105113005"},
        {"XXX+3:30", NOW, "20230105033005"},
        {"CET-1CEST,M3.5.0,M10.5.0/3", NOW, "20230105073005"},
        {"CET-1CEST,M3.5.0,M10.5.0/3", 1679792399, "20230326015959"},
        {"CET-1CEST,M3.5.0,M10.5.0/3", 1679792400, "20230326030000"},
    };
    for (const auto& row : cases) {
        setenv("TZ", row.zone, 1);
        tzset();
        EXPECT_EQ(TurnTime("now", ClockAt(row.time)), row.now) << row.zone;
    }
}
}  // namespace
