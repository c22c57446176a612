#include "host/services/interrupt.h"

#include <atomic>
#include <csignal>
#include <thread>

namespace {
std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal's handler");

thread_local bool t_runsCommand = false;
thread_local bool t_hasWaited = false;

void Interrupt(int /*signal*/) {
    g_interrupted = true;
}
}  // namespace

void TakeInterrupts() {
    struct sigaction action {};
    action.sa_handler = Interrupt;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}

CommandRun::CommandRun() {
    g_interrupted = false;
    t_runsCommand = true;
    t_hasWaited = false;
}

CommandRun::~CommandRun() {
    t_runsCommand = false;
}

bool Interrupted() {
    return t_runsCommand && g_interrupted;
}

bool IsFirstWaitOfCommand() {
    const bool isFirst = t_runsCommand && !t_hasWaited && !g_interrupted;
    t_hasWaited = true;
    return isFirst;
}

void SleepUnlessInterrupted(std::chrono::milliseconds duration) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + duration;
    for (auto now = Clock::now(); now < end && !Interrupted(); now = Clock::now()) {
        std::this_thread::sleep_until(t_runsCommand ? std::min(end, now + INTERRUPT_SLICE) : end);
    }
}
