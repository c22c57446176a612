// The part of the page that tells of one analysis.
#pragma once

#include <cstddef>
#include <string>

#include "explain/report.h"
#include "explain/wording.h"
#include "page/markup.h"

namespace explain {

bool IsAnswer(const Analysis& analysis);

// Facts side by side, each with its name.
page::Markup FactList(const Facts& facts);

// The section of the analysis, the one of that `number` on the page; its id is "analysis" and the number.
page::Markup AnalysisSection(const Analysis& analysis, const Report& report, size_t number);

}  // namespace explain
