// Walks that would go round.
#pragma once

#include <string>
#include <vector>

#include "check/graph/graph_walk.h"
#include "check/graph/model.h"

namespace check {

// Points from each of which a walk may come to the next, and from the last one to the first.
struct Circle {
    size_t graph;        // in which it closes
    size_t at;           // offset of the edge, or of the graph's name, that closes it
    std::string points;  // with arrows between them
};

// All of them, hand-overs included, as a search from where walks begin comes to them; an edge from a node to
// itself is none. `walks` are those of the graphs of `model`. Takes time in proportion to the model.
std::vector<Circle> FindCircles(const Model& model, const std::vector<GraphWalk>& walks);

}  // namespace check
