// How two series go together. Any thread; nothing here is undefined for any finite input.
#pragma once

#include <cstddef>
#include <optional>

#include "explain/finding/usual.h"
#include "fault_common/fault_series.h"

namespace explain {

// The fewest times that make a correlation.
constexpr size_t FEWEST_COMMON = 3;

// Two series over the times that both have; a time that both have twice counts twice.
struct Common {
    size_t count = 0;
    std::optional<double> correlation;  // none for too few times, or a constant series
};
Common CorrelationOf(const FaultSeries& a, const FaultSeries& b);

}  // namespace explain
