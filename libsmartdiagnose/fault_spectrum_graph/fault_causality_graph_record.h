// The records of causality graphs, for delays and for errors: what the configuration says of a point, and
// what a walk finds.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// The kinds of points.
constexpr const char* FAULT_LUMO_POINT = "LUMO_POINT";  // a trace point of the statistics facility
constexpr const char* FAULT_OB_POINT = "OB_POINT";      // an observation point
constexpr const char* FAULT_OB_MARK = "OB_";            // which is part of its name

// The delay of `sourceId` (the parent) can be caused by `targetId` (the child). `coff` stays 0: coefficients
// are computed during a walk.
struct Edge {
    int32_t sourceId = 0;
    int32_t targetId = 0;
    double coff = 0.0;
};

// A point as the configuration describes it.
struct Node {
    int32_t ioPointid = 0;
    std::string locName;    // the name under which its statistics are stored
    std::string nextGraph;  // the graph that continues below it, or its own name
    std::string description;
    std::string statLabel;    // its kind
    std::string attr;         // attribute words of error-code graphs
    int64_t extraNumber = 0;  // not used
    std::string suggestion;   // advice when it is the root cause; may be empty
};

// What the choice of a child passes around.
struct NodeBase {
    int32_t ioPointid = 0;  // 0: none
    std::string locName;
    std::string statLabel;
    std::string attr;      // attribute words of error-code graphs
    double coff = -1.0;    // weight by which the node was chosen; -1.0: none, 1.0: root of a delay walk
    int32_t erridx = -1;   // error-code graphs: error index
    int64_t errCount = 0;  // error-code graphs: error count for the type of the walk, its exact weight
};

// One node of a path. Sums are over the loaded range of time.
struct NodeResult {
    int32_t ioPointid = 0;  // 0: none
    std::string locName;
    double coff = -1.0;
    int32_t endFlag = 0;    // non-zero: without data, the walk must stop before the node
    int64_t acceptnum = 0;  // error-code graphs: the error count of an atomic node
    int64_t successnum = 0;
    int64_t failednum = 0;
    int64_t retrynum = 0;
    int64_t avgdelay = 0;  // average, microseconds
    int64_t maxdelay = 0;  // maximum, microseconds
    std::string fixAdvice;

    // Of error-code graphs.
    int32_t erridx = -1;    // error index of an atomic node
    bool isFollow = false;  // the node follows its parent
    int64_t errCount = 0;   // error count for the type of the walk
    std::array<int64_t, 5> errorSums =
        {};  // of the columns errCode0 to errCode4; the last two are not filled
};

// The result of one walk.
struct AnomalyPathInfo {
    std::string anomalyNodeName;
    int32_t anomalyNodeId = 0;
    std::vector<NodeResult> path;  // root first
    std::string nextGraphName;     // the graph in which the analysis goes on
    int32_t statusCode = 1;        // 0: the result is valid
};
