// How much of a range of time rows cover: the one way to count that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// The intervals that have rows, of which those of one interval may be seconds apart.
class CoveredIntervals {
public:
    // Of a range whose first and last row are at these times, with usually `stepOfRows` seconds, at least
    // one, from one interval to the next.
    CoveredIntervals(int64_t firstRow, int64_t lastRow, int64_t stepOfRows);

    // A row, neither before the first nor after the last.
    void Add(int64_t time);

    struct Count {
        size_t expected = 0;        // intervals of the range; 0: not known
        size_t intervals = 0;       // of them, those with rows
        bool lacksBegin = false;    // more than two steps
        bool lacksEnd = false;      // likewise
        bool lacksBetween = false;  // a fifth of the intervals or more

        bool IsPart() const { return lacksBegin || lacksEnd || lacksBetween; }
    };

    // What the rows cover of the range from `start` to `end`.
    Count Of(int64_t start, int64_t end) const;

private:
    const int64_t first, last, step;
    std::vector<bool> filled;
};
