// What is usual for each point: how many requests it sees, and how long they take.
#pragma once

#include <vector>

#include "simulator/graphs/topology.h"

namespace lumosim {

// All vectors go by point index. A point's usual delay is its own part plus each child's usual delay times
// the share of the point's requests that reach the child.
struct Levels {
    std::vector<double> ownDelay;            // microseconds
    std::vector<double> usualDelay;          // microseconds
    std::vector<double> rate;                // requests per second; 0 for observation points
    std::vector<std::vector<double>> share;  // as Topology::Flow().children
};

Levels UsualLevels(const Topology& topology);

// The same for graphs of any shape, that nobody has balanced: however deep a point lies, a sixtieth of the
// requests at the least busy point above all reach it, and what several points wait for sees no more of them
// than the busiest of these. So nothing grows out of all bounds.
Levels EvenLevels(const Topology& topology);

}  // namespace lumosim
