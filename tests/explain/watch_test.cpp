// What a watch tells, look after look, of series that are written as one letter per interval.
#include <gtest/gtest.h>

#include "explain/watch/changes.h"
#include "explain/watch/exposition.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr int64_t STEP = 30;
constexpr const char* POINT = "TGT_LUMO_HOST_READ";

// '.' is usual (100 us), 'm' mild, 'H' high, '_' without a row; the look comes with the interval. At '!' the
// database cannot be read.
Sight SightOf(const std::string& letters) {
    Sight sight;
    Samples samples;
    for (size_t i = 0; i < letters.size(); ++i) {
        const char letter = letters[i];
        const int64_t time = static_cast<int64_t>(i) * STEP;
        if (letter != '_' && letter != '!') {
            const double jitter = 3.0 * static_cast<double>(i % 3) - 3.0;
            samples.push_back({time, (letter == 'H' ? 300 : letter == 'm' ? 115 : 100) + jitter, 10});
        }
        sight.report.madeAt = time;
    }
    sight.report.question.range = {sight.report.madeAt - 3600, sight.report.madeAt};
    if (letters.back() == '!') {
        sight.failure = Reason{ReasonKind::UNREADABLE_DATABASE};
        sight.failed = "locked";
        return sight;
    }
    sight.report.looks.push_back(LookAt(POINT, samples, sight.report.question.range, std::nullopt));
    sight.report.coverage = CoverageOf({{POINT, {samples, {}, false, false}}}, sight.report.question.range);
    return sight;
}

// The changes that a watch tells which begins with the usual ones and looks at each further interval, each
// behind the number of the interval with which it was told.
std::string ToldOf(const std::string& letters) {
    Changes changes;
    std::string told;
    const std::string usual(60, '.');
    for (size_t i = 0; i <= letters.size(); ++i) {
        for (const Change& change : changes.After(SightOf(usual + letters.substr(0, i)))) {
            told += (told.empty() ? "" : ", ") + std::to_string(i) + " " + WordOf(change.kind);
            told += change.seconds > 0 ? " " + std::to_string(change.seconds / STEP) : "";
        }
    }
    return told;
}

TEST(Watch, TellsEachChangeOnceAndWhatIsStableAlone) {
    const std::pair<const char*, const char*> CASES[] = {
        {"...........", ""},
        {"..HHHHH....", "4 slow, 9 usual 5"},
        {"HHHHH.HH.HHHH....", "2 slow, 15 usual 13"},           // an interval is spared
        {"HHH..HHH....", "2 slow, 5 usual 3, 7 slow, 10 usual 3"},
        {"..H....", "5 was slow 1"},                             // a single sample, in one line
        {"..H.H...", "5 slow, 7 usual 3"},
        {"mmmmmmmmmm....", "4 slow, 12 usual 10"},
        {"HHHH___________....", "2 slow, 8 no rows, 16 rows 12, 17 usual 4"},
        {"..!!!!..", "3 unreadable, 7 readable 4"},
        {"HHH!!!!HH..", "2 slow, 4 unreadable, 8 readable 4, 11 usual 9"},
    };
    for (const auto& [letters, expected] : CASES) {
        EXPECT_EQ(ToldOf(letters), expected) << letters;
    }
}

}  // namespace
}  // namespace explain
