// All graphs of error codes as one: whose errors pass through which points.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "explain/analysis/budget.h"

namespace explain {

// A point of the graphs. What stands below it in any of them stands below it here.
struct ErrorNode {
    std::string point;
    std::string graph;  // the first that has it
    std::string advice;
    std::string counted;           // the point under whose name its errors are counted; empty for a module
    bool followsParent = false;    // its errors are its parent's rather than those of its siblings
    bool changesType = false;      // its errors reach the hosts under another type than its own
    std::vector<size_t> children;  // positions; each once
};

struct ErrorGraph {
    std::vector<ErrorNode> nodes;  // those that the commands start at come first
    HandOvers handOvers;

    // By name, each once.
    std::set<std::string> CountedPoints() const;
    // All that can be reached from a node, by position; the node itself only by a circle.
    std::vector<bool> Below(size_t node) const;
};

// Reads all graphs of error codes that the plug-in's tables name and the configuration has, and those that
// continue them. Throws the standard conversion errors, and Json::LogicError, for one that is malformed.
ErrorGraph ReadErrorGraph();

}  // namespace explain
