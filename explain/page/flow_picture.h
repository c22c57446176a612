// What is drawn of a graph, and where.
#pragma once

#include <cstddef>
#include <vector>

#include "explain/analysis/analysis.h"

namespace explain {

// A node in the grid of the picture. Rows count from the top. Between the columns there is room for lines
// that pass a row.
struct PlacedNode {
    size_t node = 0;    // position in the findings
    double flow = 0.0;  // the share that comes to it, 0 to 1
    size_t row = 0;
    size_t column = 0;
};

struct PlacedEdge {
    size_t from = 0;  // positions in the picture's nodes
    size_t to = 0;
    double flow = 0.0;
    bool skips = false;  // nodes between the two are not drawn
};

struct FlowPicture {
    std::vector<PlacedNode> nodes;  // the first is the top
    std::vector<PlacedEdge> edges;
    size_t rows = 0;
    size_t leftOut = 0;         // nodes that are not drawn
    double leftOutShare = 0.0;  // their own shares together
};

// How many nodes fit a row.
constexpr size_t PICTURE_COLUMNS = 5;

// A small graph as a whole; of a large one, what the delay flows through, the largest flows first. The nodes
// are in layers by their distance from the top; a wide layer takes several rows. `analysis` must have an
// answer.
FlowPicture PictureOf(const Analysis& analysis);

// The positions of the nodes on the way of the delay from the top to `node`, both included.
std::vector<size_t> WayTo(const Analysis& analysis, size_t node);

}  // namespace explain
