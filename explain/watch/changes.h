// From what one look after the other sees to what has changed.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>

#include "explain/change.h"
#include "explain/report.h"
#include "explain/watch/error_changes.h"

namespace explain {

// What one look saw.
struct Sight {
    Report report;                       // what was filled before it failed
    std::optional<Reason> failure = {};  // why something could not be looked at
    bool IsUnread() const;               // of the database, or of a part of it

    std::string failed = {};  // what SQLite says of it
};

// Knows what was told, and tells what is other. A point is told to be slow once two samples of an event lie
// above the usual, and to be usual again once two in a row do, as the event finder has it, without those
// with which it lets a high event fade; what was told to be over is told again when two more samples are
// high, or sixteen lie above the usual; another cause, once it comes first in two looks at delays that stand
// high: what fades says nothing of causes. Has no clock: a report's time is the time.
class Changes {
public:
    // What has changed since the sight before. The first one tells what is slow, silent or unreadable now.
    ChangeList After(const Sight& sight);

    // Of what was told.
    bool IsSlow(const std::string& point) const;
    // The median of the usual delays of a look's point: while it is slow, those before that.
    double UsualOf(const Look& look) const;

    bool IsUnreadable() const { return unreadable.isTold; }

    // The newest row of all sights; none before the first.
    std::optional<int64_t> Newest() const { return newest; }

private:
    static constexpr int64_t NEVER = std::numeric_limits<int64_t>::min();

    // What is told of a point. Times are those of samples.
    struct State {
        bool isSlow = false;
        int64_t begin = 0;    // of what was told
        int64_t end = NEVER;  // its last sample; only what is later is news
        int64_t found = 0;    // the newest sample when it was last found to go on
        int64_t open =
            std::numeric_limits<int64_t>::max();  // what ends before it was settled by the look before
        Usual usual;                              // of the time before it
        std::string cause;                        // empty: none was told
        std::string rival;                        // another one that came first
        int64_t rivalTime = 0;                    // the newest sample then
    };

    // What is told of the database.
    struct Trouble {
        bool isTold = false;
        int64_t since = 0;
    };

    void TellOfDatabase(const Sight& sight, ChangeList& changes);
    void TellOfRows(const Sight& sight, ChangeList& changes);
    void TellOfPoint(const Report& report, const Look& look, ChangeList& changes);
    static void TellOfEvents(const Report& report, const Look& look, State& state, ChangeList& changes);
    static void TellOfEnd(const Report& report, const Look& look, State& state, ChangeList& changes);
    static void TellOfCause(const Report& report, const Look& look, State& state, ChangeList& changes);

    std::map<std::string, State> points;
    ErrorChanges errors;
    Trouble unreadable;
    Trouble silent;
    std::optional<int64_t> newest;
};

}  // namespace explain
