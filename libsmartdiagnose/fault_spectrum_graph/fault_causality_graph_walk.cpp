#define FAULT_UNIT_FILE "fault_causality_graph.cpp"
#include "fault_spectrum_graph/fault_causality_graph_walk.h"
#include "fault_algorithm/fault_correlation.h"
#include "fault_common/fault_log.h"

namespace {

constexpr double NO_CORRELATION = -1.0;
constexpr double ROOT_COFF = 1.0;
constexpr double ANOMALY_COFF_MIN = 0.4;  // the path is anomalous as long as its coefficients reach this
constexpr const char* DELAY_COLUMN = "avgdelay";

NodeBase BaseOf(const Node& node, double coff) {
    NodeBase base;
    base.ioPointid = node.ioPointid;
    base.locName = node.locName;
    base.statLabel = node.statLabel;
    base.coff = coff;
    return base;
}

}  // namespace

double FaultCausalityGraph::GetCorrelation(const FaultSeries& parentSeries, const NodeBase& child) const {
    const FaultSeries* series = nullptr;
    if (child.statLabel.find(FAULT_OB_POINT) != std::string::npos) {
        const auto found = mapObserveData.find(child.locName);
        series = found != mapObserveData.end() ? &found->second : nullptr;
    } else {
        series = FindSeries(child.ioPointid, DELAY_COLUMN);
    }
    return series != nullptr ? WeightCompute(parentSeries, *series) : NO_CORRELATION;
}

NodeBase FaultCausalityGraph::SelectNodeByWeightCoff(const FaultSeries& parentSeries,
                                                     const std::vector<NodeBase>& candidates) const {
    NodeBase best;
    best.statLabel = FAULT_LUMO_POINT;
    best.coff = NO_CORRELATION;
    for (const NodeBase& candidate : candidates) {
        const double coff = GetCorrelation(parentSeries, candidate);
        if (coff > best.coff) {
            best.ioPointid = candidate.ioPointid;
            best.locName = candidate.locName;
            best.coff = coff;
        }
    }
    return best;
}

NodeResult FaultCausalityGraph::SelectChildNode(int32_t parentId, const std::vector<Edge>& edges) const {
    NodeResult result;
    result.endFlag = 1;
    const FaultSeries* series = FindSeries(parentId, DELAY_COLUMN);
    if (series == nullptr) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Get series dataArray failed.");
        return result;
    }
    std::vector<NodeBase> candidates;
    for (const Edge& edge : edges) {
        if (const auto node = mapNodeInfo.find(edge.targetId); node != mapNodeInfo.end()) {
            candidates.push_back(BaseOf(node->second, NO_CORRELATION));
        }
    }
    const NodeBase best = SelectNodeByWeightCoff(*series, candidates);
    if (const auto data = mapLumoData.find(best.locName); data != mapLumoData.end()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "rstNode.locName : %s.", best.locName.c_str());
        GetNodeResult(best, data->second, result);
    }
    return result;
}

void FaultCausalityGraph::GetNodeResult(const NodeBase& node, const std::map<std::string, FaultSeries>& data,
                                        NodeResult& result) const {
    result.ioPointid = node.ioPointid;
    result.locName = node.locName;
    result.coff = node.coff;
    // An observation point always ends the path.
    result.endFlag = node.locName.find(FAULT_OB_MARK) != std::string::npos ? 1 : 0;
    if (result.endFlag != 0) {
        return;
    }
    result.fixAdvice = GetFixAdvice(node.ioPointid);
    result.acceptnum = SumTimeSeriesArray(ColumnOf(data, "acceptnum"));
    result.successnum = SumTimeSeriesArray(ColumnOf(data, "successnum"));
    result.failednum = SumTimeSeriesArray(ColumnOf(data, "failednum"));
    result.retrynum = SumTimeSeriesArray(ColumnOf(data, "retrynum"));
    result.avgdelay = AvgSeriesArray(ColumnOf(data, DELAY_COLUMN));
    result.maxdelay = MaxTimeSeriesArray(ColumnOf(data, "maxdelay"));
}

std::string FaultCausalityGraph::GetFixAdvice(int32_t nodeId) const {
    const auto node = mapNodeInfo.find(nodeId);
    return node != mapNodeInfo.end() ? node->second.suggestion : std::string();
}

uint32_t FaultCausalityGraph::TraverseByBfs(int32_t root, AnomalyPathInfo& pathInfo) const {
    const Node* node = FindWalkRoot(root, FAULT_UNIT_FILE);
    const auto* data = node != nullptr ? FindWalkData(*node, FAULT_UNIT_FILE) : nullptr;
    if (data == nullptr) {
        return 1;
    }
    std::vector<NodeResult> path(1);
    GetNodeResult(BaseOf(*node, ROOT_COFF), *data, path.front());
    Descend(
        path, [this](int32_t parentId, const auto& edges) { return SelectChildNode(parentId, edges); },
        FAULT_UNIT_FILE);
    return GetAnomalyResult(path, pathInfo);
}

const Node* FaultCausalityGraph::FindWalkRoot(int32_t root, const char* file) const {
    const auto node = mapNodeInfo.find(root);
    if (node == mapNodeInfo.end()) {
        FAULT_LOG((FaultLogSite{file, __LINE__, FAULT_WALK}), FAULT_ERROR, "no root node:%d", root);
        return nullptr;
    }
    return &node->second;
}

const std::map<std::string, FaultSeries>* FaultCausalityGraph::FindWalkData(const Node& root,
                                                                            const char* file) const {
    const auto data = mapLumoData.find(root.locName);
    if (data == mapLumoData.end()) {
        FAULT_LOG((FaultLogSite{file, __LINE__, FAULT_WALK}), FAULT_ERROR, "There is no %s in mapLumoData.",
                  root.locName.c_str());
        return nullptr;
    }
    return &data->second;
}

const FaultSeries& FaultCausalityGraph::ColumnOf(const std::map<std::string, FaultSeries>& data,
                                                 const std::string& column) {
    static const FaultSeries none;
    const auto found = data.find(column);
    return found != data.end() ? found->second : none;
}

uint32_t FaultCausalityGraph::GetAnomalyResult(const std::vector<NodeResult>& path,
                                               AnomalyPathInfo& pathInfo) const {
    const NodeResult* choice = nullptr;
    for (const NodeResult& result : path) {
        if (result.coff == 0.0) {
            continue;
        }
        if (result.coff < ANOMALY_COFF_MIN) {
            break;
        }
        choice = &result;
    }
    if (choice == nullptr) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "no node of the path is anomalous.");
        return 1;
    }
    const auto node = mapNodeInfo.find(choice->ioPointid);
    pathInfo.nextGraphName = node != mapNodeInfo.end() ? node->second.nextGraph : std::string();
    pathInfo.anomalyNodeName = choice->locName;
    pathInfo.anomalyNodeId = choice->ioPointid;
    pathInfo.path = path;
    pathInfo.statusCode = 0;
    return 0;
}
