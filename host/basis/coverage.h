// How much of a range of time rows cover.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "text/covered_intervals.h"

namespace zorv {
struct TimeRange {
    int64_t start = 0;  // UTC seconds, both included
    int64_t end = 0;
};

// "rows from 2023-01-05 10:30:00 to 2023-01-05 14:29:30", local time.
std::string TextOf(const TimeRange& rows);

struct Coverage {
    int64_t step = 0;               // usual seconds from one interval to the next; 0: too few rows to tell
    size_t expected = 0;            // intervals of the range; 0: not known
    size_t intervals = 0;           // of them, those with rows
    std::optional<TimeRange> rows;  // the oldest and the newest; none: there is no row
    // More than two steps are missing at either end, or a fifth of the intervals between.
    bool isPart = false;

    // "240 of 480 intervals".
    std::string Intervals() const;
};

// Takes the rows of one series after the other, a point in a table each, in any order.
class CoverageCount {
public:
    explicit CoverageCount(const TimeRange& ofRange);

    // A row of the series; outside the range it counts for nothing.
    void Add(int64_t time);

    // What comes is another series.
    void EndSeries();

    // Of all series together, of which the last was ended: an interval has rows when one series has one.
    // `knownStep` counts when the rows do not tell theirs.
    Coverage Get(int64_t knownStep = 0) const;

private:
    CoveredIntervals IntervalsWithRows(int64_t step) const;

    const TimeRange range;        // of which all that follows counts the seconds
    const int64_t unit;           // more than one second where the range is longer than any command's
    std::vector<int64_t> series;  // that is read
    std::optional<int64_t> oldest, newest;
    std::vector<bool> filled;             // units with rows
    std::map<int64_t, size_t> distances;  // in seconds from row to row, and how many
};
}  // namespace zorv
