#include "explain/finding/series.h"

#include <algorithm>
#include <iterator>

namespace explain {
namespace {

template <typename Value>
std::vector<double> Column(const Samples& samples, Value value) {
    std::vector<double> column;
    column.reserve(samples.size());
    std::transform(samples.begin(), samples.end(), std::back_inserter(column), value);
    return column;
}

}  // namespace

std::pair<size_t, size_t> PositionsIn(const Samples& samples, const Window& window) {
    const auto position = [&](auto isBefore) {
        return static_cast<size_t>(std::partition_point(samples.begin(), samples.end(), isBefore) -
                                   samples.begin());
    };
    const size_t first = position([&](const Sample& sample) { return sample.time < window.start; });
    const size_t end = position([&](const Sample& sample) { return sample.time <= window.end; });
    return {first, std::max(first, end)};
}

Samples WithoutIdle(const Samples& samples) {
    const bool counts = std::any_of(samples.begin(), samples.end(),
                                    [](const Sample& sample) { return sample.requests != 0.0; });
    Samples busy;
    std::copy_if(samples.begin(), samples.end(), std::back_inserter(busy), [counts](const Sample& sample) {
        return !counts || sample.requests != 0.0 || sample.delay != 0.0;
    });
    return busy;
}

std::vector<double> DelaysOf(const Samples& samples) {
    return Column(samples, [](const Sample& sample) { return sample.delay; });
}

std::vector<double> RequestsOf(const Samples& samples) {
    return Column(samples, [](const Sample& sample) { return sample.requests; });
}

}  // namespace explain
