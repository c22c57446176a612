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

// A value of each of two series, computed with as one: this halves the divisions, which take most of the
// time, and leaves each series' additions in their order.
using Pair [[gnu::vector_size(2 * sizeof(double))]] = double;

// One series as the alignment sees it: how far it has come, and its last aligned value.
class AlignedSeries {
public:
    // There must be a row. Its value, halved with itself, is what stands for samples before it.
    explicit AlignedSeries(const FaultSeries& toAlign) : series(toAlign), last(toAlign[0][1]) {}

    bool Ended() const { return next == series.size(); }
    int64_t NextTime() const { return series[next][0]; }

    // The next sample.
    double Take() {
        last = series[next++][1];
        return static_cast<double>(last);
    }

    // What stands for a sample that only the other series has.
    double Fill() {
        if (!Ended()) {
            last = HalfSum(series[next][1], last);
        }
        return static_cast<double>(last);
    }

private:
    // The sum of two values may need 65 bits.
    static int64_t HalfSum(int64_t a, int64_t b) {
        __extension__ using Wide = __int128;
        return static_cast<int64_t>((Wide{a} + b) / 2);
    }

    const FaultSeries& series;
    size_t next = 0;
    int64_t last;
};

// Hands the aligned values to `visit`, pair by pair. To align again for each pass is faster than to write the
// values to fresh memory and read them back.
template <typename Visit>
void ForEachAligned(const FaultSeries& parentSeries, const FaultSeries& childSeries, Visit visit) {
    AlignedSeries x(parentSeries);
    AlignedSeries y(childSeries);
    while (!x.Ended() || !y.Ended()) {
        const bool both = !x.Ended() && !y.Ended();
        if (both && x.NextTime() == y.NextTime()) {
            visit(Pair{x.Take(), y.Take()});
        } else if (y.Ended() || (both && x.NextTime() < y.NextTime())) {
            visit(Pair{x.Take(), y.Fill()});
        } else {
            visit(Pair{x.Fill(), y.Take()});
        }
    }
}

// Alignment adds nothing but values between a series' own: it is constant before when it is afterwards.
bool IsConstant(const FaultSeries& series) {
    return std::all_of(series.begin(), series.end(),
                       [&](const FaultSeriesRow& row) { return row[1] == series[0][1]; });
}

}  // namespace

double WeightCompute(const FaultSeries& parentSeries, const FaultSeries& childSeries) {
    if (parentSeries.empty() || childSeries.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "input data is empty.");
        return NO_CORRELATION;
    }
    if (IsConstant(parentSeries) || IsConstant(childSeries)) {
        return NO_CORRELATION;
    }
    double count = 0.0;
    ForEachAligned(parentSeries, childSeries, [&](Pair) { count += 1.0; });
    Pair means{};  // sums of shares: each value is divided before it is added
    ForEachAligned(parentSeries, childSeries, [&](Pair values) { means += values / count; });
    Pair squares{};
    double products = 0.0;
    ForEachAligned(parentSeries, childSeries, [&](Pair values) {
        const Pair differences = values - means;
        squares += differences * differences;
        products += differences[0] * differences[1];
    });
    const double root = std::sqrt(squares[0] * squares[1]);
    if (root >= -ZERO_DEVIATION && root <= ZERO_DEVIATION) {
        return NO_CORRELATION;
    }
    return products / root;
}
