// Events and the evidence of a point, on series that are written as one letter per interval.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>

#include "explain/analysis/analysis.h"
#include "explain/analysis/evidence.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr int64_t STEP = 30;

// Delay and requests of an interval.
const std::map<char, std::pair<double, double>> LETTERS = {
    {'.', {100, 10}},  {'0', {0, 10}},    {'5', {110, 10}},  {'6', {111, 10}},   {'h', {990, 10}},
    {'H', {1000, 10}}, {'l', {10, 10}},   {'s', {100, 100}}, {'S', {1000, 100}}, {'z', {1000, 0}},
    {'n', {10, -10}},  {'i', {0, 0}},     {'4', {104, 10}},  {'v', {110, 60}},   {'V', {125, 60}},
    {'u', {100, 20}},  {'U', {1000, 40}}, {'R', {700, 100}}};

struct Series {
    Samples samples;
    Window event;  // from '|' to the end
};

// '=' are twenty usual intervals, '_' is one without a row; what follows '~' is two seconds later, and
// what follows '<' an interval earlier.
Series Written(const std::string& letters) {
    Series series;
    for (const char letter : letters) {
        const auto found = LETTERS.find(letter == '=' ? '.' : letter);
        for (int count = letter == '=' ? 20 : 1; count > 0 && found != LETTERS.end(); --count) {
            series.samples.push_back({series.event.end, found->second.first, found->second.second});
            series.event.end += STEP;
        }
        series.event.start = letter == '|' ? series.event.end : series.event.start;
        series.event.end += letter == '~' ? 2 : letter == '_' ? STEP : letter == '<' ? -STEP : 0;
    }
    return series;
}

std::string Text(const Event& event) {
    return " " + std::to_string(event.start / STEP) + "-" + std::to_string(event.end / STEP) + " x" +
           std::to_string(event.count) + " @" + std::to_string(event.peakTime / STEP) +
           (event.isOngoing ? "+" : "");
}

// What of a series is looked at: the events of all, or, with a time, the one then.
TEST(Explain, LooksAtARangeWithWhatWasBefore) {
    const struct {
        std::string letters;
        int64_t since = 0, at = -1;  // intervals
        std::string events;
        Silence silence = Silence::NONE;
        size_t baseline = 0;  // samples of the last one's
    } cases[] = {
        {"HHHHH", 0, -1, "", Silence::NONE},
        {"H=", 0, -1, " 0-0 x1 @0", Silence::NONE, 20},
        {"=hHh..", 0, -1, " 20-22 x3 @21", Silence::FILLED, 20},
        {"==.h.H.h", 0, -1, " 41-45 x3 @43+", Silence::NONE, 41},
        {"==h..H...", 0, -1, " 40-40 x1 @40 43-43 x1 @43", Silence::NONE, 42},
        {"==H==66", 0, -1, " 40-40 x1 @40 81-82 x2 @81+", Silence::OUTSHONE, 80},
        {"=H=hhhhhhhhhhhh", 15, -1, " 20-20 x1 @20 41-52 x12 @41+", Silence::FILLED, 40},
        {"=H=hhhhhhhhhhhh", 30, -1, " 41-52 x12 @41+", Silence::FILLED, 40},
        {"=hh==", 21, -1, " 20-21 x2 @20", Silence::NONE, 20},
        {"=hh==", 22, -1, "", Silence::NONE},
        {"=HHHHHHHHH", 25, -1, " 20-28 x9 @20+", Silence::FEW, 20},
        {"=hhh=", 0, 21, " 20-22 x3 @20", Silence::NONE, 20},
        {"=hhh=", 0, 24, " 20-22 x3 @20", Silence::NONE, 20},
        {"=i=iihih=", 0, -1, " 43-45 x2 @43", Silence::NONE, 40},
        {"i.iiii.ii.i.iiiii.ii.i.i.ii.i.ii.i.i.ii", 0, -1, "", Silence::NONE},
        {"====.h...h...h...h...h...h", 0, -1,
         " 81-81 x1 @81 85-85 x1 @85 89-89 x1 @89 93-93 x1 @93 97-97 x1 @97 101-101 x1 @101+", Silence::NONE,
         96},
        {"==5===", 0, 42, " 40-40 x1 @40", Silence::NONE},
        {"==5===", 0, 43, " 41-41 x0 @41", Silence::NONE},
    };
    for (const auto& row : cases) {
        const Samples rows = Written(row.letters).samples, samples = WithoutIdle(rows);
        const int64_t end = static_cast<int64_t>(rows.size()) * STEP;
        Question question{{row.since * STEP, end}, {}, {}, {}};
        const Look look = LookAt("P", rows, question.range, {});
        std::string events;
        for (const Event& event : look.events) {
            events += Text(event);
        }
        if (row.at >= 0) {
            question.at = row.at * STEP;
            events = Text(EventsToExplain(question, look, samples).front());
        }
        EXPECT_EQ(events, row.events) << row.letters;
        if (!look.events.empty()) {
            const Event& last = look.events.back();
            EXPECT_EQ(look.SilenceOn(last), row.silence) << row.letters;
            EXPECT_EQ(SamplesIn(samples, BaselineOf(samples, look.finding, last, {})).size(), row.baseline);
        }
    }
}

