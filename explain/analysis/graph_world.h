// The graphs below a point, and what the database holds of their points over one range of time.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "explain/analysis/budget.h"
#include "explain/analysis/event.h"
#include "explain/analysis/reason.h"
#include "fault_common/fault_series.h"

namespace explain {

// A range of time, in the form that the plug-in's operations take and in UTC seconds; both ends included.
struct Range {
    std::string startDate, endDate;  // compact local time
    int64_t startTime = 0, endTime = 0;
};

// What the database holds of one point.
struct PointData {
    Samples samples;
    bool isObservation = false;  // has delays but no requests
    bool hasGoneBack = false;    // the times did not ascend: they were put in order
};

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

// Reads the nodes below the point `point` of the graph `graph` from the configuration, and loads their data,
// one point after the other. Blocks on the database. Throws NoData; the standard conversion errors for a
// configuration or cell that is no number, Json::LogicError for a value of the wrong type.
GraphWorld LoadGraphWorld(const std::string& point, const std::string& graph, const Range& range);

// The columns as the plug-in's statistics take them. What no integer can hold becomes the nearest that can.
FaultSeries DelaySeries(const Samples& samples);
FaultSeries RequestSeries(const Samples& samples);

}  // namespace explain
