#include "host/process/interrupt.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace zorv {
namespace {
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds SLICE{20};

std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal's handler");

thread_local bool g_runsCommand = false;
thread_local bool g_hasWaited = false;
thread_local SingleTry* g_singleTry = nullptr;
thread_local bool g_hasGivenUp = false;

std::atomic<int> g_lastSignal{0};
std::atomic<bool> g_hasTidyEnd{false};

void Interrupt(int signal) {
    g_lastSignal = signal;
    g_interrupted = true;
}
}  // namespace

void TakeInterrupts(std::initializer_list<int> signals) {
    struct sigaction action {};
    action.sa_handler = Interrupt;
    action.sa_flags = SA_RESTART;
    for (const int signal : signals) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (signal == SIGINT || before.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
}

TidyEnd::TidyEnd(const std::vector<int>& signals) {
    g_lastSignal = 0;
    g_hasTidyEnd = true;
    for (const int signal : signals) {
        struct sigaction old {};
        sigaction(signal, nullptr, &old);
        if (old.sa_handler != SIG_IGN) {
            before.emplace_back(signal, old);
            TakeInterrupts({signal});
        }
    }
}

TidyEnd::~TidyEnd() {
    g_hasTidyEnd = false;
    for (const auto& [signal, old] : before) {
        sigaction(signal, &old, nullptr);
    }
    for (const auto& [signal, old] : before) {
        if (signal == g_lastSignal && old.sa_handler == SIG_DFL) {
            raise(signal);
        }
    }
}

bool IsEndAsked() {
    return g_hasTidyEnd && g_lastSignal != 0;
}

CommandRun::CommandRun() {
    g_interrupted = false;
    g_runsCommand = true;
    g_hasWaited = false;
}

CommandRun::~CommandRun() {
    g_runsCommand = false;
}

SingleTry::SingleTry() {
    g_singleTry = this;
    g_hasWaited = false;
    g_hasGivenUp = false;
}

SingleTry::~SingleTry() {
    g_singleTry = nullptr;
    g_hasGivenUp = false;
}

bool GiveUpAtFirstTry(const std::string& why) {
    if (g_singleTry == nullptr) {
        return false;
    }
    g_singleTry->why = why;
    g_hasGivenUp = true;
    return true;
}

bool RunsCommand() {
    return g_runsCommand;
}

bool Interrupted() {
    return g_runsCommand && (g_interrupted || g_hasGivenUp);
}

bool IsFirstWaitOfCommand() {
    const bool isFirst = g_runsCommand && !g_hasWaited && !g_interrupted;
    g_hasWaited = true;
    return isFirst;
}

Clock::time_point NextLook(Clock::time_point end) {
    return g_runsCommand ? std::min(end, Clock::now() + SLICE) : end;
}

void SleepUnlessInterrupted(std::chrono::milliseconds duration) {
    const auto end = Clock::now() + duration;
    while (Clock::now() < end && !Interrupted()) {
        std::this_thread::sleep_until(NextLook(end));
    }
}
}  // namespace zorv
