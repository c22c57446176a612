#include "fault_algorithm/fault_correlation.h"

#include <algorithm>

#include "fault_common/fault_log.h"

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

std::vector<size_t> Outliers(const std::vector<int64_t>& samples) {
    std::vector<size_t> outliers;
    double mean = 0.0;
    double deviation = 0.0;
    if (MeanStdevCompute(samples, mean, deviation) != 0) {
        return outliers;
    }
    for (size_t i = 0; i < samples.size(); ++i) {
        if (Is3Sigma(samples[i], mean, deviation)) {
            outliers.push_back(i);
        }
    }
    return outliers;
}

}  // namespace SmartDiagnose

namespace {

constexpr double NO_CORRELATION = -1.0;
constexpr double ZERO_DEVIATION = 1e-15;

// One series as the alignment sees it: its aligned values so far.
class AlignedValues {
public:
    AlignedValues(const FaultSeries& toAlign, size_t room) : series(toAlign) { values.reserve(room); }

    bool Ended() const { return next == series.size(); }
    int64_t NextTime() const { return series[next][0]; }

    // Takes the next sample.
    void Take() { Append(series[next++][1]); }

    // Fills in for a sample that only the other series has.
    void Fill() {
        if (Ended()) {
            Append(last);
        } else {
            Append(values.empty() ? series[next][1] : HalfSum(series[next][1], last));
        }
    }

    bool IsConstant() const { return constant; }
    const std::vector<double>& Values() const { return values; }

    // The sum of shares: each value is divided before it is added.
    double Mean() const {
        const auto count = static_cast<double>(values.size());
        double mean = 0.0;
        for (const double value : values) {
            mean += value / count;
        }
        return mean;
    }

private:
    // The sum of two values may need 65 bits.
    static int64_t HalfSum(int64_t a, int64_t b) {
        __extension__ using Wide = __int128;
        return static_cast<int64_t>((Wide{a} + b) / 2);
    }

    void Append(int64_t value) {
        constant = constant && (values.empty() || value == last);
        last = value;
        values.push_back(static_cast<double>(value));
    }

    const FaultSeries& series;
    size_t next = 0;
    int64_t last = 0;
    bool constant = true;
    std::vector<double> values;
};

void Align(AlignedValues& x, AlignedValues& y) {
    while (!x.Ended() || !y.Ended()) {
        const bool takeX = !x.Ended() && (y.Ended() || x.NextTime() <= y.NextTime());
        const bool takeY = !y.Ended() && (x.Ended() || y.NextTime() <= x.NextTime());
        takeX ? x.Take() : x.Fill();
        takeY ? y.Take() : y.Fill();
    }
}

}  // namespace

double WeightCompute(const FaultSeries& parentSeries, const FaultSeries& childSeries) {
    if (parentSeries.empty() || childSeries.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "input data is empty.");
        return NO_CORRELATION;
    }
    const size_t room = std::max(parentSeries.size(), childSeries.size());
    AlignedValues x(parentSeries, room);
    AlignedValues y(childSeries, room);
    Align(x, y);
    if (x.IsConstant() || y.IsConstant()) {
        return NO_CORRELATION;
    }
    const double meanX = x.Mean();
    const double meanY = y.Mean();
    double sumXX = 0.0;
    double sumYY = 0.0;
    double sumXY = 0.0;
    for (size_t k = 0; k < x.Values().size(); ++k) {
        const double differenceX = x.Values()[k] - meanX;
        const double differenceY = y.Values()[k] - meanY;
        sumXX += differenceX * differenceX;
        sumYY += differenceY * differenceY;
        sumXY += differenceX * differenceY;
    }
    const double root = std::sqrt(sumXX * sumYY);
    if (root >= -ZERO_DEVIATION && root <= ZERO_DEVIATION) {
        return NO_CORRELATION;
    }
    return sumXY / root;
}
