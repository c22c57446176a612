// The detector's own work on one point: mean, deviation, and the test of every sample.
#include <cstdint>
#include <random>
#include <vector>

#include "benchmarks/benchmark_ratio.h"
#include "fault_spectrum_graph/fault_detect_object.h"

namespace {

constexpr const char* POINT = "TGT_LUMO_HOST_READ";

std::vector<int64_t> NoisyDelays(size_t count) {
    std::mt19937_64 random(42);
    std::vector<int64_t> delays(count);
    for (int64_t& delay : delays) {
        delay = 800 + static_cast<int64_t>(random() % 400);
    }
    delays[count / 2] = 90000;
    return delays;
}

// Against three plain passes that add the samples as doubles in order: what reading the series takes.
void DetectOnePoint(benchmark::State& state) {
    const auto count = static_cast<size_t>(state.range(0));
    FaultDetectObject detector;
    detector.points = {POINT};
    detector.data[POINT]["avgdelay"] = NoisyDelays(count);
    detector.data[POINT]["curtime"].assign(count, 0);
    const std::vector<int64_t>& delays = detector.data[POINT]["avgdelay"];
    MeasureRatio(
        state, [&] { benchmark::DoNotOptimize(detector.DoDetect("", "")); },
        [&] {
            for (int pass = 0; pass < 3; ++pass) {
                double sum = 0.0;
                for (const int64_t delay : delays) {
                    sum += static_cast<double>(delay);
                }
                benchmark::DoNotOptimize(sum);
            }
        });
}
BENCHMARK(DetectOnePoint)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
