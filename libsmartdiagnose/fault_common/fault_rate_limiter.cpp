#include "fault_common/fault_rate_limiter.h"

#include "agent/agent_time.h"

bool FaultRateLimiter::Admit(const FaultLogSite& site) {
    FaultLock lock(mutex);
    // Read inside: a thread that waited with an older time would seem to be a window ahead.
    const uint64_t now = vopx_get_jiffies();
    if (now - windowStart >= window) {
        windowStart = now;
        lines = 0;
        if (suppressed > 0 && now - lastReport >= 10 * window) {
            FAULT_LOG(site, FAULT_ERROR, "print: %u messages suppressed.%s,line=%d.", suppressed,
                      site.function, static_cast<int32_t>(site.line));
            suppressed = 0;
            lastReport = now;
        }
    }
    if (lines >= burst) {
        ++suppressed;
        return false;
    }
    ++lines;
    return true;
}
