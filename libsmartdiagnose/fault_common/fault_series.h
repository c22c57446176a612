// Statistics over time.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

// One sample: its time in UTC seconds since 1970, and the value of one statistics column.
using FaultSeriesRow = std::array<int64_t, 2>;

// Samples in the order in which the database returned them, table by table.
using FaultSeries = std::vector<FaultSeriesRow>;
