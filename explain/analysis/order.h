// In which order answers are told.
#pragma once

#include <vector>

#include "explain/analysis/analysis.h"

namespace explain {

// The most urgent first: what is going on, that before others for which all requests together wait longest;
// then each point's other events as they stood, of the points that first of which some event made them wait
// longest. Behind these what names the slow point itself where another graph of that point names one below
// it for the same event, or what names a point of such another graph; last what is within the usual.
void SortAnswers(std::vector<Analysis>& analyses);

}  // namespace explain
