// What a watch tells, look after look, of series that are written as one letter per interval.
#include <gtest/gtest.h>

#include "explain/watch/changes.h"
#include "explain/watch/exposition.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr int64_t STEP = 30;
constexpr const char* POINT = "TGT_LUMO_HOST_READ";

// What the analysis of the last event says: the cause is called as the last high letter.
Analysis AnalysisOf(const Look& look, const std::string& letters) {
    Analysis analysis;
    analysis.point = POINT;
    analysis.verdict = Verdict::POINT;
    analysis.certainty = Certainty::SURE;
    analysis.event = look.events.back();
    analysis.candidates.push_back({{letters[letters.find_last_of("AB")]}, "", "", 0.9, 0});
    analysis.findings.resize(1);
    analysis.findings[0].evidence.eventDelay = 300.0;
    analysis.findings[0].evidence.baselineDelay = 100.0;
    return analysis;
}

// The errors at the letters 'E', as one event.
ErrorAnalysis ErrorsOf(const std::string& letters) {
    ErrorAnalysis errors;
    errors.points.resize(1);
    errors.event.start = static_cast<int64_t>(letters.find('E')) * STEP;
    errors.event.end = static_cast<int64_t>(letters.rfind('E')) * STEP;
    errors.event.isOngoing = letters.size() - letters.rfind('E') <= 2;
    return errors;
}

// '.' is usual (100 us), 'm' mild, 'H' high, 'A' and 'B' too, with that cause; 'E' is usual with errors, '_'
// without a row; the look comes with the interval. At '!' the database cannot be read.
Sight SightOf(const std::string& letters) {
    Sight sight;
    Samples samples;
    for (size_t i = 0; i < letters.size(); ++i) {
        const char letter = letters[i];
        const int64_t time = static_cast<int64_t>(i) * STEP;
        if (letter != '_' && letter != '!') {
            const double jitter = 3.0 * static_cast<double>(i % 3) - 3.0;
            samples.push_back({time,
                               (letter == 'H' || letter == 'A' || letter == 'B' ? 300
                                : letter == 'm'                                 ? 115
                                                                                : 100) +
                                   jitter,
                               10});
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
    if (letters.find('A') != std::string::npos && !sight.report.looks[0].events.empty()) {
        sight.report.analyses.push_back(AnalysisOf(sight.report.looks[0], letters));
    }
    if (letters.find('E') != std::string::npos) {
        sight.report.errors.push_back(ErrorsOf(letters));
    }
    sight.report.coverage = CoverageOf({{POINT, {samples, {}, {}, 0, false}}}, sight.report.question.range);
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
    const std::pair<std::string, const char*> CASES[] = {
        {"...........", ""},
        {"..HHHHH....", "4 slow, 9 usual 5"},
        {"HHHHH.HH.HHHH....", "2 slow, 15 usual 13"},  // an interval is spared
        {"HHH..HHH....", "2 slow, 5 usual 3, 7 slow, 10 usual 3"},
        {"..H....", "5 was slow 1"},  // a single sample, in one line
        {"..H.H...", "5 slow, 7 usual 3"},
        {"mmmmmmmmmm....", "3 slow, 12 usual 10"},
        {"mmHHHmm....", "4 slow, 7 usual 4"},  // what it fades with is of no event that high
        {"HHHH___________....", "2 slow, 8 no rows, 16 rows 12, 17 usual 4"},
        {std::string(80, 'H') + "....", "2 slow, 82 usual 80"},  // it becomes what the finder takes for usual
        {"AAABBBB....", "2 slow, 5 cause, 9 usual 7"},
        {"AABABA....", "2 slow, 8 usual 6"},
        {"AABm....", "2 slow, 5 usual 3"},  // what fades says nothing of causes
        {"..EE.E....", "3 errors, 8 errors over 4"},
        {"..!!!!..", "3 unreadable, 7 readable 4"},
        {"HHH!!!!HH..", "2 slow, 4 unreadable, 8 readable 4, 11 usual 9"},
    };
    for (const auto& [letters, expected] : CASES) {
        EXPECT_EQ(ToldOf(letters), expected) << letters;
    }
}

}  // namespace
}  // namespace explain
