// The graphs below a point, and what the database holds of their points.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "explain/analysis/budget.h"
#include "explain/finding/sample_store.h"

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
// is the point's; every other one stands behind one that leads to it.
struct GraphWorld {
    std::vector<GraphNode> nodes;
    HandOvers handOvers;
    std::map<std::string, PointData> points;  // by name; an entry for every node
    std::vector<Reason> unread;               // why graphs that enter the point, too, are left out
};

// Reads the nodes below the point `point` of the graph `graphs.front()` from the configuration; no data yet.
// Others of `graphs` that have the point are entered with it: its nodes in all of them are the first node,
// those right below it that have one name are one node, and so on down. Throws NoData; the standard
// conversion errors for a configuration that has no number where it needs one, Json::LogicError for a value
// of the wrong type; of any of the graphs.
GraphWorld ReadGraphWorld(const std::string& point, const std::vector<std::string>& graphs);

// The same with the data of its points, but for their own delays and for idle rows, from the store, which may
// block on the database. Throws what both throw.
GraphWorld LoadGraphWorld(const std::string& point, const std::vector<std::string>& graphs,
                          SampleStore& store);

}  // namespace explain
