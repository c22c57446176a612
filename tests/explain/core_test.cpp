// Events, statistics and the evidence of a point, on series that are written as one letter per interval.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>

#include "explain/analysis/analysis.h"
#include "explain/analysis/evidence.h"
#include "explain/finding/statistics.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr int64_t STEP = 30;

// Delay and requests of an interval.
const std::map<char, std::pair<double, double>> LETTERS = {
    {'.', {100, 10}},  {'0', {0, 10}},   {'5', {110, 10}},  {'6', {111, 10}},   {'h', {990, 10}},
    {'H', {1000, 10}}, {'l', {10, 10}},  {'s', {100, 100}}, {'S', {1000, 100}}, {'z', {1000, 0}},
    {'n', {10, -10}},  {'u', {100, 20}}, {'U', {1000, 40}}};

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

// The rule for events by itself, word for word.
using Positions = std::set<size_t>;

double SortedMedian(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2;
}

std::vector<double> NaiveDeviations(const std::vector<double>& values, const Positions& inside) {
    std::vector<double> usual, distances, deviations;
    for (size_t i = 0; i < values.size(); ++i) {
        if (inside.count(i) == 0) {
            usual.push_back(values[i]);
        }
    }
    const double median = SortedMedian(usual);
    for (const double value : usual) {
        distances.push_back(std::fabs(value - median));
    }
    const double scale = std::max(1.4826 * SortedMedian(distances), 0.02 * std::fabs(median));
    for (const double value : values) {
        deviations.push_back((value - median) / (scale > 0.0 ? scale : 1.0));
    }
    return deviations;
}

Positions NaiveHigh(const std::vector<double>& values) {
    Positions inside;
    while (true) {
        const std::vector<double> deviations = NaiveDeviations(values, inside);
        Positions now = inside;
        for (size_t i = 0; i < values.size(); ++i) {
            const bool bridges =
                i > 0 && i + 1 < values.size() && deviations[i - 1] > 5.0 && deviations[i + 1] > 5.0;
            if (deviations[i] > 5.0 || bridges) {
                now.insert(i);
            }
        }
        const double left = static_cast<double>(values.size() - now.size());
        if (now == inside || left < 5.0 || left < 0.1 * static_cast<double>(values.size())) {
            return inside;
        }
        inside = now;
    }
}

// First and last positions of the events.
std::vector<std::pair<size_t, size_t>> NaiveEvents(const std::vector<double>& values) {
    Positions inside = NaiveHigh(values);
    const std::vector<double> deviations = NaiveDeviations(values, inside);
    std::vector<size_t> left;
    std::vector<double> means;
    for (size_t i = 0; i < values.size(); ++i) {
        if (inside.count(i) == 0) {
            left.push_back(i);
        }
    }
    for (size_t i = 0; i + 4 <= left.size(); ++i) {
        means.push_back((values[left[i]] + values[left[i + 1]] + values[left[i + 2]] + values[left[i + 3]]) /
                        4);
    }
    const Positions windows = means.size() > 10 ? NaiveHigh(means) : Positions();
    const std::vector<double> weak =
        windows.empty() ? std::vector<double>() : NaiveDeviations(means, windows);
    for (const size_t window : windows) {  // up to the next one, if no four weaker ones in a row lie between
        size_t next = window;
        for (size_t i = window + 1, low = 0; i < weak.size() && low < 4 && next == window; ++i) {
            next = windows.count(i) > 0 ? i : window;
            low = weak[i] > 2.0 ? 0 : low + 1;
        }
        Positions above;
        for (size_t i = window; i < next + 4; ++i) {
            deviations[left[i]] > 1.0 ? void(above.insert(left[i])) : void();
        }
        for (size_t i = above.empty() ? 1 : *above.begin(); i <= (above.empty() ? 0 : *above.rbegin()); ++i) {
            inside.insert(i);
        }
    }
    std::vector<std::pair<size_t, size_t>> events;
    for (const size_t i : inside) {
        if (!events.empty() && i <= events.back().second + 2) {
            events.back().second = i;
        } else {
            events.emplace_back(i, i);
        }
    }
    return events;
}

