// Signals as messages.
#pragma once

#include <csignal>

#include "simulator/live/live_clock.h"

namespace lumosim {

// While it lives, SIGINT, SIGTERM and SIGHUP wait until they are fetched. For the only thread of a process.
class Signals {
public:
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    // Waits up to `time` for a signal, but not longer than a second; returns its number, 0: none came.
    int Wait(Seconds time);

private:
    sigset_t fetched{};
    sigset_t before{};
};

}  // namespace lumosim
