// In which order answers are told.
#pragma once

#include <vector>

#include "explain/analysis/analysis.h"

namespace explain {

// Puts last what is within the usual, and before it what names the slow point itself where another graph of
// that point names one below it for the same event, or what names a point of such another graph. Else the
// order stays.
void PutCausesFirst(std::vector<Analysis>& analyses);

}  // namespace explain
