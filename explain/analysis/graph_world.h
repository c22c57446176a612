// The graphs below a point, and what the database holds of their points.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "explain/analysis/budget.h"
#include "explain/analysis/sample_store.h"

namespace explain {

// A node of one graph.
struct GraphNode {
    std::string graph;
    int32_t id = 0;
    std::string point;
    std::string advice;
    std::vector<size_t> children;  // in the order of the edges; positions in the list of nodes
};

// All nodes that can be reached from a point, over the graphs that continue below others too. The first node
// is the point's.
struct GraphWorld {
    std::vector<GraphNode> nodes;
    HandOvers handOvers;
    std::map<std::string, PointData> points;  // by name; an entry for every node
};

// Reads the nodes below the point `point` of the graph `graph` from the configuration, and takes their data
// from the store, which may block on the database. Throws NoData; the standard conversion errors for a
// configuration or cell that is no number, Json::LogicError for a value of the wrong type.
GraphWorld LoadGraphWorld(const std::string& point, const std::string& graph, SampleStore& store);

}  // namespace explain
