// The rule for events against a computation that follows it word for word, and the statistics under it.
#include "explain/finding/event.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <random>
#include <set>
#include <tuple>

#include "explain/finding/sample_store.h"

namespace explain {
namespace {

constexpr int64_t STEP = 30;

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

Positions NaiveAbove(const std::vector<double>& deviations, double least, Positions now) {
    for (size_t i = 0; i < deviations.size(); ++i) {
        const bool bridges =
            i > 0 && i + 1 < deviations.size() && deviations[i - 1] > least && deviations[i + 1] > least;
        if (deviations[i] > least || bridges) {
            now.insert(i);
        }
    }
    return now;
}

// From all above 1 on what the rest calls high, where one run holds half of it; or what is high from `inside`
// on.
Positions NaiveHigh(const std::vector<double>& values, bool hides = false, Positions inside = {}) {
    for (size_t search = 0; search < 1000; ++search) {
        const std::vector<double> deviations = NaiveDeviations(values, inside);
        const Positions now =
            NaiveAbove(deviations, hides && search == 0 ? 1 : 5, hides ? Positions() : inside);
        const double left = static_cast<double>(values.size() - now.size());
        if (now == inside || left < 5.0 || left < 0.1 * static_cast<double>(values.size())) {
            size_t run = 0, longest = 0;
            for (size_t i = 0; i < values.size(); ++i) {
                longest = std::max(longest, run = now.count(i) > 0 ? run + 1 : 0);
            }
            return hides && (now != inside || longest * 2 < now.size()) ? Positions() : inside;
        }
        inside = now;
    }
    return {};
}

using Pairs = std::vector<std::pair<size_t, size_t>>;

void Join(const Pairs::value_type& event, Pairs& events) {
    if (!events.empty() && event.first <= events.back().second + 2) {
        events.back().second = event.second;
    } else {
        events.push_back(event);
    }
}

double NaiveHighest(const Pairs& events, const std::vector<double>& deviations, size_t end) {
    std::vector<double> usual;
    for (size_t i = 0; i < end; ++i) {
        const auto holds = [i](const Pairs::value_type& event) {
            return event.first < event.second && event.first <= i && i <= event.second;
        };
        if (std::none_of(events.begin(), events.end(), holds)) {
            usual.push_back(deviations[i]);
        }
    }
    std::sort(usual.begin(), usual.end());
    const std::vector<double> tail(usual.end() - static_cast<int>(usual.size() / 20), usual.end());
    const auto doublings = std::log2(30.0 * static_cast<double>(tail.size()));
    const bool ends = tail.size() >= 4 && tail[tail.size() * 3 / 4] == SortedMedian(tail);
    return tail.size() < 4 ? 0.0 : tail[0] + (SortedMedian(tail) - tail[0]) * (ends ? 1.0 : doublings);
}

// Without lone samples that lie no higher than the tail of all other ones, or of the first half, leads to
// expect.
Pairs NaiveUnlikely(const Pairs& events, const std::vector<double>& deviations) {
    const double all = NaiveHighest(events, deviations, deviations.size());
    const double early = NaiveHighest(events, deviations, deviations.size() / 2);
    const double limit = early < all / 2 ? early : all;
    Pairs left;
    std::copy_if(events.begin(), events.end(), std::back_inserter(left), [&](const Pairs::value_type& event) {
        return event.first < event.second || deviations[event.first] > limit;
    });
    return left;
}

// The events up to where the sum of what lies above half of their medians is largest.
Pairs NaiveReach(const Pairs& events, const std::vector<double>& deviations) {
    Pairs wide;
    for (size_t k = 0; k < events.size(); ++k) {
        auto [first, last] = events[k];
        const double height = std::max(0.0, SortedMedian({&deviations[first], &deviations[last] + 1}));
        const size_t from = wide.empty() ? 0 : wide.back().second + 1;
        const size_t until = k + 1 < events.size() ? events[k + 1].first : deviations.size();
        double sum = 0.0, most = 0.0;
        const auto isMore = [&](size_t i) {
            sum += std::min(height, std::max(0.0, deviations[i])) - height / 2;
            const bool is = sum > most;
            most = std::max(most, sum);
            return is;
        };
        for (size_t i = events[k].first; i > from && sum > most - 2 * height; --i) {
            first = isMore(i - 1) ? i - 1 : first;
        }
        sum = most = 0.0;
        for (size_t i = events[k].second + 1; i < until && sum > most - 2 * height; ++i) {
            last = isMore(i) ? i : last;
        }
        Join({first, last}, wide);
    }
    return wide;
}

// First and last positions of the events.
Pairs NaiveEvents(const std::vector<double>& values) {
    Positions inside = NaiveHigh(values);
    const std::vector<double> deviations = NaiveDeviations(values, inside);
    for (const size_t width : {size_t{4}, size_t{16}}) {
        std::vector<size_t> left;
        std::vector<double> means;
        for (size_t i = 0; i < values.size(); ++i) {
            if (inside.count(i) == 0) {
                left.push_back(i);
            }
        }
        for (size_t i = 0; i + width <= left.size(); ++i) {
            double sum = 0.0;
            for (size_t k = i; k < i + width; ++k) {
                sum += values[left[k]];
            }
            means.push_back(sum / static_cast<double>(width));
        }
        const bool isKnown = means.size() >= 11 * width;
        const Positions windows =
            means.size() > 10 && (isKnown || width == 4)
                ? NaiveHigh(means, false, isKnown ? NaiveHigh(means, true) : Positions())
                : Positions();
        const std::vector<double> weak =
            windows.empty() ? std::vector<double>() : NaiveDeviations(means, windows);
        for (const size_t window :
             windows) {  // up to the next one, if no `width` weaker ones in a row lie between
            size_t next = window;
            for (size_t i = window + 1, low = 0; i < weak.size() && low < width && next == window; ++i) {
                next = windows.count(i) > 0 ? i : window;
                low = weak[i] > 2.0 ? 0 : low + 1;
            }
            Positions above;
            for (size_t i = window; i < next + width; ++i) {
                deviations[left[i]] > 1.0 ? void(above.insert(left[i])) : void();
            }
            for (size_t i = above.empty() ? 1 : *above.begin(); i <= (above.empty() ? 0 : *above.rbegin());
                 ++i) {
                inside.insert(i);
            }
        }
    }
    Pairs events;
    for (const size_t i : inside) {
        Join({i, i}, events);
    }
    return NaiveReach(NaiveUnlikely(events, deviations), deviations);
}

TEST(Explain, FindsTheEventsOfTheNaiveRule) {
    size_t found = 0;
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        std::mt19937 random(seed);
        Samples samples;
        const size_t count = 11 + random() % 260, begin = random() % count, length = 1 + random() % 60;
        const double slow = 1.0 + 0.1 * static_cast<double>(random() % 30), noise = 0.02 * (seed % 8);
        for (size_t i = 0; i < count; ++i) {
            const double chance = static_cast<double>(random() % 2001) / 1000 - 1;
            const double wave = noise * (seed % 3 > 0 ? chance : 4 * std::pow(chance, 15));
            const double factor = i >= begin && i < begin + length && random() % 9 > 0 ? slow : 1.0;
            samples.push_back({static_cast<int64_t>(i) * STEP, std::round(1000 * (1 + wave) * factor), 10});
        }
        Pairs events;
        for (const Event& event : FindEvents(samples).events) {
            events.emplace_back(event.first, event.last);
        }
        EXPECT_EQ(events, NaiveEvents(DelaysOf(samples))) << seed;
        found += events.size();
    }
    EXPECT_GT(found, 1000U);
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

}  // namespace
}  // namespace explain
