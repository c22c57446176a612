#include "fault_algorithm/fault_rootcause.h"

#include <set>

#include "fault_common/fault_log.h"
#include "fault_spectrum_graph/fault_json_object.h"

namespace {

AnomalyPath PathOf(const AnomalyPathInfo& pathInfo, const std::string& graphName) {
    AnomalyPath path{pathInfo.anomalyNodeName, graphName, {}};
    for (const NodeResult& result : pathInfo.path) {
        path.nodes.push_back({result.ioPointid, result.locName, result.coff, result.avgdelay});
    }
    return path;
}

}  // namespace

uint32_t GraphAnalysisBFSByRoot(const RootGraph& rootGraph, const TimeWindow& timeWindow, bool byLabel,
                                AnomalyPathInfo& pathInfo) {
    FaultJsonObject& config = FaultJsonObject::GetInstance();
    if (!config.IsMember(rootGraph.graphName)) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "the %s is not exsist.", rootGraph.graphName.c_str());
        return 1;
    }
    Json::Value nodes;
    Json::Value edges;
    if (config.GetGraphValueByKeyTag(rootGraph.graphName, "nodes", nodes) != 0 ||
        config.GetGraphValueByKeyTag(rootGraph.graphName, "edges", edges) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Fail to get value.");
        return 1;
    }
    FaultCausalityGraph graph;
    graph.InitGraph(edges);
    graph.ExtracNodeInfo(nodes);
    if (graph.GetData(timeWindow.startTime, timeWindow.endTime) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "GetData failed.");
        return 1;
    }
    int32_t rootId = 0;
    if (byLabel) {
        graph.FindRootBySpecificLabel(rootGraph.label, rootId);
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "FindRootBySpecificLabel rootId: %d.", rootId);
    } else {
        graph.FindRootBySelf(edges, rootId);
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "FindRootBySelf rootId: %d.", rootId);
    }
    if (graph.TraverseByBfs(rootId, pathInfo) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Failed to traverByBfs.");
        return 1;
    }
    return 0;
}

std::vector<AnomalyPath> FlowAnalysisBFS(std::string nodeName, std::string graphName, std::string startTime,
                                         std::string endTime) {
    std::vector<AnomalyPath> paths;
    std::set<std::string> analysed;
    const TimeWindow timeWindow{std::move(startTime), std::move(endTime)};
    RootGraph rootGraph{std::move(nodeName), std::move(graphName)};
    bool byLabel = true;  // only the first graph is entered at a point known by name
    for (;;) {
        AnomalyPathInfo pathInfo;
        const uint32_t result = GraphAnalysisBFSByRoot(rootGraph, timeWindow, byLabel, pathInfo);
        if (result != 0 || pathInfo.statusCode != 0) {
            FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Graph anlaysis failed.retCode: %d, statusCode: %d",
                      static_cast<int32_t>(result), pathInfo.statusCode);
            return paths;
        }
        paths.push_back(PathOf(pathInfo, rootGraph.graphName));
        analysed.insert(rootGraph.graphName);
        if (pathInfo.nextGraphName.empty()) {
            return paths;
        }
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "new root graph name :%s", pathInfo.nextGraphName.c_str());
        if (analysed.count(pathInfo.nextGraphName) > 0) {
            FAULT_LOG(FAULT_HERE, FAULT_WARNING, "graph %s has been analysed already, the analysis ends.",
                      pathInfo.nextGraphName.c_str());
            return paths;
        }
        rootGraph = {{}, pathInfo.nextGraphName};
        byLabel = false;
    }
}