// A day's swing hides nothing, and is no event itself.
TEST(Explain, FindsEventsAlongASlowCurve) {
    for (const double swing : {0.0, 0.1, 0.3, 0.5}) {
        for (const int64_t begin : {300, 1300, 2860}) {
            std::mt19937 random(static_cast<unsigned>(begin));
            Samples samples;
            for (int64_t i = 0; i < 2880; ++i) {
                const double wave = 1 + swing * std::sin(static_cast<double>(i) * 2 * M_PI / 2880);
                const double noise = 1 + 0.03 * (static_cast<double>(random() % 2001) / 1000 - 1);
                samples.push_back(
                    {i * STEP, 1000 * wave * noise * (i >= begin && i < begin + 40 ? 1.6 : 1.0), 10});
            }
            const Finding finding = FindEvents(samples);
            ASSERT_EQ(finding.events.size(), 1U) << swing << " " << begin;
            EXPECT_EQ(finding.events.front().start, begin * STEP);
            EXPECT_EQ(finding.isCurved, swing > 0.05);
        }
    }
}

std::string Text(const Evidence& evidence) {
    const auto number = [](const auto& value, int64_t unit) {
        return (value ? std::to_string(static_cast<int64_t>(*value) / unit) : "none") + " ";
    };
    static const std::string natures[] = {"unknown ", "usual ", "load ", "device "};
    std::string text = (evidence.takesPart ? "+" : "-") + natures[static_cast<size_t>(evidence.nature)] +
                       number(evidence.onset, STEP) + number(evidence.deviations, 1) +
                       number(evidence.excess, 1);
    for (const Reason& reason : evidence.reasons) {
        text += "; " + SentenceOf(reason).substr(0, 16);
    }
    return text;
}

TEST(Explain, EvidenceOfAPoint) {
    const struct {
        std::string letters, expected;  // takes part, nature, onset, deviations, excess; reasons
        bool isObservation = false, hasGoneBack = false;
        Window other{0, -1};  // an event that is no baseline
    } cases[] = {
        {"=|HH", "+device 20 450 18000 "},
        {"=|.HHh.", "+device 21 269 26900 "},
        {"=|H.", "+device 20 225 9000 "},
        {"=|H", "+device 20 450 9000 "},
        {"=|66", "+unknown 20 5 220 "},
        {"=|6.", "-usual 20 2 110 "},
        {"=|6.6.6.6.", "+unknown 20 2 440 "},
        {"=|44444444", "-usual none 2 320 "},
        {".u.u.u.u.u.u.u.uvvv|vvvv", "+load none 5 2400 "},
        {".u.u.u.u.u.u.u.uvvv|VVVV", "+unknown 19 12 6000 "},
        {"=|nn", "-usual none -45 1800 "},
        {"=|zz", "-usual 20 450 0 "},
        {"=|SS", "+load 20 450 180000 "},
        {"=H|SSS", "+load 21 450 270000 "},
        {"=HHHH|SS", "+device 24 450 180000 "},
        {"=SSS|SS", "+load 23 450 180000 "},
        {"=RRR|SS", "+load 23 450 180000 "},
        {"=sssSSSS.|SS", "+load 28 450 180000 ", false, false, {23 * STEP, 27 * STEP - 1}},
        {"=sss|SSSSSS", "+device 23 450 540000 "},
        {".u.u.u.u.u.u.u.u.u.u|UU", "+load 20 450 72000 "},
        {"=|HH", "-unknown 20 450 none ; an observation p", true},
        {"=|..", "-usual none 0 0 ; constant over th; the clock jumped", false, true},
        {"|H", "-unknown none none none ; only 1 sample: t; only 0 samples b"},
        {"....|HH", "-unknown none none none ; only 6 samples: ; only 4 samples b"},
        {".....|HH", "+device 5 450 18000 ; only 7 samples: "},
        {".........|HH", "+device 9 450 18000 "},
        {"=|__", "-unknown none none none ; no rows during t; constant over th"},
        {"__|_", "-unknown none none none ; no rows in the r"},
        {".._....~.....~__.........|HH", "+device 23 450 18000 ; 3 intervals with"},
        {".....<.<.<.<.<.<.|HH", "+device 5 450 18000 "},
    };
    for (const auto& row : cases) {
        const auto [samples, event] = Written(row.letters);
        const PointData point{samples, {}, DelaysOf(samples), 0, row.isObservation, row.hasGoneBack};
        Evidence top;
        top.eventCount = SamplesIn(samples, {event}).size();
        top.deviations = 5.0;
        EXPECT_EQ(NeededBelow(top), HIGH);
        top.deviations = 4.9;
        EXPECT_EQ(Text(EvidenceOf(point, {{0, row.other.start - 1}, {row.other.end + 1, event.start - 1}},
                                  event, NeededBelow(top))),
                  row.expected)
            << row.letters;
    }
}

}  // namespace
}  // namespace explain
