// Which samples tell what is usual of a point when an event is explained.
#pragma once

#include <optional>
#include <vector>

#include "explain/finding/event.h"

namespace explain {

// Stretches of time that ascend and do not overlap.
using Stretches = std::vector<Window>;

// What was usual beside the event of a series: all that lies before the event (with `named`, that stretch
// instead; LEVEL_SECONDS where the series is curved) and in no event. Where that leaves fewer than
// FEWEST_BASELINE samples before an event, what lies after it, likewise.
Stretches BaselineOf(const Samples& samples, const Finding& finding, const Window& event,
                     const std::optional<Window>& named);

// What of the stretches lies in the window.
Stretches Within(const Stretches& stretches, const Window& window);

// The samples of the stretches; and of a column beside them.
Samples SamplesIn(const Samples& samples, const Stretches& stretches);
std::vector<double> ValuesIn(const Samples& samples, const std::vector<double>& values,
                             const Stretches& stretches);

}  // namespace explain
