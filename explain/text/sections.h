// The longer sections of the terminal's report.
#pragma once

#include <string>

#include "explain/analysis/analysis.h"
#include "explain/report.h"
#include "explain/wording.h"

namespace explain {

// The points below the slow one as an indented tree with their shares: a heading and a line for each node of
// an analysis with findings, under the node through which it is first reached. Of a large graph, nodes
// without a part and with none below them that has one are only counted.
std::string TreeText(const Analysis& analysis);

// What could not be told of the points: each kind of reason once, with the smallest and the largest count and
// the names of its points. Empty when there is none.
std::string ReasonsText(const Analysis& analysis);

// A title, and each fact behind its name; empty without any.
std::string FactsText(const char* title, const Facts& facts);

// Of an event of errors: subject and answer; what is known of it, and whose errors they are.
std::string ErrorHeadline(const ErrorAnalysis& analysis, const Report& report, const Figures& figures);
std::string ErrorDetails(const ErrorAnalysis& analysis, const Report& report);

// What was healed; empty when nothing was.
std::string HealingsText(const Report& report);

}  // namespace explain
