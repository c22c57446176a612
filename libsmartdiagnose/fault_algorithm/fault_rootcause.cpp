#define FAULT_UNIT_FILE "fault_rootcause.cpp"
#include "fault_algorithm/fault_rootcause.h"

#include <set>

#include "fault_algorithm/fault_rootcause_graph.h"
#include "fault_common/fault_boundary.h"
#include "fault_common/fault_log.h"

namespace {

// The root of the walk: the point that is named, or that of the topology. 0 when there is none.
template <typename Graph>
int32_t RootOf(const char* operation, Graph& graph, const RootGraph& rootGraph, bool byLabel,
               const Json::Value& edges) {
    int32_t rootId = 0;
    if (byLabel) {
        graph.FindRootBySpecificLabel(rootGraph.label, rootId);
        FAULT_LOG(FAULT_IN(operation), FAULT_INFO, "FindRootBySpecificLabel rootId: %d.", rootId);
    } else {
        graph.FindRootBySelf(edges, rootId);
        FAULT_LOG(FAULT_IN(operation), FAULT_INFO, "FindRootBySelf rootId: %d.", rootId);
    }
    return rootId;
}

// One graph's analysis. Log lines carry the name of `operation`.
template <typename Graph, typename Run, typename Walk>
uint32_t AnalyseGraph(const char* operation, const RootGraph& rootGraph, const TimeWindow& timeWindow,
                      bool byLabel, Run run, Walk walk) {
    Graph graph;
    Json::Value edges;
    const std::string& name = rootGraph.graphName;
    const FaultGraphReading reading = ReadGraph(operation, name, timeWindow, run, graph, &edges);
    if (reading == FaultGraphReading::UNKNOWN_GRAPH) {
        FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "the %s is not exsist.", name.c_str());
    } else if (reading == FaultGraphReading::NO_VALUE) {
        FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "Fail to get value.");
    }
    if (reading != FaultGraphReading::DONE) {
        return 1;
    }
    if (walk(graph, RootOf(operation, graph, rootGraph, byLabel, edges)) != 0) {
        FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "Failed to traverByBfs.");
        return 1;
    }
    return 0;
}

AnomalyPath PathOf(const AnomalyPathInfo& pathInfo, const std::string& graphName) {
    AnomalyPath path{pathInfo.anomalyNodeName, graphName, {}};
    for (const NodeResult& result : pathInfo.path) {
        path.nodes.push_back({result.ioPointid, result.locName, result.coff, result.avgdelay, result.erridx,
                              result.errCount, result.fixAdvice});
    }
    return path;
}

// Analyses `rootGraph` from the point that it names, and then the graphs to which the analysis is handed
// over, from their topological roots. Returns the status of the first one.
template <typename Analyse>
uint32_t FollowGraphs(const char* operation, RootGraph rootGraph, Analyse analyse,
                      std::vector<AnomalyPath>& paths) {
    std::set<std::string> analysed;
    for (;;) {
        AnomalyPathInfo pathInfo;
        const bool first = analysed.empty();
        const uint32_t result = analyse(rootGraph, first, pathInfo);
        if (result != 0 || pathInfo.statusCode != 0) {
            FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "Graph anlaysis failed.retCode: %d, statusCode: %d",
                      static_cast<int32_t>(result), pathInfo.statusCode);
            return first ? result : 0;
        }
        paths.push_back(PathOf(pathInfo, rootGraph.graphName));
        analysed.insert(rootGraph.graphName);
        if (pathInfo.nextGraphName.empty()) {
            return 0;
        }
        FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "new root graph name :%s",
                  pathInfo.nextGraphName.c_str());
        if (analysed.count(pathInfo.nextGraphName) > 0) {
            FAULT_LOG(FAULT_IN(operation), FAULT_WARNING,
                      "graph %s has been analysed already, the analysis ends.",
                      pathInfo.nextGraphName.c_str());
            return 0;
        }
        rootGraph = {{}, pathInfo.nextGraphName};
    }
}

}  // namespace

uint32_t GraphAnalysisBFSByRoot(const RootGraph& rootGraph, const TimeWindow& timeWindow, bool byLabel,
                                AnomalyPathInfo& pathInfo) {
    return AnalyseGraph<FaultCausalityGraph>(
        __func__, rootGraph, timeWindow, byLabel, FAULT_RUN_STEP,
        [&](const FaultCausalityGraph& graph, int32_t root) { return graph.TraverseByBfs(root, pathInfo); });
}

std::vector<AnomalyPath> FlowAnalysisBFS(std::string nodeName, std::string graphName, std::string startTime,
                                         std::string endTime) {
    std::vector<AnomalyPath> paths;
    const TimeWindow timeWindow{std::move(startTime), std::move(endTime)};
    FollowGraphs(
        __func__, {std::move(nodeName), std::move(graphName)},
        [&](const RootGraph& rootGraph, bool byLabel, AnomalyPathInfo& pathInfo) {
            return GraphAnalysisBFSByRoot(rootGraph, timeWindow, byLabel, pathInfo);
        },
        paths);
    return paths;
}

uint32_t AnalysisErrCodeBFSByRoot(const RootGraph& rootGraph, const TimeWindow& timeWindow, bool byLabel,
                                  int32_t erridx, AnomalyPathInfo& pathInfo) {
    const char* operation = __func__;
    const auto runGuarded = [operation](auto step) {
        bool done = false;
        FaultRunGuarded(FAULT_IN(operation), [&] { done = step(); });
        return done;
    };
    return AnalyseGraph<FaultCausalityErrCodeGraph>(
        operation, rootGraph, timeWindow, byLabel, runGuarded,
        [&](const FaultCausalityErrCodeGraph& graph, int32_t root) {
            return graph.TraverseByBfs(root, pathInfo, erridx);
        });
}

uint32_t AnalysisErrCodeBFS(const std::string& graphName, const std::string& startDate,
                            const std::string& endDate, const std::string& rootLabel, int32_t erridx,
                            std::vector<AnomalyPath>& paths) {
    const TimeWindow timeWindow{startDate, endDate};
    return FollowGraphs(
        __func__, {rootLabel, graphName},
        [&](const RootGraph& rootGraph, bool byLabel, AnomalyPathInfo& pathInfo) {
            return AnalysisErrCodeBFSByRoot(rootGraph, timeWindow, byLabel, erridx, pathInfo);
        },
        paths);
}
