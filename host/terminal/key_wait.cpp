#include "host/terminal/key_wait.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>

namespace zorv {
namespace {
constexpr std::array<int, 5> SIGNALS = {SIGWINCH, SIGCONT, SIGTERM, SIGHUP, SIGQUIT};

// What wakes a wait: the number of a signal, or 0 when there are lines to print.
struct Pipe {
    Pipe() {
        if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
            throw std::runtime_error("there is no pipe for the terminal's signals");
        }
    }
    std::array<int, 2> ends{};
};

int g_wakeDescriptor = -1;  // set before the first handler can run
std::array<struct sigaction, SIGNALS.size()> g_before;

Pipe& WakePipe() {
    static Pipe pipe;
    g_wakeDescriptor = pipe.ends[1];
    return pipe;
}

void Wake(int signal) {
    const int reason = errno;
    const char number = static_cast<char>(signal);
    static_cast<void>(write(g_wakeDescriptor, &number, sizeof number) == sizeof number);
    errno = reason;
}

KeyWait::Event EventOf(int signal) {
    switch (signal) {
        case 0:
            return KeyWait::Event::LINES;
        case SIGWINCH:
            return KeyWait::Event::RESIZED;
        case SIGCONT:
            return KeyWait::Event::CONTINUED;
        default:
            return KeyWait::Event::ENDED;
    }
}
}  // namespace

KeyWait::KeyWait(bool holdsLines) {
    const Pipe& pipe = WakePipe();
    struct sigaction action {};
    action.sa_handler = Wake;
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < SIGNALS.size(); ++i) {
        sigaction(SIGNALS[i], nullptr, &g_before[i]);
        if (g_before[i].sa_handler != SIG_IGN) {
            sigaction(SIGNALS[i], &action, nullptr);
        }
    }
    if (holdsLines) {
        lines.emplace(pipe.ends[1]);
    }
}

KeyWait::~KeyWait() {
    for (size_t i = 0; i < SIGNALS.size(); ++i) {
        sigaction(SIGNALS[i], &g_before[i], nullptr);
    }
}

KeyWait::Event KeyWait::Next() {
    const int wake = WakePipe().ends[0];
    for (;;) {
        std::array<pollfd, 2> waited = {{{STDIN_FILENO, POLLIN, 0}, {wake, POLLIN, 0}}};
        poll(waited.data(), waited.size(), -1);
        char number = 0;
        if (waited[1].revents != 0 && read(wake, &number, sizeof number) == sizeof number) {
            const Event event = EventOf(number);
            endSignal = event == Event::ENDED ? number : 0;
            return event;
        }
        if (waited[0].revents != 0) {
            return Event::KEY;
        }
    }
}
}  // namespace zorv
