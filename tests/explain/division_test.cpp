// From samples to shares: whole small worlds against a computation that follows the rule word for word; and
// how much of a range is covered.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "explain/analysis/evidence.h"
#include "explain/analysis/own_delay.h"
#include "explain/finding/coverage.h"
#include "explain/finding/statistics.h"
#include "explain/finding/table_zone.h"

namespace explain {
namespace {

constexpr int64_t STEP = 30;

std::string NameOf(size_t point) {
    return "P" + std::to_string(point);
}

// A world of up to seven nodes, of which two may be one point, with rows missing here and there.
GraphWorld RandomWorld(std::mt19937& random) {
    GraphWorld world;
    world.nodes.resize(2 + random() % 6);
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        world.nodes[i].point = NameOf(i > 3 && random() % 4 == 0 ? 1 : i);
        for (size_t child = i + 1; child < world.nodes.size(); ++child) {
            if (random() % 2 == 0) {
                world.nodes[i].children.push_back(child);
            }
        }
        PointData& data = world.points[world.nodes[i].point];
        data.isObservation = i > 1 && i % 5 == 0;
        data.samples.clear();
        const auto base = static_cast<double>(1 + random() % 500);
        const bool isSlow = random() % 2 == 0;
        for (int64_t k = 0; k < 60; ++k) {
            const double factor =
                isSlow && k >= 40 && k < 50 ? 3 : 1 + 0.01 * static_cast<double>(random() % 5);
            const double requests = data.isObservation ? 0.0 : static_cast<double>(random() % 4 * 10);
            if (random() % 20 > 0) {
                data.samples.push_back({k * STEP, std::round(base * factor), requests});
            }
        }
    }
    if (world.nodes.size() > 3 && random() % 2 == 0) {
        world.handOvers[1] = 2 + random() % (world.nodes.size() - 2);
    }
    return world;
}

const Sample* SampleAt(const PointData& data, int64_t time) {
    const auto found = std::find_if(data.samples.begin(), data.samples.end(),
                                    [time](const Sample& sample) { return sample.time == time; });
    return found == data.samples.end() ? nullptr : &*found;
}

bool IsBelow(const GraphWorld& world, const std::string& caller, const std::string& below) {
    bool isBelow = false;
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        std::vector<size_t> next = world.nodes[i].children;
        next.insert(next.end(), world.handOvers.count(i),
                    world.handOvers.count(i) > 0 ? world.handOvers.at(i) : 0);
        for (const size_t child : next) {
            isBelow = isBelow || (world.nodes[i].point == caller && world.nodes[child].point == below);
        }
    }
    return isBelow && caller != below;
}

double NaiveOwn(const GraphWorld& world, const std::string& name, const Sample& sample) {
    double own = sample.delay;
    for (const auto& [child, data] : world.points) {
        const Sample* taken = SampleAt(data, sample.time);
        double callers = 0.0;
        for (const auto& [caller, other] : world.points) {
            const Sample* one = SampleAt(other, sample.time);
            callers += one != nullptr && IsBelow(world, caller, child) ? one->requests : 0.0;
        }
        if (IsBelow(world, name, child) && !data.isObservation && taken != nullptr && callers > 0.0) {
            own -= taken->requests * taken->delay / callers;
        }
    }
    return own;
}

TEST(Division, TakesOwnDelaysAndExcessesByTheRule) {
    const Window event{40 * STEP, 49 * STEP};
    const Stretches baseline{{0, 20 * STEP}, {25 * STEP, 39 * STEP}};
    for (unsigned seed = 1; seed <= 100 && !HasFailure(); ++seed) {
        std::mt19937 random(seed);
        GraphWorld world = RandomWorld(random);
        FillOwnDelays(world);
        for (const auto& [name, data] : world.points) {
            SCOPED_TRACE(std::to_string(seed) + " " + name);
            std::vector<double> usual, ownUsual;
            double excess = 0.0, ownExcess = 0.0;
            for (size_t i = 0; i < data.samples.size(); ++i) {
                const Sample& sample = data.samples[i];
                ASSERT_NEAR(data.own[i], NaiveOwn(world, name, sample), 1e-6);
                if (sample.time <= 20 * STEP || (sample.time >= 25 * STEP && sample.time < event.start)) {
                    usual.push_back(sample.delay);
                    ownUsual.push_back(data.own[i]);
                }
            }
            const double median = MedianOf(usual), ownMedian = MedianOf(ownUsual);
            for (size_t i = 0; i < data.samples.size(); ++i) {
                if (event.Holds(data.samples[i].time)) {
                    excess += data.samples[i].requests * (data.samples[i].delay - median);
                    ownExcess += data.samples[i].requests * (data.own[i] - ownMedian);
                }
            }
            const Evidence evidence = BriefEvidenceOf(data, baseline, event, HIGH);
            ASSERT_EQ(evidence.excess.has_value(), !data.isObservation);
            if (evidence.excess) {
                EXPECT_NEAR(*evidence.excess, excess, 1e-6 * (1 + std::fabs(excess)));
                EXPECT_NEAR(*evidence.ownExcess, ownExcess, 1e-6 * (1 + std::fabs(ownExcess)));
            }
        }
    }
}

