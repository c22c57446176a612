// Events, statistics and the evidence of a point, on series that are written as one letter per interval.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>

#include "explain/analysis/evidence.h"
#include "explain/analysis/statistics.h"
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
    Event event;  // from '|' to the end
};

// '=' are twenty usual intervals, '_' is one without a row; what follows '~' is two seconds later, and what
// follows '<' an interval earlier.
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
           std::to_string(event.count) + " @" + std::to_string(event.peakTime / STEP);
}

TEST(Explain, FindsRunsOfHighSamples) {
    for (const std::string row :
         {"", "H", "0000000", "=", "=5", "=ll", "00000000000. 11-11 x1 @11", "=6 20-20 x1 @20",
          "H= 0-0 x1 @0", "=hHh.. 20-22 x3 @21", "=h.H.h 20-24 x3 @22", "=h..H 20-20 x1 @20 23-23 x1 @23"}) {
        std::string found = row.substr(0, row.find(' '));
        for (const Event& event : FindEvents(Written(found).samples)) {
            found += Text(event);
        }
        EXPECT_EQ(found, row);
    }
    const Samples samples = Written("=h.H.").samples;
    const std::vector<Event> runs = FindEvents(samples);
    EXPECT_EQ(Text(*EventAt(samples, runs, 21 * STEP)), " 20-22 x2 @22");
    EXPECT_EQ(Text(*EventAt(samples, runs, 5 * STEP + 14)), " 5-5 x1 @5");
    EXPECT_EQ(Text(*EventAt(samples, runs, INT64_MIN)), " 0-0 x1 @0");
    EXPECT_EQ(Text(*EventAt(samples, runs, INT64_MAX)), " 23-23 x1 @23");
    EXPECT_FALSE(EventAt({}, {}, 0));
    EXPECT_EQ(SamplesBetween(samples, 2 * STEP, 4 * STEP).size(), 2U);
    EXPECT_TRUE(SamplesBetween(samples, 4 * STEP, 2 * STEP).empty());
}

double SortedMedian(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2;
}

TEST(Explain, StatisticsAreThoseOfTheirDefinitions) {
    for (unsigned seed = 1; seed <= 500; ++seed) {
        std::mt19937 random(seed);
        std::vector<double> values(2 + random() % 40), distances;
        for (double& value : values) {
            value = (seed % 2 == 0 ? 1.0 : 1e15) * (static_cast<double>(random() % (seed % 30 + 1)) - 5);
        }
        const double median = SortedMedian(values);
        const auto count = static_cast<double>(values.size());
        double squares = 0.0;  // of the distances between all pairs
        for (const double value : values) {
            distances.push_back(std::fabs(value - median));
            for (const double other : values) {
                squares += (value - other) * (value - other);
            }
        }
        const double deviation = std::sqrt(squares / (2 * count * (count - 1)));
        const double scale =
            std::max({1.4826 * SortedMedian(distances), 0.3 * deviation, 0.02 * std::fabs(median)});
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
        {"=|HH", "+device 20 450 9000 "},
        {"=|.HHh.", "+device 21 450 5380 "},
        {"=|H.", "-usual 20 450 4500 "},
        {"=|H", "+device 20 450 9000 "},
        {"=|66", "+unknown 20 5 110 "},
        {"=|5l", "-usual 21 -45 -400 "},
        {"=|nn", "-usual 20 -45 900 "},
        {"=|zz", "-usual 20 450 0 "},
        {"=|SS", "+load 20 450 90000 "},
        {"=H|SSS", "+load 21 15 90000 "},
        {"=HHHH|SS", "+device 24 8 90000 "},
        {"=SSS|SS", "+load 23 9 90000 "},
        {"=sss|SSSSSS", "+device 23 450 90000 "},
        {".u.u.u.u.u.u.u.u.u.u|UU", "+load 20 450 36000 "},
        {"=|HH", "-unknown 20 450 none ; an observation p", true},
        {"=|..", "-usual none 0 0 ; constant over th; the clock jumped", false, true},
        {"|H", "-unknown none none none ; only 1 sample: t; only 0 samples b"},
        {"....|HH", "-unknown none none none ; only 6 samples: ; only 4 samples b"},
        {".....|HH", "+device 5 450 9000 ; only 7 samples: "},
        {".........|HH", "+device 9 450 9000 "},
        {"=|__", "-unknown none none none ; no rows during t; constant over th"},
        {"__|_", "-unknown none none none ; no rows in the r"},
        {".._....~.....~__.........|HH", "+device 23 450 9000 ; 3 intervals with"},
        {".....<.<.<.<.<.<.|HH", "+device 5 450 9000 "},
    };
    for (const auto& row : cases) {
        const auto [samples, event] = Written(row.letters);
        const PointData point{samples, row.isObservation, row.hasGoneBack};
        EXPECT_EQ(Text(EvidenceOf(point, BaselineOf(samples, event), event)), row.expected) << row.letters;
    }
}

}  // namespace
}  // namespace explain
