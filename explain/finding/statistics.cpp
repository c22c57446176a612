#include "explain/finding/statistics.h"

#include <algorithm>

#include "fault_algorithm/fault_correlation.h"

namespace explain {
namespace {

bool IsConstant(const FaultSeries& series) {
    return std::all_of(series.begin(), series.end(),
                       [&](const FaultSeriesRow& row) { return row[1] == series.front()[1]; });
}

}  // namespace

Common CorrelationOf(const FaultSeries& a, const FaultSeries& b) {
    FaultSeries commonA;
    FaultSeries commonB;
    auto other = b.begin();
    for (const FaultSeriesRow& row : a) {
        other = std::find_if(other, b.end(), [&](const FaultSeriesRow& one) { return one[0] >= row[0]; });
        if (other != b.end() && (*other)[0] == row[0]) {
            commonA.push_back(row);
            commonB.push_back(*other++);
        }
    }
    Common common;
    common.count = commonA.size();
    if (common.count >= FEWEST_COMMON && !IsConstant(commonA) && !IsConstant(commonB)) {
        common.correlation = WeightCompute(commonA, commonB);
    }
    return common;
}

}  // namespace explain
