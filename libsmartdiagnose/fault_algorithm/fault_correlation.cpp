#include "fault_algorithm/fault_correlation.h"

namespace SmartDiagnose {

uint32_t MeanStdevCompute(const std::vector<int64_t>& samples, double& mean, double& deviation) {
    const auto count = static_cast<int32_t>(samples.size());
    if (count < 2) {
        return 1;
    }
    double sum = 0.0;
    for (const int64_t sample : samples) {
        sum += static_cast<double>(sample);
    }
    const double average = sum / count;
    double squares = 0.0;
    for (const int64_t sample : samples) {
        const double difference = static_cast<double>(sample) - average;
        squares += difference * difference;
    }
    mean = average;
    deviation = std::sqrt(squares / (count - 1));
    return 0;
}

}  // namespace SmartDiagnose
