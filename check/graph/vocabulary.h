// Which graphs the plug-in's commands read, and how.
#pragma once

#include <string>
#include <vector>

namespace check {

// What reads a graph: the walk of delays, the analyses of errors, or the list of a module's factors.
enum class GraphKind { FLOW, ERRCODE, FACTOR };

// A row of the plug-in's vocabulary that names a graph.
struct GraphUse {
    std::string graph;
    GraphKind kind;
    std::string command;    // that reads it; empty: no command does
    std::string point;      // that leads to the graph; empty: none
    bool isWalked = false;  // by the command, from the node whose label contains the point
};

// All of them, by graph.
const std::vector<GraphUse>& GraphUses();

// The rows of one graph.
std::vector<GraphUse> UsesOf(const std::string& graph);

}  // namespace check
