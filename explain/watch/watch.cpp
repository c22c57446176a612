#include "explain/watch.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <csignal>

#include "explain/watch/changes.h"
#include "explain/watch/lookout.h"
#include "explain/watch/teller.h"
#include "host/process/interrupt.h"

namespace explain {
using namespace zorv;
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::chrono::seconds FIRST_INTERVAL{2};  // while the statistics' own step is not known
constexpr milliseconds LONGEST_PAUSE{2000};        // between two tries, as the plug-in's queries have it
constexpr milliseconds BETWEEN_GLANCES{1000};

class Watcher {
public:
    Watcher(const Options& asked, const Input& input)
        : options(asked), lookout(asked, input), teller(asked) {}

    void Run() {
        Clock::time_point due = Clock::now();
        for (;;) {
            Sight sight = lookout.Look();
            if (Interrupted()) {
                return;  // in the middle of it
            }
            const Clock::time_point now = Clock::now();
            const milliseconds pause = std::min<milliseconds>(LONGEST_PAUSE, milliseconds(interval) / 4);
            if (sight.IsUnread() && now + pause < due + interval) {
                if (!WaitUntil(now + pause)) {  // a writer keeps readers out for moments
                    return;
                }
                continue;
            }
            SetInterval(sight);
            const ChangeList changed = changes.After(sight);
            due = std::max(due + interval, now);
            if (!teller.Tell(std::move(sight), changed, changes) || !WaitUntil(due)) {
                return;
            }
        }
    }

private:
    void SetInterval(const Sight& sight) {
        const int64_t step = options.every.value_or(sight.report.coverage.step);
        if (step > 0) {
            interval = std::chrono::seconds(step);
            teller.TellInterval(interval);
        }
    }

    // False when the watch is to end.
    bool WaitUntil(Clock::time_point end) {
        while (!Interrupted() && teller.Glance()) {
            const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
            if (left.count() <= 0) {
                return true;
            }
            poll(nullptr, 0, static_cast<int>(std::min(left, BETWEEN_GLANCES).count()));  // a signal ends it
        }
        return false;
    }

    const Options& options;
    Lookout lookout;
    Changes changes;
    Teller teller;
    std::chrono::seconds interval = FIRST_INTERVAL;
};

}  // namespace

int Watch(const Options& options, const Input& input) {
    const CommandRun run;
    TakeInterrupts({SIGINT, SIGTERM, SIGHUP});
    std::signal(SIGPIPE, SIG_IGN);
    input.ReadConfiguration();
    Watcher(options, input).Run();
    return STATUS_ANSWERED;
}

}  // namespace explain
