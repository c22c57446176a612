// The pictures of an analysis.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "explain/analysis/analysis.h"
#include "explain/page/markup.h"

namespace explain {

// What all pictures of an analysis have in common. Times are UTC seconds.
struct SeriesFrame {
    int64_t start = 0;  // of the axis
    int64_t end = 0;
    int64_t zoneOffset = 0;  // seconds east of UTC
    std::optional<Event> event;
    std::optional<int64_t> baselineStart;  // the baseline goes from there to the event
};

// An SVG of the delays of the point `name`, `id` telling it from others on the page; a line at `usual`, the
// median of its baseline. Of long series about 600 samples are drawn, every peak among them.
Markup SeriesDrawing(const std::string& name, const Samples& samples, const std::optional<double>& usual,
                     const SeriesFrame& frame, const std::string& id);

// An SVG of the graph below the point, where the extra delay flows; `number` tells it from others on the
// page. The width of a line is the share that flows along it. `analysis` must have an answer.
Markup GraphDrawing(const Analysis& analysis, size_t number);

}  // namespace explain
