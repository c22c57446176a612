// Keeps an error that repeats from flooding the log.
#pragma once

#include <cstdint>

#include "fault_common/fault_log.h"
#include "fault_common/fault_mutex.h"

// The limiter of one error site, a static object there. In each window of time it lets the first few lines
// pass and counts the rest; the count is told when a window ends, at most once in ten windows. Safe to use
// from several threads. Times are in jiffies.
class FaultRateLimiter {
public:
    constexpr FaultRateLimiter(uint64_t windowLength, uint32_t linesPerWindow)
        : window(windowLength), burst(linesPerWindow) {}

    // True when the line of `site` may be logged now. May log the count of suppressed lines first.
    bool Admit(const FaultLogSite& site);

private:
    const uint64_t window;
    const uint32_t burst;
    FaultMutex mutex;
    uint64_t windowStart FAULT_GUARDED_BY(mutex) = 0;
    uint32_t lines FAULT_GUARDED_BY(mutex) = 0;
    uint32_t suppressed FAULT_GUARDED_BY(mutex) = 0;
    uint64_t lastReport FAULT_GUARDED_BY(mutex) = 0;
};

// The usual setting: 3 lines in 15000 jiffies, one minute on a storage node.
class FaultUsualLimiter : public FaultRateLimiter {
public:
    constexpr FaultUsualLimiter() : FaultRateLimiter(15000, 3) {}
};

// Logs a line through `limiter`.
#define FAULT_LOG_LIMITED(limiter, site, level, ...)    \
    do {                                                \
        const FaultLogSite limitedSite = (site);        \
        if ((limiter).Admit(limitedSite)) {             \
            FAULT_LOG(limitedSite, level, __VA_ARGS__); \
        }                                               \
    } while (false)
