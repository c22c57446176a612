// Where faults can be planted.
#pragma once

#include <string>
#include <vector>

#include "check/graph/model.h"

namespace check {

// A node to which an analysis of delays can come, and from where it comes.
struct Site {
    std::string point;
    std::string graph;
    std::string entry;               // the graph in which the analysis begins
    std::string host;                // the point at which it begins
    bool isObservation = false;      // it counts no requests
    std::vector<std::string> above;  // the points on the first way down to it, the host first
};

// Of every flow graph that can be reached from where commands enter, in the order in which ways down come to
// them. A node is one site, by the first graph that leads to it; the root of a graph that only repeats the
// point that hands over to it is none. Takes time in proportion to the model, once for every entered graph.
std::vector<Site> SitesOf(const Model& model);

}  // namespace check
