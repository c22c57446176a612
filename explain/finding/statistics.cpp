#include "explain/finding/statistics.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "fault_algorithm/fault_correlation.h"

namespace explain {
namespace {

constexpr double MAD_TO_DEVIATION = 1.4826;  // for normal noise
constexpr double MEDIAN_SHARE = 0.02;        // no series is steadier than that
constexpr size_t TAIL = 20;                  // one of so many values is of the tail
constexpr size_t FEWEST_OF_TAIL = 4;
constexpr double RARELY = 30.0;

bool IsConstant(const FaultSeries& series) {
    return std::all_of(series.begin(), series.end(),
                       [&](const FaultSeriesRow& row) { return row[1] == series.front()[1]; });
}

}  // namespace

double MedianOf(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 != 0) {
        return *middle;
    }
    const double below = *std::max_element(values.begin(), middle);
    return below + (*middle - below) / 2;
}

double HighestByChance(std::vector<double> values) {
    const size_t count = values.size() / TAIL;
    if (count < FEWEST_OF_TAIL) {
        return 0.0;
    }
    const auto from = values.end() - static_cast<std::ptrdiff_t>(count);
    std::nth_element(values.begin(), from, values.end());
    const double begin = *from;
    std::vector<double> tail(from, values.end());
    const double half = MedianOf(tail) - begin;
    return begin + half * std::log2(RARELY * static_cast<double>(count));
}

double MeanOf(const std::vector<double>& values) {
    const auto count = static_cast<double>(values.size());
    return std::accumulate(values.begin(), values.end(), 0.0) / count;
}

Usual UsualOf(std::vector<double> values) {
    Usual usual;
    usual.median = MedianOf(values);
    for (double& value : values) {
        value = std::fabs(value - usual.median);
    }
    const double scale =
        std::max(MAD_TO_DEVIATION * MedianOf(values), MEDIAN_SHARE * std::fabs(usual.median));
    usual.scale = scale > 0.0 ? scale : 1.0;
    return usual;
}

Common CorrelationOf(const FaultSeries& a, const FaultSeries& b) {
    FaultSeries commonA;
    FaultSeries commonB;
    auto other = b.begin();
    for (const FaultSeriesRow& row : a) {
        other = std::find_if(other, b.end(), [&](const FaultSeriesRow& one) { return one[0] >= row[0]; });
        if (other != b.end() && (*other)[0] == row[0]) {
            commonA.push_back(row);
            commonB.push_back(*other++);
        }
    }
    Common common;
    common.count = commonA.size();
    if (common.count >= FEWEST_COMMON && !IsConstant(commonA) && !IsConstant(commonB)) {
        common.correlation = WeightCompute(commonA, commonB);
    }
    return common;
}

}  // namespace explain
