// The newest day of a statistics database.
#pragma once

#include <string>

#include "check/graph/statistics.h"

namespace check {

// The points that the database at `path` knows, with their rows of the 24 hours up to its newest row. Throws
// std::runtime_error, with an operator's sentence, when it cannot be read. Blocks on file I/O.
PointStatistics ReadNewestDay(const std::string& path);

}  // namespace check
