#include "fault_algorithm/fault_correlation.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <random>

namespace {

using SmartDiagnose::MeanStdevCompute;

TEST(Statistics, AreThoseOfKnownSeries) {
    const struct {
        std::vector<int64_t> samples;
        uint32_t status;
        double mean, deviation;
    } cases[] = {
        {{}, 1, -7.0, -8.0},  // nothing is written
        {{5}, 1, -7.0, -8.0},
        {{10, 10, 10}, 0, 10.0, 0.0},
        {{1, 2, 3, 4}, 0, 2.5, std::sqrt(5.0 / 3.0)},
        {{INT64_MAX, INT64_MAX, INT64_MAX}, 0, 0x1p63, 0.0},
        {{INT64_MIN, INT64_MAX}, 0, 0.0, std::sqrt(2.0) * 0x1p63},
    };
    for (const auto& test : cases) {
        double mean = -7.0;
        double deviation = -8.0;
        EXPECT_EQ(MeanStdevCompute(test.samples, mean, deviation), test.status);
        EXPECT_DOUBLE_EQ(mean, test.mean);
        EXPECT_DOUBLE_EQ(deviation, test.deviation);
    }
}

TEST(Statistics, AgreeWithALongDoubleReference) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        const int64_t scale = int64_t{1} << (seed % 50);
        std::uniform_int_distribution<int64_t> value(-scale, 3 * scale);
        std::vector<int64_t> samples(2 + random() % 500);
        long double sum = 0;
        for (int64_t& sample : samples) {
            sample = value(random);
            sum += static_cast<long double>(sample);
        }
        const long double average = sum / static_cast<long double>(samples.size());
        long double squares = 0;
        for (const int64_t sample : samples) {
            squares += std::pow(static_cast<long double>(sample) - average, 2);
        }
        const auto expected =
            static_cast<double>(std::sqrt(squares / static_cast<long double>(samples.size() - 1)));
        double mean = 0;
        double deviation = 0;
        ASSERT_EQ(MeanStdevCompute(samples, mean, deviation), 0U);
        EXPECT_NEAR(mean, static_cast<double>(average), 1e-13 * static_cast<double>(scale));
        EXPECT_NEAR(deviation, expected, 1e-12 * expected);
    }
}

TEST(Statistics, ThreeDeviationsAreNotBeyondThree) {
    const struct {
        int64_t value;
        double mean, deviation, sigma;
    } cases[] = {
        {3, 0.0, 1.0, 3.0},   {-3, 0.0, 1.0, 3.0},   {4, 0.0, 1.0, 4.0},     {-4, 0.0, 1.0, 4.0},
        {1000, 10.0, 0.0, 0}, {1, 0.0, 1e-15, 0},    {1, 0.0, -1e-15, 0},    {1, 0.0, 1.1e-15, 1 / 1.1e-15},
        {40, 10.0, 10.0, 3},  {41, 10.0, 10.0, 3.1}, {-21, 10.0, 10.0, 3.1}, {INT64_MIN, 0.0, 0x1p61, 4.0},
    };
    for (auto test : cases) {
        EXPECT_DOUBLE_EQ(SmartDiagnose::SigmaCompute(test.value, test.mean, test.deviation), test.sigma);
        EXPECT_EQ(SmartDiagnose::Is3Sigma(test.value, test.mean, test.deviation), test.sigma > 3.0)
            << test.value;
    }
}

}  // namespace