TEST(Explain, FindsTheEventsOfTheNaiveRule) {
    size_t found = 0;
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        std::mt19937 random(seed);
        Samples samples;
        const size_t count = 11 + random() % 120, begin = random() % count, length = 1 + random() % 60;
        const double slow = 1.0 + 0.1 * static_cast<double>(random() % 30), noise = 0.02 * (seed % 8);
        for (size_t i = 0; i < count; ++i) {
            const double wave = noise * (static_cast<double>(random() % 2001) / 1000 - 1);
            const double factor = i >= begin && i < begin + length && random() % 9 > 0 ? slow : 1.0;
            samples.push_back({static_cast<int64_t>(i) * STEP, std::round(1000 * (1 + wave) * factor), 10});
        }
        std::vector<std::pair<size_t, size_t>> events;
        for (const Event& event : FindEvents(samples).events) {
            events.emplace_back(event.first, event.last);
        }
        EXPECT_EQ(events, NaiveEvents(DelaysOf(samples))) << seed;
        found += events.size();
    }
    EXPECT_GT(found, 1000U);
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
        {"==5===", 0, 42, " 40-40 x1 @40", Silence::NONE},
        {"==5===", 0, 43, " 41-41 x0 @41", Silence::NONE},
    };
    for (const auto& row : cases) {
        const Samples samples = Written(row.letters).samples;
        const int64_t end = static_cast<int64_t>(samples.size()) * STEP;
        Question question{{row.since * STEP, end}, {}, {}, {}};
        const Look look = LookAt("P", samples, question.range, {});
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

TEST(Explain, StatisticsAreThoseOfTheirDefinitions) {
    for (unsigned seed = 1; seed <= 500; ++seed) {
        std::mt19937 random(seed);
        std::vector<double> values(2 + random() % 40), distances;
        for (double& value : values) {
            value = (seed % 2 == 0 ? 1.0 : 1e15) * (static_cast<double>(random() % (seed % 30 + 1)) - 5);
        }
        const double median = SortedMedian(values);
        for (const double value : values) {
            distances.push_back(std::fabs(value - median));
        }
        const double scale = std::max(1.4826 * SortedMedian(distances), 0.02 * std::fabs(median));
        EXPECT_DOUBLE_EQ(UsualOf(values).median, median) << seed;
        EXPECT_NEAR(UsualOf(values).scale, scale > 0.0 ? scale : 1.0, 1e-9 * scale) << seed;
    }
    const std::tuple<FaultSeries, FaultSeries, size_t, double> pairs[] = {
        // 9: no correlation
        {{}, {{1, 1}}, 0, 9},
        {{{1, 1}, {2, 2}}, {{1, 1}, {2, 2}}, 2, 9},
        {{{1, 5}, {2, 5}, {3, 5}}, {{1, 1}, {2, 2}, {3, 3}}, 3, 9},
        {{{1, 1}, {2, 2}, {4, 90}, {5, 3}}, {{0, 7}, {1, 6}, {2, 4}, {3, 80}, {5, 2}}, 3, -1.0},
        {{{1, 0}, {1, 3}, {2, 0}, {2, 9}}, {{1, 0}, {1, 3}, {2, 0}, {3, 5}}, 3, 1.0}};
    for (const auto& [a, b, count, correlation] : pairs) {
        for (const Common& common : {CorrelationOf(a, b), CorrelationOf(b, a)}) {
            EXPECT_EQ(common.count, count);
            EXPECT_NEAR(common.correlation.value_or(9), correlation, 1e-12);
        }
    }
    const FaultSeries series = DelaySeries({{7, 1e30, 0}, {7, -1e30, 0}, {8, 1.9, 0}});
    EXPECT_EQ(series, (FaultSeries{{7, 9223372036854774784}, {7, -9223372036854774784}, {8, 1}}));
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
    } cases[] = {
        {"=|HH", "+device 20 450 18000 "},
        {"=|.HHh.", "+device 21 269 26900 "},
        {"=|H.", "+device 20 225 9000 "},
        {"=|H", "+device 20 450 9000 "},
        {"=|66", "+unknown 20 5 220 "},
        {"=|6.", "-usual 20 2 110 "},
        {"=|nn", "-usual none -45 1800 "},
        {"=|zz", "-usual 20 450 0 "},
        {"=|SS", "+load 20 450 180000 "},
        {"=H|SSS", "+load 21 450 270000 "},
        {"=HHHH|SS", "+device 24 450 180000 "},
        {"=SSS|SS", "+load 23 450 180000 "},
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
        const PointData point{samples, DelaysOf(samples), row.isObservation, row.hasGoneBack};
        EXPECT_EQ(Text(EvidenceOf(point, {{0, event.start - 1}}, event, false)), row.expected) << row.letters;
    }
}

}  // namespace
}  // namespace explain
