// From one delay anomaly to the paths that the console prints: a graph per step, walked from its root, and
// the hand-over from the anomalous node to the next graph.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fault_common/fault_export.h"
#include "fault_spectrum_graph/fault_causality_graph.h"

// The graph to analyse next.
struct RootGraph {
    std::string label;      // the point to start at, when it is to be found by its name
    std::string graphName;  // as in the route configuration
};

// Compact local times, both included.
struct TimeWindow {
    std::string startTime;
    std::string endTime;
};

// One printed row of a path.
struct AnomalyNodeInfo {
    int32_t ioPointid = 0;
    std::string locName;
    double coff = -1.0;
    int64_t avgdelay = 0;  // microseconds
};

// One path: from the root of a graph down.
struct AnomalyPath {
    std::string anomalyNodeName;
    std::string rootGraphName;
    std::vector<AnomalyNodeInfo> nodes;
};

// Analyses one graph, from the point named by `rootGraph.label` or, unless `byLabel` is set, from the
// topological root. Returns 0; 1 when the graph is not in the configuration, has no data, or the walk fails
// (all logged).
uint32_t GraphAnalysisBFSByRoot(const RootGraph& rootGraph, const TimeWindow& timeWindow, bool byLabel,
                                AnomalyPathInfo& pathInfo);

// Analyses the graph from the point named `nodeName`, then the graph that the anomalous node names, and so
// on, each graph once; the times are compact local. Returns the paths found until a graph fails; empty when
// the first one does. Blocks on the database. Throws the standard conversion errors for a configuration or
// cell that is no number.
FAULT_EXPORT std::vector<AnomalyPath> FlowAnalysisBFS(std::string nodeName, std::string graphName,
                                                      std::string startTime, std::string endTime);
