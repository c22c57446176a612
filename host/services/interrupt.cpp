#include "host/services/interrupt.h"

#include <atomic>
#include <csignal>
#include <thread>

namespace {
std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal's handler");

thread_local bool g_runsCommand = false;
thread_local bool g_hasWaited = false;

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
    g_runsCommand = true;
    g_hasWaited = false;
}

CommandRun::~CommandRun() {
    g_runsCommand = false;
}

bool Interrupted() {
    return g_runsCommand && g_interrupted;
}

bool IsFirstWaitOfCommand() {
    const bool isFirst = g_runsCommand && !g_hasWaited && !g_interrupted;
    g_hasWaited = true;
    return isFirst;
}

void SleepUnlessInterrupted(std::chrono::milliseconds duration) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + duration;
    for (auto now = Clock::now(); now < end && !Interrupted(); now = Clock::now()) {
        std::this_thread::sleep_until(g_runsCommand ? std::min(end, now + INTERRUPT_SLICE) : end);
    }
}
