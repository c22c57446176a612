// What a watch tells: that something is other than it was. As data; explain/wording.h has the sentences.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/analysis.h"

namespace explain {

enum class ChangeKind {
    SLOW,        // a point is slow
    WAS_SLOW,    // it was, and is as usual again, when that was first seen
    CAUSE,       // it still is, but another point is to blame, or one at last
    USUAL,       // it is as usual again
    ACCEPTED,    // it is as slow as before, and nothing of it can be told from the usual any more
    UNREADABLE,  // the database
    READABLE,    // again
    SILENT,      // no rows come
    ROWS,        // they come again
    ERRORS,      // there are more of a type than usual
    ERRORS_OVER,
    HEALED  // the agent did
};

// Who is to blame.
struct Cause {
    std::string point;  // empty: the load
    double share = 0.0;
    Certainty certainty = Certainty::UNSURE;
};

struct Change {
    ChangeKind kind = ChangeKind::SLOW;
    int64_t time = 0;                  // UTC: since when it is so; of the database, when it was seen
    std::string point = {};            // empty of the database
    std::optional<double> delay = {};  // of SLOW and WAS_SLOW: the mean so far, microseconds
    std::optional<double> times = {};  // the usual delay
    std::optional<Cause> cause = {};
    int64_t seconds = 0;                 // how long it was slow, or without rows, or could not be read
    std::optional<int64_t> newest = {};  // of SILENT: the last row, UTC
    std::string reason = {};             // of UNREADABLE; of HEALED, what was
    std::string type = {};               // of errors
    int64_t count = 0;                   // of these
};
using ChangeList = std::vector<Change>;

// One JSON object in a line that follows docs/explain-watch.schema.json; `now` and the zone as in a report.
std::string JsonChange(const Change& change, int64_t now, int64_t zoneOffset);

}  // namespace explain
