#include "simulator/live/live_clock.h"

#include <algorithm>

namespace lumosim {

LiveClock::LiveClock(int64_t beginTime, int64_t clockSpeed, int64_t sampleStep)
    : started(std::chrono::steady_clock::now()),
      begin(static_cast<double>(beginTime)),
      speed(static_cast<double>(clockSpeed)),
      step(static_cast<double>(sampleStep)) {
    Now();
}

Seconds LiveClock::Now() {
    const Seconds real = std::chrono::system_clock::now().time_since_epoch();
    const Seconds own = begin + speed * (std::chrono::steady_clock::now() - started);
    caughtUp = caughtUp || real - own < step;
    return caughtUp ? real : own;
}

Seconds LiveClock::Until(int64_t time) {
    const Seconds left = Seconds(static_cast<double>(time)) - Now();
    return std::max(Seconds(0), caughtUp ? left : left / speed);
}

}  // namespace lumosim
