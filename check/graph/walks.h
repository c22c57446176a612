// Where walks begin in each graph, what they can come to, and where they would go round.
#pragma once

#include <vector>

#include "check/graph/circles.h"
#include "check/graph/graph_walk.h"
#include "check/graph/model.h"

namespace check {

class Walks {
public:
    // Takes time in proportion to the model, and no stack.
    explicit Walks(const Model& model);

    const GraphWalk& Of(size_t graph) const { return walks[graph]; }
    const std::vector<Circle>& Circles() const { return circles; }

private:
    std::vector<GraphWalk> walks;  // by the graph's position
    std::vector<Circle> circles;
};

}  // namespace check
