// Statistics: mean and deviation of a series, the three-sigma rule, and the correlation of two series. Any
// thread.

#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fault_common/fault_series.h"

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

// Which of `samples` lie more than three deviations from their mean, to either side.
std::vector<size_t> Outliers(const std::vector<int64_t>& samples);

}  // namespace SmartDiagnose

// The Pearson coefficient of two series of ascending times, in [-1, 1] but for rounding; -1.0 also means that
// there is none: a series is empty or constant. The series are aligned by time first: a sample that one of
// them lacks is filled with the half-sum (towards zero) of its last value so far and its next one, or with
// its last value once it has ended. Linear in the number of rows; the order of the additions is part of the
// result.
double WeightCompute(const FaultSeries& parentSeries, const FaultSeries& childSeries);
