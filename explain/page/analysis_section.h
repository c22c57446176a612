// The part of the page that tells of one analysis.
#pragma once

#include <cstddef>
#include <string>

#include "explain/page/markup.h"
#include "explain/report.h"
#include "explain/wording.h"

namespace explain {

bool IsAnswer(const Analysis& analysis);

// Facts side by side, each with its name.
Markup FactList(const Facts& facts);

// The section of the analysis, the one of that `number` on the page; its id is "analysis" and the number.
Markup AnalysisSection(const Analysis& analysis, const Report& report, size_t number);

}  // namespace explain
