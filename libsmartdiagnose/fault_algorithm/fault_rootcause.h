// From a delay anomaly, or from the errors of one type, to the paths that the console prints: a graph per
// step, walked from its root, and the hand-over from the anomalous node to the next graph. And the lists of
// points of a whole graph: those with errors, and the factors of a module.
//
// Times are compact local, both ends of a range included. Everything here blocks on the database: a failing
// query for about 70 seconds, and the first one ends the loading of its graph. Unless said otherwise, outputs
// stay unchanged on failure.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fault_common/fault_export.h"
#include "fault_spectrum_graph/fault_causality_errcode_graph.h"
#include "fault_spectrum_graph/fault_causality_graph.h"

// The graph to analyse next.
struct RootGraph {
    std::string label;      // the point to start at, when it is to be found by its name
    std::string graphName;  // as in the route configuration
};

struct TimeWindow {
    std::string startTime;
    std::string endTime;
};

// One printed row of a path.
struct AnomalyNodeInfo {
    int32_t ioPointid = 0;
    std::string locName;
    double coff = -1.0;    // in error-code graphs the count by which the node was chosen
    int64_t avgdelay = 0;  // microseconds; 0 in error-code graphs

    // Of error-code graphs.
    int32_t erridx = -1;   // error index of an atomic node
    int64_t errCount = 0;  // error count for the type of the analysis
    std::string fixAdvice;
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
// on, each graph once. Returns the paths found until a graph fails; empty when the first one does. Throws the
// standard conversion errors for a configuration or cell that is no number.
FAULT_EXPORT std::vector<AnomalyPath> FlowAnalysisBFS(std::string nodeName, std::string graphName,
                                                      std::string startTime, std::string endTime);

// The two for the errors of the type with index `erridx`. Here a cell that is no number, or a bad node, is a
// failure of the graph; a bad edge throws the standard conversion errors. A root without statistics is no
// failure, but leaves `pathInfo` as it was.
uint32_t AnalysisErrCodeBFSByRoot(const RootGraph& rootGraph, const TimeWindow& timeWindow, bool byLabel,
                                  int32_t erridx, AnomalyPathInfo& pathInfo);

// Appends the paths found until a graph fails or has no path to `paths`. Returns 1 when the first graph
// fails.
FAULT_EXPORT uint32_t AnalysisErrCodeBFS(const std::string& graphName, const std::string& startDate,
                                         const std::string& endDate, const std::string& rootLabel,
                                         int32_t erridx, std::vector<AnomalyPath>& paths);

// The error types, in the order of their columns.
constexpr std::array<const char*, 3> FAULT_ERROR_TYPES = {"IOERROR", "IORETRY", "IOACCESSDENY"};

// The points with errors, by the name of the error's type; at most one result per point and type.
using FaultErrorPoints = std::map<std::string, std::vector<NodeResult>>;

// Adds the points of one graph that counted errors to `points`, per type. `module` is not looked at. Returns
// 1 when the graph is not in the configuration, is empty, or cannot be read or loaded (logged).
FAULT_EXPORT uint32_t SearchAllErrCodeInGraph(const std::string& module, const std::string& graphName,
                                              const std::string& startDate, const std::string& endDate,
                                              FaultErrorPoints& points);

// Its steps: all nodes of a loaded graph, in the order of their ids; and one point of `errNum` errors, which
// must be other than 0 and not listed yet to be added. `graph` must not be null.
uint32_t SearchErrCodeDataByLumo(const FaultCausalityErrCodeGraph* graph, FaultErrorPoints& points);
void SearchErrCodeUpdDataIntoMap(const std::string& typeName, int64_t errNum, const NodeResult& result,
                                 std::vector<NodeResult>& results);

// What the delays of a point say. The order is that of the list.
enum class FaultFactorKind {
    ABNORMAL,  // some lie beyond three deviations
    MAX,       // none does
    NO_DATA
};

// One point of a module's factor graph.
struct FaultFactor {
    std::string locName;
    FaultFactorKind kind = FaultFactorKind::NO_DATA;
    int64_t delay = 0;  // microseconds: the largest, of the abnormal ones where there are any
    int64_t time = 0;   // its first sample, UTC seconds since 1970
    std::string fixAdvice;
};

// Replaces `factors` by one entry per point of the graph of a module of g_mapModuleFactor: by kind, then the
// largest delays first, then by name. Returns 1 when the graph is not in the configuration or its data cannot
// be loaded (logged). Throws std::out_of_range for another module, the standard conversion errors for a
// cell that is no number, Json::LogicError for a value of the wrong type.
FAULT_EXPORT uint32_t ShowFaultFactor(const std::string& moduleName, const std::string& startDate,
                                      const std::string& endDate, std::vector<FaultFactor>& factors);
