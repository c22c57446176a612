// The statistics of the detector: mean and deviation of a series, and the three-sigma rule. Pure functions;
// any thread.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace SmartDiagnose {

// Mean and sample (n - 1) standard deviation of `samples`, summed in their order. Returns 0; 1, and writes
// nothing, when there are fewer than two samples. Two passes, no copies.
uint32_t MeanStdevCompute(const std::vector<int64_t>& samples, double& mean, double& deviation);

// Defined here because the detector calls them once per sample.

// How many deviations `value` lies from the mean, to either side; 0 when the deviation is 0 (within 1e-15).
inline double SigmaCompute(int64_t value, double& mean, const double& deviation) {
    constexpr double ZERO_DEVIATION = 1e-15;
    if (deviation >= -ZERO_DEVIATION && deviation <= ZERO_DEVIATION) {
        return 0.0;
    }
    return std::fabs(static_cast<double>(value) - mean) / deviation;
}

// Whether `value` lies more than three deviations from the mean, to either side.
inline bool Is3Sigma(int64_t value, double& mean, double& deviation) {
    return SigmaCompute(value, mean, deviation) > 3.0;
}

}  // namespace SmartDiagnose