TEST(Coverage, TellsWhatIsMissing) {
    const struct {
        std::vector<std::pair<int64_t, int64_t>> rows;  // first and last step with rows
        int64_t jitter;
        size_t intervals;
        bool lacksBegin, lacksEnd, lacksBetween;
    } cases[] = {
        {{{0, 100}}, 0, 100, false, false, false},
        {{{2, 98}}, 0, 97, false, false, false},
        {{{3, 100}}, 0, 98, true, false, false},
        {{{0, 97}}, 0, 98, false, true, false},
        {{{0, 39}, {60, 100}}, 0, 81, false, false, false},
        {{{0, 39}, {61, 100}}, 0, 80, false, false, true},
        {{{0, 100}}, 3, 100, false, false, false},
        {{}, 0, 0, false, false, false},
    };
    for (const auto& row : cases) {
        std::map<std::string, PointData> points;
        for (int64_t point = 0; point < 3; ++point) {
            for (const auto& [first, last] : row.rows) {
                for (int64_t k = first; k <= last; ++k) {
                    points[NameOf(static_cast<size_t>(point))].samples.push_back(
                        {k * STEP + point * row.jitter, 1, 1});
                }
            }
        }
        points["silent"];
        const Coverage coverage = CoverageOf(points, {0, 100 * STEP + 2 * row.jitter});
        EXPECT_EQ(coverage.intervals, row.intervals);
        EXPECT_EQ(coverage.pointsWithRows, row.rows.empty() ? 0U : 3U);
        EXPECT_EQ(std::make_tuple(coverage.lacksBegin, coverage.lacksEnd, coverage.lacksBetween),
                  std::make_tuple(row.lacksBegin, row.lacksEnd, row.lacksBetween));
    }
}

TEST(Coverage, KnowsTheZoneOfTheTables) {
    constexpr int64_t HOUR = 3600;
    const auto tables = [](int64_t zone) {  // of an hour each
        std::vector<TableSpan> spans;
        for (int64_t hour = 100; hour < 103; ++hour) {
            spans.push_back({hour * HOUR + zone, {hour * HOUR, (hour + 1) * HOUR - STEP}});
        }
        return spans;
    };
    const struct {
        int64_t named, asked, expected;
    } cases[] = {{8, 8, 8}, {8, 0, 8}, {0, 8, 0}, {-5, 1, -5}, {8, 7, 8}};
    for (const auto& row : cases) {
        EXPECT_EQ(ZoneOfTables(tables(row.named * HOUR), row.asked * HOUR), row.expected * HOUR);
    }
    for (const int64_t change : {-HOUR, HOUR}) {  // over a change of daylight saving time
        std::vector<TableSpan> changed = tables(2 * HOUR);
        changed.back().named += change;
        EXPECT_EQ(ZoneOfTables(changed, 2 * HOUR), std::nullopt);
        const std::optional<ZoneChange> found = ZoneChangeOf(changed);
        ASSERT_TRUE(found);
        EXPECT_EQ(std::make_tuple(found->before, found->after, found->first),
                  std::make_tuple(2 * HOUR, 2 * HOUR + change, size_t{2}));
    }
    EXPECT_EQ(ZoneOfTables({}, HOUR), HOUR);
    EXPECT_EQ(ZoneOfTables({{0, {-9 * HOUR, 99 * HOUR}}, {2 * HOUR, {2 * HOUR, 3 * HOUR}}}, 0), std::nullopt);
}

}  // namespace
}  // namespace explain
