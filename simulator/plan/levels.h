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
    // A request that takes long is counted by whoever waits for it, and by some of them in the next interval.
    double lateShare = 0.25;
};

Levels UsualLevels(const Topology& topology);

// The same for graphs of any shape, that nobody has balanced: however deep a point lies, a sixtieth of the
// requests at the top reach it, and what is slow there is seen at the top soon after; what several points
// wait for sees no more requests than the busiest of these. So nothing grows out of all bounds.
Levels EvenLevels(const Topology& topology);

}  // namespace lumosim
