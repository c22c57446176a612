// Ending the work of a command early, when its operator types Ctrl-C.
#pragma once

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <initializer_list>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zorv {
// From now on these signals interrupt the command that runs instead of ending the process, and do nothing
// while none runs; one that is ignored stays so, but for SIGINT. Call it once, before the first command.
void TakeInterrupts(std::initializer_list<int> signals = {SIGINT});

// While it lives, these signals interrupt the command that runs, as SIGINT does in a console, instead of
// ending the process, unless they are ignored; those that would have ended it do so at the end of its life.
// There is one at a time.
class TidyEnd {
public:
    explicit TidyEnd(const std::vector<int>& signals);
    ~TidyEnd();
    TidyEnd(const TidyEnd&) = delete;
    TidyEnd& operator=(const TidyEnd&) = delete;

private:
    std::vector<std::pair<int, struct sigaction>> before;
};

// Whether a signal of the TidyEnd that lives has come. Any thread; does not block.
bool IsEndAsked();

// The run of one command on the calling thread, the console's; an interrupt from before is forgotten. There
// is one at a time.
class CommandRun {
public:
    CommandRun();
    ~CommandRun();
    CommandRun(const CommandRun&) = delete;
    CommandRun& operator=(const CommandRun&) = delete;
};

// While it lives, the command that the calling thread runs never waits to try again: where it would, it is
// interrupted, in silence. There is one at a time.
class SingleTry {
public:
    SingleTry();
    ~SingleTry();
    SingleTry(const SingleTry&) = delete;
    SingleTry& operator=(const SingleTry&) = delete;

    // Why it would have waited, as whoever waits says it; empty when it never did.
    const std::string& Why() const { return why; }

private:
    friend bool GiveUpAtFirstTry(const std::string& why);
    std::string why;
};

// Interrupts the command that the calling thread runs where it has a SingleTry; else returns false.
bool GiveUpAtFirstTry(const std::string& why);

// Whether the calling thread runs a command, which may be interrupted.
bool RunsCommand();

// Whether the calling thread runs a command that was interrupted: it is to end soon, in any way that it has.
// False on every other thread, whose work goes on. Does not block.
bool Interrupted();

// Whether the calling thread runs a command, asks for the first time in it (or in its SingleTry), and was not
// interrupted.
bool IsFirstWaitOfCommand();

// Blocks for `duration`, or until the command that the calling thread runs is interrupted.
void SleepUnlessInterrupted(std::chrono::milliseconds duration);

// When a wait until `end`, which begins now, has to look whether it is interrupted: a signal's handler can
// wake no condition variable. At `end`, where the calling thread runs no command.
std::chrono::steady_clock::time_point NextLook(std::chrono::steady_clock::time_point end);

// Waits like changed.wait_until(lock, end, condition), and ends early when the command that the calling
// thread runs is interrupted. Returns the condition's last value.
template <typename Condition>
bool WaitUnlessInterrupted(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                           std::chrono::steady_clock::time_point end, Condition condition) {
    bool holds = condition();
    while (!holds && std::chrono::steady_clock::now() < end && !Interrupted()) {
        holds = changed.wait_until(lock, NextLook(end), condition);
    }
    return holds;
}
}  // namespace zorv
