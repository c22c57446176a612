// What the page tells of an event of errors.
#pragma once

#include <cstddef>

#include "explain/report.h"
#include "page/markup.h"

namespace explain {

// One event of errors, `number` telling it from others on the page.
page::Markup ErrorSection(const ErrorAnalysis& analysis, const Report& report, size_t number);

}  // namespace explain
