#include "explain/analysis/baseline.h"

#include <algorithm>
#include <cstdint>

#include "explain/finding/level.h"

namespace explain {
namespace {

// Events are short of the ends of time: the times of samples.
Stretches Without(const Stretches& stretches, const Window& left) {
    Stretches rest;
    for (const Window& stretch : stretches) {
        if (left.end < stretch.start || left.start > stretch.end) {
            rest.push_back(stretch);
            continue;
        }
        if (stretch.start < left.start) {
            rest.push_back({stretch.start, left.start - 1});
        }
        if (left.end < stretch.end) {
            rest.push_back({left.end + 1, stretch.end});
        }
    }
    return rest;
}

size_t CountIn(const Samples& samples, const Stretches& stretches) {
    size_t count = 0;
    for (const Window& stretch : stretches) {
        const auto [first, end] = PositionsIn(samples, stretch);
        count += end - first;
    }
    return count;
}

template <typename Value>
std::vector<Value> Selected(const Samples& samples, const std::vector<Value>& values,
                            const Stretches& stretches) {
    std::vector<Value> selected;
    for (const Window& stretch : stretches) {
        const auto [first, end] = PositionsIn(samples, stretch);
        selected.insert(selected.end(), values.begin() + static_cast<std::ptrdiff_t>(first),
                        values.begin() + static_cast<std::ptrdiff_t>(end));
    }
    return selected;
}

}  // namespace

Stretches BaselineOf(const Samples& samples, const Finding& finding, const Window& event,
                     const std::optional<Window>& named) {
    const auto outside = [&](const Window& window) {
        Stretches rest = Without({window}, event);
        for (const Event& other : finding.events) {
            rest = Without(rest, other);
        }
        return rest;
    };
    if (named) {
        return outside(*named);
    }
    const int64_t from = finding.isCurved ? event.start - LEVEL_SECONDS : INT64_MIN;
    const int64_t until = finding.isCurved ? event.end + LEVEL_SECONDS : INT64_MAX;
    const Stretches before = outside({from, event.start});
    const Stretches after = outside({event.end, until});
    return CountIn(samples, before) < FEWEST_BASELINE && CountIn(samples, after) >= FEWEST_BASELINE ? after
                                                                                                    : before;
}

Stretches Within(const Stretches& stretches, const Window& window) {
    Stretches within;
    for (const Window& stretch : stretches) {
        const Window common{std::max(stretch.start, window.start), std::min(stretch.end, window.end)};
        if (common.start <= common.end) {
            within.push_back(common);
        }
    }
    return within;
}

Samples SamplesIn(const Samples& samples, const Stretches& stretches) {
    return Selected(samples, samples, stretches);
}

std::vector<double> ValuesIn(const Samples& samples, const std::vector<double>& values,
                             const Stretches& stretches) {
    return Selected(samples, values, stretches);
}

}  // namespace explain
