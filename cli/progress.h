// A bar and a percentage on the terminal.
#pragma once

#include <chrono>
#include <string>

namespace cli {

// Shows on stderr how far the work is, at most five times a second, and wipes it out at the end of its life.
// Does nothing when stderr is no terminal.
class TerminalProgress {
public:
    // `label` stands before the percentage.
    explicit TerminalProgress(std::string label);
    ~TerminalProgress();
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    // `done` from 0 to 1.
    void Show(double done);

private:
    const std::string label;
    bool isTerminal;
    bool shown = false;
    std::chrono::steady_clock::time_point lastTime;
};

}  // namespace cli
