// The intervals of the statistics, numbered.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "explain/finding/series.h"

namespace explain {

// Intervals without any row are left out. Rows of one interval may be seconds apart.
class Intervals {
public:
    // `times` of rows, in any order; `step` seconds from one interval to the next, above 0.
    Intervals(const std::vector<int64_t>& times, int64_t step);

    size_t Count() const { return places.size(); }
    // Of a time that was among those of the rows.
    size_t NumberOf(int64_t time) const;
    // How many intervals begin before a time.
    size_t CountBefore(int64_t time) const;
    // The earliest row of an interval, UTC seconds.
    int64_t TimeOf(size_t number) const { return first[number]; }

private:
    int64_t PlaceOf(int64_t time) const;

    int64_t oldest = 0;
    int64_t step = 1;
    std::vector<int64_t> places;  // steps since the oldest, ascending
    std::vector<int64_t> first;
};

}  // namespace explain
