// The forms of a report.
#pragma once

#include <string>

#include "fleet/folding/outcome.h"

namespace fleet {

// For a terminal: lines of at most 80 cells, no escape sequences; what comes from outside is shown with its
// control characters escaped.
std::string TextReport(const Outcome& outcome);

// One JSON document that follows docs/fleet.schema.json, in a line.
std::string JsonReport(const Outcome& outcome);

// One HTML page without scripts and without anything from a network. Text that comes from outside is escaped.
std::string HtmlReport(const Outcome& outcome);

}  // namespace fleet
