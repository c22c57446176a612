// What could not be told of the points, in few lines.
#pragma once

#include <string>

#include "explain/analysis/analysis.h"

namespace explain {

// Each reason once, with the names of its points. Reasons that differ in a number only are one, with the
// smallest and the largest number. Empty when there is none.
std::string ReasonsText(const Analysis& analysis);

}  // namespace explain
