// What planted worlds take over from a node's own statistics.
#pragma once

#include <string>
#include <vector>

#include "check/graph/statistics.h"
#include "check/plant/site.h"

namespace check {

// The options by which lumo-sim makes the points of the sites constant whose delay never changes over the
// newest day, and those alike that have the same rows. Points of which there is little are left out.
std::vector<std::string> LikenessOptions(const PointStatistics& statistics, const std::vector<Site>& sites);

}  // namespace check
