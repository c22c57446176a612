// The pictures of an analysis.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/analysis.h"
#include "page/markup.h"

namespace explain {

// What all pictures of an analysis have in common. Times are UTC seconds.
struct SeriesFrame {
    int64_t start = 0;  // of the axis
    int64_t end = 0;
    int64_t rangeStart = 0;
    int64_t zoneOffset = 0;  // seconds east of UTC
    std::optional<Event> event;
    std::optional<Window> baseline;
    std::vector<Event> others;
    std::vector<int64_t> healings;
    bool isCounts = false;  // of errors, which stand for themselves; else a line of delays
};

// An SVG of the delays, or counts, of the point `name`, `id` telling it from others on the page; a line at
// `usual`, the median of its baseline. Of long series about 600 samples are drawn, every peak among them. A
// narrow one has the width of a telephone.
page::Markup SeriesDrawing(const std::string& name, const Samples& samples,
                           const std::optional<double>& usual, const SeriesFrame& frame,
                           const std::string& id, bool isNarrow);

// The same with its name, once for wide screens and once for narrow ones.
page::Markup SeriesFigure(const std::string& point, const Samples& samples,
                          const std::optional<double>& usual, const SeriesFrame& frame,
                          const std::string& id);

// An SVG of the graph below the point, where the extra delay flows; `number` tells it from others on the
// page. The width of a line is the share that flows along it. `analysis` must have an answer.
page::Markup GraphDrawing(const Analysis& analysis, size_t number);

// The same for a screen that is too narrow for the drawing: the points that take part, under those through
// which their delay comes, with their shares as text and as lengths.
page::Markup FlowList(const Analysis& analysis);

}  // namespace explain
