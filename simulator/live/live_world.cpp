#include "simulator/live/live_world.h"

#include <algorithm>
#include <chrono>
#include <cstring>

#include "simulator/live/live_clock.h"
#include "simulator/live/live_database.h"
#include "simulator/live/signals.h"
#include "text/counted.h"

namespace lumosim {
namespace {

bool IsStop(int signal) {
    return signal == SIGINT || signal == SIGTERM;
}

class Player {
public:
    Player(const WorldModel& worldModel, const LiveOptions& liveOptions, const EventListener& listener,
           Signals& processSignals, const LiveClock& systemClock)
        : model(worldModel),
          live(liveOptions),
          tell(listener),
          signals(processSignals),
          clock(systemClock),
          database(model, live),
          next(model.options.end),
          nextRecreation(NextRecreation()) {}

    void Play() {
        int signal = 0;
        for (bool isLate = !clock.HasCaughtUp(); !IsStop(signal) && !IsOver();) {
            if (isLate && clock.HasCaughtUp()) {
                isLate = false;
                tell(next, "caught up with real time");
            }
            if (!IsComplete() && clock.Now() >= Time(next)) {
                WriteInstant();
            }
            signal = signals.Wait(clock.Until(IsComplete() ? *end : next));
            if (signal == SIGHUP) {
                Recreate();
            }
        }
        tell(Now(), std::string("stopped: ") + (IsStop(signal) ? strsignal(signal) : "time is over") + "; " +
                        Counted(writes, "write") + ", the longest took " +
                        std::to_string(longestWrite.count()) + " ms");
    }

private:
    static Seconds Time(int64_t time) { return Seconds(static_cast<double>(time)); }
    int64_t Now() { return static_cast<int64_t>(clock.Now().count()); }
    // Whether all samples are written, and whether the last one's interval has passed as well.
    bool IsComplete() const { return end && next >= *end; }
    bool IsOver() { return IsComplete() && clock.Now() >= Time(*end); }
    std::optional<int64_t> NextRecreation() const {
        return live.recreation ? std::optional(next + *live.recreation) : std::nullopt;
    }

    void WriteInstant() {
        if (nextRecreation && next >= *nextRecreation) {
            Recreate();
        }
        const auto begin = std::chrono::steady_clock::now();
        const std::string table = database.WriteInstant(next);
        const auto taken = std::chrono::steady_clock::now() - begin;
        longestWrite = std::max(longestWrite, std::chrono::duration_cast<std::chrono::milliseconds>(taken));
        ++writes;
        if (!table.empty()) {
            tell(next, "new table " + table);
        }
        for (const PlantedFault& fault : model.plan.Faults()) {
            const std::string point(fault.recipe.point);
            for (const Stretch& burst : fault.bursts) {
                if (next == burst.first) {
                    tell(next, "fault begins at " + point);
                }
                if (next == burst.last) {
                    tell(next, "fault ends at " + point);
                }
            }
        }
        next += model.options.step;
    }

    void Recreate() {
        database.Recreate(next);
        nextRecreation = NextRecreation();
        tell(next, "database re-created");
    }

    const WorldModel& model;
    const LiveOptions& live;
    const EventListener& tell;
    Signals& signals;
    LiveClock clock;
    LiveDatabase database;
    int64_t next;  // the time of the samples that are to be written
    size_t writes = 0;
    std::chrono::milliseconds longestWrite{0};  // readers make the writer wait
    std::optional<int64_t> nextRecreation;
    std::optional<int64_t> end = live.duration ? std::optional(next + *live.duration) : std::nullopt;
};

// Thrown to leave the writing of the history.
struct Stopped {};

}  // namespace

void PlayWorld(const WorldOptions& options, const LiveOptions& live, const EventListener& tell,
               const Progress& progress) {
    Signals signals;
    const LiveClock clock(options.end, live.speed, options.step);  // runs while the history is written, too
    const auto mayStop = [&](double done) {
        if (IsStop(signals.Wait(Seconds(0)))) {
            throw Stopped();
        }
        progress(done);
    };
    const WorldModel model(options);
    WorldSummary summary;
    try {
        summary = WriteWorld(model, mayStop);
    } catch (const Stopped&) {
        tell(options.end, "stopped before the start");
        return;
    }
    Player player(model, live, tell, signals, clock);
    tell(options.end, "started " + options.scenario + ": " + std::to_string(summary.pointCount) +
                          " points, " + std::to_string(summary.rowCount) +
                          " rows of history; the truth is in " + summary.truthFile.string());
    player.Play();
}

}  // namespace lumosim
