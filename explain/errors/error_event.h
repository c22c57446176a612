// When a point counted more errors than what is usual for it explains.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "explain/finding/series.h"

namespace explain {

// A type of errors: a column of the statistics, and the name that the commands have for it.
struct ErrorType {
    int32_t index = 0;   // -1 to -5, as in g_mapErrIdxName
    std::string name;    // "IOERROR", "IORETRY", "IOACCESSDENY"; empty for an index without a name
    std::string column;  // "errCode0" to "errCode4"
};

// The errors that were counted in an interval.
struct ErrorCount {
    int64_t time = 0;  // UTC seconds
    int64_t count = 0;
};
using ErrorCounts = std::vector<ErrorCount>;  // of ascending times; intervals without errors are left out

// From the first interval with too many errors to the last one.
struct ErrorEvent : Window {
    size_t first = 0;  // numbers of the intervals that were looked at
    size_t last = 0;
    int64_t count = 0;      // errors in it
    double expected = 0.0;  // of them, those that the usual rate explains
    int64_t peakTime = 0;   // the interval with most
    int64_t peakCount = 0;
    bool isOngoing = false;  // at the end of what was looked at

    double Extra() const { return static_cast<double>(count) - expected; }
};

}  // namespace explain
