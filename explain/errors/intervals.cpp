#include "explain/errors/intervals.h"

#include <algorithm>

namespace explain {

Intervals::Intervals(const std::vector<int64_t>& times, int64_t stepSeconds) : step(stepSeconds) {
    std::vector<int64_t> sorted = times;
    std::sort(sorted.begin(), sorted.end());
    oldest = sorted.empty() ? 0 : sorted.front();
    for (const int64_t time : sorted) {
        if (places.empty() || places.back() != PlaceOf(time)) {
            places.push_back(PlaceOf(time));
            first.push_back(time);
        }
    }
}

int64_t Intervals::PlaceOf(int64_t time) const {
    return (time - oldest + step / 2) / step;
}

size_t Intervals::NumberOf(int64_t time) const {
    return static_cast<size_t>(std::lower_bound(places.begin(), places.end(), PlaceOf(time)) -
                               places.begin());
}

size_t Intervals::CountBefore(int64_t time) const {
    return static_cast<size_t>(std::lower_bound(first.begin(), first.end(), time) - first.begin());
}

}  // namespace explain
