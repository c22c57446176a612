#include "explain/watch.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <optional>
#include <utility>

#include "explain/watch/changes.h"
#include "explain/watch/lookout.h"
#include "explain/watch/teller.h"
#include "host/process/interrupt.h"

namespace explain {
using namespace zorv;
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds FIRST_INTERVAL{2000};  // while the statistics' own step is not known
constexpr milliseconds LONGEST_PAUSE{2000};   // between two tries, as the plug-in's queries have it
constexpr milliseconds LEAST_PATIENCE{10000};
constexpr milliseconds BETWEEN_GLANCES{1000};

class Watcher {
public:
    Watcher(const Options& asked, const Input& input)
        : options(asked), lookout(asked, input), teller(asked) {}

    void Run() {
        while (LookAndTell() && WaitUntil(due)) {
        }
    }

private:
    // False when the watch is to end.
    bool LookAndTell() {
        const Clock::time_point begun = Clock::now();
        Sight sight = lookout.Look();
        const Clock::time_point now = Clock::now();
        if (Interrupted()) {
            return false;  // in the middle of it
        }
        SetInterval(sight);
        if (sight.IsUnread()) {
            due = now + std::min<milliseconds>(LONGEST_PAUSE, interval / 4);
            if (now - lastRead < patience) {
                return true;  // a writer keeps readers out for moments
            }
        } else {
            due = options.every ? std::max(due + interval, now) : WhenRowsCome(sight, begun);
            lastRead = now;
            patience = std::max<milliseconds>(interval, LEAST_PATIENCE);
        }
        const ChangeList changed = changes.After(sight);
        return teller.Tell(std::move(sight), changed, changes);
    }

    void SetInterval(const Sight& sight) {
        const int64_t step = options.every.value_or(sight.report.coverage.step);
        if (step > 0) {
            interval = std::chrono::seconds(step);
            teller.TellInterval(std::chrono::seconds(step));
        }
    }

    // An interval from the begin of a look on or, so that the next one finds new rows soon after they came, a
    // little less; where it found none, a part of one, for an interval. At least that from its end on.
    Clock::time_point WhenRowsCome(const Sight& sight, Clock::time_point begun) {
        constexpr int PARTS = 8;
        const bool hasNew = sight.report.coverage.newest != newest;
        newest = sight.report.coverage.newest;
        misses = hasNew ? 0 : misses + 1;
        const Clock::time_point soon = Clock::now() + interval / PARTS;
        return hasNew            ? std::max(begun + interval - interval / (2 * PARTS), soon)
               : misses <= PARTS ? soon
                                 : Clock::now() + interval;
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
    milliseconds interval = FIRST_INTERVAL;
    milliseconds patience = FIRST_INTERVAL;  // with a database that cannot be read
    Clock::time_point due = Clock::now();
    Clock::time_point lastRead = due;
    std::optional<int64_t> newest;  // row of the look before
    int misses = 0;                 // looks without a newer one
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
