// Which runs of errors are told, and whose they are.
#include <gtest/gtest.h>

#include <cmath>

#include "explain/errors/error_division.h"
#include "explain/errors/intervals.h"

namespace explain {
namespace {

constexpr size_t INTERVALS = 600;

// Intervals from `first` to `last`, each `every` of them with so many errors.
struct Course {
    size_t first, last, every;
    int64_t count;
};
using Runs = std::vector<std::pair<size_t, size_t>>;

IntervalCounts CountsOf(const std::vector<Course>& courses) {
    std::map<size_t, int64_t> counts;
    for (const Course& one : courses) {
        for (size_t i = one.first; i <= one.last; i += one.every) {
            counts[i] += one.count;
        }
    }
    IntervalCounts list;
    for (const auto& [interval, count] : counts) {
        list.push_back({interval, count});
    }
    return list;
}

TEST(ErrorEvents, TellsRunsThatTheRestDoesNotExplain) {
    struct Row {
        const char* what;
        std::vector<Course> courses;
        Runs events;
        size_t tellingEnd = INTERVALS;
    };
    const Row rows[] = {
        {"nothing", {}, {}},
        {"a stray error", {{500, 500, 1, 1}}, {}},
        {"what one cause may make at a time", {{500, 500, 1, 8}}, {}},
        {"one interval of many", {{500, 500, 1, 30}}, {{500, 500}}},
        {"few, but again and again", {{500, 560, 3, 2}}, {{500, 560}}},
        {"a trickle", {{0, 599, 4, 1}}, {}},
        {"more than a trickle", {{0, 599, 4, 1}, {500, 509, 1, 9}}, {{500, 509}}},
        {"bursts that come back", {{10, 599, 60, 100}, {11, 599, 60, 100}}, {}},
        {"the same once before", {{100, 103, 1, 125}, {500, 503, 1, 125}}, {{100, 103}, {500, 503}}},
        {"flapping", {{500, 550, 4, 200}, {501, 551, 4, 200}}, {{500, 549}}},
        {"two bursts, near each other", {{500, 500, 1, 200}, {512, 512, 1, 180}}, {{500, 500}, {512, 512}}},
        {"much larger than what comes back", {{10, 599, 60, 20}, {500, 509, 1, 200}}, {{500, 509}}},
        {"most of what is looked at", {{50, 599, 1, 10}}, {{50, 599}}},
        {"too few intervals besides", {{5, 599, 1, 10}}, {}},
        {"a baseline that was named", {{50, 599, 1, 10}}, {{50, 599}}, 40},
        {"one that is too short", {{500, 509, 1, 90}}, {}, 10},
    };
    for (const Row& row : rows) {
        CountFrame frame{INTERVALS, std::vector<bool>(INTERVALS, false), 5e6};
        std::fill_n(frame.telling.begin(), row.tellingEnd, true);
        Runs found;
        for (const CountEvent& event : FindCountEvents(CountsOf(row.courses), frame)) {
            found.emplace_back(event.first, event.last);
        }
        EXPECT_EQ(found, row.events) << row.what;
    }
}

// The sum of the terms of the binomial tail.
TEST(ErrorEvents, ChanceIsTheTailOfTheBinomialDistribution) {
    for (const auto& [count, others, length, rest] :
         {std::array{3, 0, 1, 600}, {12, 40, 4, 480}, {40, 200, 30, 470}, {60, 5, 10, 600}}) {
        const long double share = static_cast<long double>(length) / (length + rest);
        long double tail = 0;
        for (int k = count; k <= count + others; ++k) {
            tail += std::exp(std::lgamma(count + others + 1.0L) - std::lgamma(k + 1.0L) -
                             std::lgamma(count + others - k + 1.0L) + k * std::log(share) +
                             (count + others - k) * std::log1p(-share));
        }
        EXPECT_NEAR(LogChance(count, others, length, rest), static_cast<double>(std::log(tail)), 1e-9);
    }
    EXPECT_EQ(LogChance(3, 300, 10, 600), 0.0) << "fewer than are expected";
}

TEST(ErrorEvents, RowsOfAnIntervalMayBeSecondsApart) {
    const Intervals intervals({130, 100, 102, 163, 253}, 30);  // two are missing between
    EXPECT_EQ(intervals.Count(), 4U);
    EXPECT_EQ(intervals.NumberOf(102), 0U);
    EXPECT_EQ(intervals.NumberOf(253), 3U);
    EXPECT_EQ(intervals.CountBefore(130), 1U);
    EXPECT_EQ(intervals.CountBefore(254), 4U);
}

// A node by its name, and the errors of its event under a column.
struct Counted {
    const char* name;
    std::vector<size_t> children;
    int64_t count = 0;
    size_t column = 0;
    size_t first = 10;
    bool follows = false;
    bool changesType = false;
};

TEST(ErrorDivision, GivesThePointsTheirOwnErrors) {
    struct Row {
        const char* what;
        std::vector<Counted> nodes;
        std::vector<std::string> told;  // of each incident the topmost points, and the shares by rank
    };
    const Row rows[] = {
        {"what passes through is not its own",
         {{"top", {1}, 90}, {"mid", {2}, 95}, {"low", {}, 100}},
         {"top: low 100 top 0 mid 0"}},
        {"the rest stays above", {{"top", {1}, 100}, {"low", {}, 30}}, {"top: top 70 low 30"}},
        {"two causes", {{"top", {1, 2}, 100}, {"a", {}, 70}, {"b", {}, 30}}, {"top: a 70 b 30 top 0"}},
        {"a module is looked through",
         {{"top", {1}, 100}, {"", {2}}, {"low", {}, 100}},
         {"top: low 100 top 0"}},
        {"one that follows claims first",
         {{"top", {1, 2}, 100}, {"a", {}, 90}, {"b", {}, 60, 0, 10, true}},
         {"top: b 60 a 40 top 0"}},
        {"those that follow share it",
         {{"top", {1, 2}, 100}, {"a", {}, 100, 0, 10, true}, {"b", {}, 300, 0, 10, true}},
         {"top: a 50 b 50 top 0"}},
        {"under another type, as its errors reach the hosts",
         {{"top", {1, 2}, 100}, {"a", {}, 100, 1, 10, false, true}, {"b", {}, 100, 1}},
         {"top: a 100 top 0"}},
        {"but nothing above it counts them so",
         {{"top", {1}, 9, 1, 10, false, true}, {"low", {}, 9}},
         {"low: low 100"}},
        {"seen at two points", {{"a", {2}, 30}, {"b", {2}, 90}, {"low", {}, 120}}, {"b a: low 100 a 0 b 0"}},
        {"at another time", {{"top", {1}, 100}, {"low", {}, 100, 0, 20}}, {"top: top 100", "low: low 100"}},
        {"of other points", {{"a", {}, 100}, {"b", {}, 100}}, {"a: a 100", "b: b 100"}},
        {"in a circle", {{"a", {1}, 100}, {"b", {0}, 60}}, {"a: b 60 a 40"}},
    };
    for (const Row& row : rows) {
        ErrorGraph graph;
        ErrorFindings findings;
        for (const Counted& one : row.nodes) {
            ErrorNode node;
            node.point = node.counted = one.name;
            node.children = one.children;
            node.followsParent = one.follows;
            node.changesType = one.changesType;
            graph.nodes.push_back(node);
            if (one.count > 0) {
                CountEvent event;
                event.first = one.first;
                event.last = one.first + 4;
                event.count = one.count;
                findings[one.name][one.column].events = {event};
            }
        }
        std::vector<std::string> told;
        for (const Incident& incident : DivideErrors(graph, findings, 0)) {
            std::string text;
            for (const size_t entry : incident.entries) {
                text += (text.empty() ? "" : " ") + graph.nodes[incident.points[entry].node].point;
            }
            text += ":";
            for (const IncidentPoint& point : incident.points) {
                text += " " + graph.nodes[point.node].point + " " +
                        std::to_string(std::lround(100 * point.share));
            }
            told.push_back(text);
        }
        EXPECT_EQ(told, row.told) << row.what;
    }
}

}  // namespace
}  // namespace explain
