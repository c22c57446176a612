// What the page tells of healings.
#pragma once

#include <cstdint>
#include <vector>

#include "explain/report.h"
#include "page/markup.h"

namespace explain {

// All healings; empty where there is none.
page::Markup HealingsSection(const Report& report);

// What the marks of healings on a chart mean, of those between two times; empty where there is none.
page::Markup HealingsLegend(const Report& report, const Window& window);

// Their times, for the chart.
std::vector<int64_t> HealingTimes(const Report& report);

}  // namespace explain
