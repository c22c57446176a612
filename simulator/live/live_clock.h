// The storage system's clock.
#pragma once

#include <chrono>
#include <cstdint>

namespace lumosim {

using Seconds = std::chrono::duration<double>;

// Begins in the past and runs `speed` times as fast as real time, until it has caught up; from then on it is
// real time. So it is never in the future.
class LiveClock {
public:
    // `begin` is in UTC seconds. Less than `step` seconds behind counts as caught up.
    LiveClock(int64_t begin, int64_t speed, int64_t step);

    // UTC.
    Seconds Now();
    bool HasCaughtUp() const { return caughtUp; }
    // How long, in real time, it takes until the clock shows `time`; 0 when it has done so. Less when it
    // catches up meanwhile.
    Seconds Until(int64_t time);

private:
    std::chrono::steady_clock::time_point started;
    Seconds begin;
    double speed;
    Seconds step;
    bool caughtUp = false;
};

}  // namespace lumosim
