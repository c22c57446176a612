#include "fault_algorithm/fault_correlation.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

using SmartDiagnose::MeanStdevCompute;

namespace {

// A hundred samples less the gaps. Only the engine's own numbers are the same with every library.
FaultSeries RawSeries(std::mt19937_64& random) {
    const uint64_t kind = random() % 8;  // values of 64, 57 ... 22 bits, or a constant
    FaultSeries series;
    for (int64_t time = 0; time < 100; ++time) {
        const auto value = static_cast<int64_t>(random());
        if (random() % 5 != 0) {
            series.push_back({time, kind == 7 ? 1000000 : value / (int64_t{1} << (7 * kind))});
        }
    }
    return series;
}

}  // namespace

TEST(Statistics, KnownSamples) {
    double mean = -7.0;
    double deviation = -8.0;
    EXPECT_EQ(MeanStdevCompute({5}, mean, deviation), 1U);
    EXPECT_EQ(std::pair(mean, deviation), std::pair(-7.0, -8.0));
    const std::tuple<std::vector<int64_t>, double, double> cases[] = {
        {{10, 10, 10}, 10, 0},
        {{1, 2, 3, 4}, 2.5, std::sqrt(5.0 / 3)},
        {{-INT64_MAX, INT64_MAX}, 0, 0x1p63 * std::sqrt(2.0)}};
    for (const auto& [samples, average, spread] : cases) {
        EXPECT_EQ(MeanStdevCompute(samples, mean, deviation), 0U);
        EXPECT_EQ(mean, average);
        EXPECT_DOUBLE_EQ(deviation, spread);
    }
}

TEST(Statistics, ThreeDeviationsAreNotBeyondThree) {
    const std::tuple<int64_t, double, double, double> cases[] = {{3, 0, 1, 3},
                                                                 {-3, 0, 1, 3},
                                                                 {4, 0, 1, 4},
                                                                 {-4, 0, 1, 4},
                                                                 {1000, 10, 0, 0},
                                                                 {1, 0, 1e-15, 0},
                                                                 {1, 0, -1e-15, 0},
                                                                 {2, 0, 2e-15, 1e15},
                                                                 {41, 10, 10, 3.1},
                                                                 {-21, 10, 10, 3.1},
                                                                 {INT64_MIN, 0, 0x1p61, 4}};
    for (auto [value, mean, deviation, sigma] : cases) {
        EXPECT_DOUBLE_EQ(SmartDiagnose::SigmaCompute(value, mean, deviation), sigma);
        EXPECT_EQ(SmartDiagnose::Is3Sigma(value, mean, deviation), sigma > 3.0) << value;
    }
}

// The digest is that of x86-64; a fused multiply-add or another order of additions gives another one.
TEST(Statistics, EveryMachineGetsTheSameBits) {
    std::mt19937_64 random(1);
    uint64_t digest = 0xcbf29ce484222325;
    const auto add = [&digest](double value) {
        uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        digest = (digest ^ bits) * 0x100000001b3;
    };
    for (int pair = 0; pair < 1000; ++pair) {
        const FaultSeries parent = RawSeries(random);
        add(WeightCompute(parent, RawSeries(random)));
        std::vector<int64_t> samples;
        for (const FaultSeriesRow& row : parent) {
            samples.push_back(row[1]);
        }
        double mean = 0.0;
        double deviation = 0.0;
        ASSERT_EQ(MeanStdevCompute(samples, mean, deviation), 0U);
        add(mean);
        add(deviation);
    }
    EXPECT_EQ(digest, 0xc6ea390502e55745U);
}
