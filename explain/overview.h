// The whole picture of a report on one screen.
#pragma once

#include <string>

#include "text/screen_style.h"

namespace explain {

struct Report;

// Lines of at most `style.width` cells, at least 80, but for commands, each with its end; empty for none.
// First what was looked at and what is going on, since when and why; then a line for each point that was
// looked at, error type and healing, and the events, the newest first, each with the command that explains it
// in full. The same in any style but for its width, its letters and its colours. Text that comes from outside
// is shown with its control characters escaped. No I/O.
std::string OverviewText(const Report& report, const ScreenStyle& style);

}  // namespace explain
