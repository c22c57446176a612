// The picture of a graph: where the extra delay flows.
#pragma once

#include "explain/analysis/analysis.h"
#include "explain/page/markup.h"

namespace explain {

// An SVG of the graph below the point, `number` telling it from others on the page. The width of a line is
// the share that flows along it. `analysis` must have an answer.
Markup GraphDrawing(const Analysis& analysis, size_t number);

}  // namespace explain
