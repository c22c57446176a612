// The coefficient of two series, alignment included.
#include <random>

#include "benchmarks/benchmark_ratio.h"
#include "fault_algorithm/fault_correlation.h"

namespace {

FaultSeries NoisySeries(size_t count, uint64_t seed) {
    std::mt19937_64 random(seed);
    FaultSeries series(count);
    for (size_t i = 0; i < count; ++i) {
        series[i] = {static_cast<int64_t>(1691020800 + i), 800 + static_cast<int64_t>(random() % 400)};
    }
    return series;
}

// Against one plain pass that adds up the values of both series.
void Weight(benchmark::State& state) {
    const auto count = static_cast<size_t>(state.range(0));
    const FaultSeries parent = NoisySeries(count, 1);
    const FaultSeries child = NoisySeries(count, 2);
    MeasureRatio(
        state, [&] { benchmark::DoNotOptimize(WeightCompute(parent, child)); },
        [&] {
            double sum = 0.0;
            for (size_t i = 0; i < count; ++i) {
                sum += static_cast<double>(parent[i][1]) + static_cast<double>(child[i][1]);
            }
            benchmark::DoNotOptimize(sum);
        });
    state.counters["ns_per_row"] = state.counters["ours_ms"] * 1e6 / static_cast<double>(count);
}
BENCHMARK(Weight)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
