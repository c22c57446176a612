#include "benchmarks/benchmark_ratio.h"

#include <malloc.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

double ThreadMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

double Milliseconds(const std::function<void()>& work) {
    const double start = ThreadMilliseconds();
    work();
    return ThreadMilliseconds() - start;
}

// A line of /proc/self/status: a name and kilobytes.
double StatusBytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        double kilobytes = 0.0;
        if (word == name && status >> kilobytes) {
            return kilobytes * 1024.0;
        }
    }
    throw std::runtime_error("/proc/self/status without " + name);
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

double PeakMemory(const std::function<void()>& work) {
    malloc_trim(0);
    if (!(std::ofstream("/proc/self/clear_refs") << 5 << std::flush)) {  // the peak begins anew
        throw std::runtime_error("/proc/self/clear_refs");
    }
    const double before = StatusBytes("VmRSS:");
    work();
    return StatusBytes("VmHWM:") - before;
}
