#include "cli/progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace cli {

TerminalProgress::TerminalProgress(std::string text)
    : label(std::move(text)),
      isTerminal(isatty(STDERR_FILENO) == 1),
      lastTime(std::chrono::steady_clock::now()) {}

TerminalProgress::~TerminalProgress() {
    if (shown) {
        std::fputs("\r\033[K", stderr);
    }
}

void TerminalProgress::Show(double done) {
    constexpr int BAR_CELLS = 30;
    constexpr auto INTERVAL = std::chrono::milliseconds(200);
    const auto now = std::chrono::steady_clock::now();
    if (!isTerminal || now - lastTime < INTERVAL) {
        return;
    }
    const std::string bar(static_cast<size_t>(done * BAR_CELLS), '#');
    std::fprintf(stderr, "\r%s: [%-*s] %3.0f %%", label.c_str(), BAR_CELLS, bar.c_str(), done * 100);
    shown = true;
    lastTime = now;
}

}  // namespace cli
