#include "simulator/live/signals.h"

#include <algorithm>
#include <ctime>

namespace lumosim {

Signals::Signals() {
    sigemptyset(&fetched);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&fetched, signal);
    }
    sigprocmask(SIG_BLOCK, &fetched, &before);
}

Signals::~Signals() {
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

int Signals::Wait(Seconds time) {
    // Somebody may set the machine's clock meanwhile.
    constexpr Seconds LONGEST(1);
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(std::min(time, LONGEST));
    const timespec timeout{nanoseconds.count() / 1000000000, nanoseconds.count() % 1000000000};
    return std::max(0, sigtimedwait(&fetched, nullptr, &timeout));
}

}  // namespace lumosim
