#include "explain/finding/usual.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace explain {
namespace {

constexpr size_t TAIL = 20;  // one of so many values is of the tail
constexpr size_t FEWEST_OF_TAIL = 4;
constexpr double RARELY = 30.0;
constexpr double MAD_TO_DEVIATION = 1.4826;  // for normal noise
constexpr double MEDIAN_SHARE = 0.02;        // no series is steadier than that

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

double HighestByChance(std::vector<double> values) {
    const size_t count = values.size() / TAIL;
    if (count < FEWEST_OF_TAIL) {
        return 0.0;
    }
    const auto from = values.end() - static_cast<std::ptrdiff_t>(count);
    std::nth_element(values.begin(), from, values.end());
    const double begin = *from;
    const auto upper = from + static_cast<std::ptrdiff_t>(count * 3 / 4);
    std::nth_element(from, upper, values.end());
    std::vector<double> tail(from, values.end());
    const double middle = MedianOf(tail);
    if (middle == *upper) {  // as of few different values: it goes no higher
        return middle;
    }
    return begin + (middle - begin) * std::log2(RARELY * static_cast<double>(count));
}

}  // namespace explain
