// Where walks begin in one graph, and what they can come to.
#pragma once

#include <vector>

#include "check/graph/model.h"

namespace check {

// A node to which no walk comes and that no other such node leads to, or one of a circle of such.
struct LostPart {
    size_t node;
    size_t below;  // how many further nodes only it leads to
};

// Nodes are positions in the graph's list.
struct GraphWalk {
    // Where commands begin: the node whose label contains the point, of each use that has one.
    std::vector<size_t> entries;
    std::vector<size_t> walkedEntries;              // those at which walks begin; others are looked at only
    std::vector<const GraphUse*> usesWithoutEntry;  // walked ones
    // Where an analysis begins that another graph hands over: the first edge's source that is nobody's
    // target.
    bool hasTop = false;
    size_t top = NONE;          // NONE also when that source is no node
    std::vector<size_t> roots;  // all nodes with children and without parents, but MODULE nodes
    std::vector<bool> isRoot;   // by node
    size_t reversed = NONE;     // the node at which a walk is meant to begin, when all edges only lead to it
    bool isReachKnown = false;  // what follows; not where nothing begins, or not where it is meant to
    std::vector<bool> isReached;
    std::vector<LostPart> lost;
    // What the one edge whose target is wrong may have meant: the one lost node. NONE: there are not one of
    // each.
    size_t meantTarget = NONE;
};

}  // namespace check
