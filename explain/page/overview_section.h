// What the page begins with: the whole picture.
#pragma once

#include "explain/report.h"
#include "page/markup.h"

namespace explain {

// What was looked at and what is going on; a row with a drawing for each point and error type; what was
// healed; and the events, each with a way to its analysis on the page.
page::Markup OverviewSection(const Report& report);

}  // namespace explain
