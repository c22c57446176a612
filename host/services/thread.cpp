#include "host/services/thread.h"

#include <csignal>
#include <utility>

#include "agent/agent_thread.h"
#include "host/services/log.h"

namespace zorv {
namespace {
// Blocks the signals for the calling thread, and so for the threads it starts, until the end of its life.
class TerminalSignalsBlocked {
public:
    TerminalSignalsBlocked() {
        sigset_t blocked;
        sigemptyset(&blocked);
        for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP, SIGCONT, SIGWINCH}) {
            sigaddset(&blocked, number);
        }
        pthread_sigmask(SIG_BLOCK, &blocked, &before);
    }
    ~TerminalSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    TerminalSignalsBlocked(const TerminalSignalsBlocked&) = delete;
    TerminalSignalsBlocked& operator=(const TerminalSignalsBlocked&) = delete;

private:
    sigset_t before{};
};
}  // namespace

std::thread StartThread(std::function<void()> work) {
    const TerminalSignalsBlocked blocked;
    return std::thread(std::move(work));
}
}  // namespace zorv

int32_t create_thread_nopreempt_raw(VOPX_THREAD_ENTRY entry, void* arg, uint32_t /*flags*/) {
    if (entry == nullptr) {
        return 1;
    }
    const auto run = [=] { zorv::Guarded("thread", 0, [=] { return entry(arg); }); };
    return zorv::Guarded("thread start", 1, [&] {
        zorv::StartThread(run).detach();
        return 0;
    });
}
