// What the page tells of an event of errors.
#pragma once

#include <cstddef>

#include "explain/page/markup.h"
#include "explain/report.h"

namespace explain {

// One event of errors, `number` telling it from others on the page.
Markup ErrorSection(const ErrorAnalysis& analysis, const Report& report, size_t number);

}  // namespace explain
