#include "benchmarks/benchmark_ratio.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace {

double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

void MeasureRatio(benchmark::State& state, const std::function<void()>& ours,
                  const std::function<void()>& bare) {
    std::vector<double> oursTimes;
    std::vector<double> bareTimes;
    for ([[maybe_unused]] auto step : state) {
        const bool oursFirst = oursTimes.size() % 2 == 0;
        if (oursFirst) {
            oursTimes.push_back(Milliseconds(ours));
        }
        bareTimes.push_back(Milliseconds(bare));
        if (!oursFirst) {
            oursTimes.push_back(Milliseconds(ours));
        }
    }
    const double oursMedian = Median(oursTimes);
    const double bareMedian = Median(bareTimes);
    state.counters["ours_ms"] = oursMedian;
    state.counters["bare_ms"] = bareMedian;
    state.counters["ratio"] = oursMedian / bareMedian;
}
