// What could not be told of the points, in few lines.
#pragma once

#include <string>

#include "explain/analysis/analysis.h"

namespace explain {

// Each kind of reason once, with the smallest and the largest count and the names of its points. Empty when
// there is none.
std::string ReasonsText(const Analysis& analysis);

}  // namespace explain
