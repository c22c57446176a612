// A percentage on the terminal.
#pragma once

#include <chrono>

namespace lumosim {

// Shows on stderr how far the work is, at most five times a second, and wipes it out at the end of its life.
// Does nothing when stderr is no terminal.
class TerminalProgress {
public:
    TerminalProgress();
    ~TerminalProgress();
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    // `done` from 0 to 1.
    void Show(double done);

private:
    bool isTerminal;
    bool shown = false;
    std::chrono::steady_clock::time_point lastTime;
};

}  // namespace lumosim
