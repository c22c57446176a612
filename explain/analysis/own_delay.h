// What of a point's delay is its own, and no point's below it.
#pragma once

#include "explain/analysis/graph_world.h"

namespace explain {

// Fills `own` of all points: in each interval the delay less what the points below took, per request of the
// point. What a point below took is its requests times its delay; where several points wait for it, each
// accounts for it by its requests. Nodes of one name are one point. Observation points are not below anything
// here: they measure states, and count no requests.
void FillOwnDelays(GraphWorld& world);

}  // namespace explain
