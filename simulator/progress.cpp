#include "simulator/progress.h"

#include <unistd.h>

#include <cstdio>

namespace lumosim {

TerminalProgress::TerminalProgress()
    : isTerminal(isatty(STDERR_FILENO) == 1), lastTime(std::chrono::steady_clock::now()) {}

TerminalProgress::~TerminalProgress() {
    if (shown) {
        std::fputs("\r\033[K", stderr);
    }
}

void TerminalProgress::Show(double done) {
    constexpr auto INTERVAL = std::chrono::milliseconds(200);
    const auto now = std::chrono::steady_clock::now();
    if (!isTerminal || now - lastTime < INTERVAL) {
        return;
    }
    std::fprintf(stderr, "\rwriting the world: %3.0f %%", done * 100);
    shown = true;
    lastTime = now;
}

}  // namespace lumosim
