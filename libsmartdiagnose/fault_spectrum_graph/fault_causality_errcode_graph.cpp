#include "fault_spectrum_graph/fault_causality_errcode_graph.h"

#include "fault_common/fault_common.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_rate_limiter.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_database/fault_database.h"
#include "fault_spectrum_graph/fault_causality_graph_walk.h"

namespace {

constexpr const char* MODULE_MARK = "MODULE";  // in a description
constexpr const char* WHOLE = "whole";
constexpr const char* ATOMIC = "automic";
constexpr const char* FOLLOW = "follow";

bool Has(const std::string& text, const char* word) {
    return text.find(word) != std::string::npos;
}

NodeBase BaseOf(const Node& node) {
    NodeBase base;
    base.ioPointid = node.ioPointid;
    base.locName = node.locName;
    base.statLabel = node.statLabel;
    base.attr = node.attr;
    return base;
}

void Weigh(NodeBase& node, int64_t errCount) {
    node.errCount = errCount;
    node.coff = static_cast<double>(errCount);
}

}  // namespace

const std::string& FaultCountedPoint(const ErrCodeAttr& attr) {
    return Has(attr.attr, ATOMIC) && !Has(attr.attr, WHOLE) ? attr.qname : attr.label;
}

bool FaultFollowsParent(const std::string& attr) {
    return Has(attr, FOLLOW);
}

void FaultCausalityErrCodeGraph::SetFrameGraphFlag(bool /*flag*/) {
    frameGraphFlag = true;
}

void FaultCausalityErrCodeGraph::ExtracNodeInfo(const Json::Value& nodes) {
    for (const Json::Value& json : nodes) {
        Node node = ReadNode(json);
        if (!Has(node.description, MODULE_MARK)) {
            const Json::Value& info = json["info"];
            ErrCodeAttr attr;
            attr.label = node.locName;
            attr.attr = info.isMember("attr") ? info["attr"].asString() : "";
            attr.erridx = info.isMember("erridx") ? FaultToInt32(info["erridx"].asString()) : -1;
            attr.qname = info.isMember("qname") ? info["qname"].asString() : "";
            node.attr = attr.attr;
            if (!frameGraphFlag) {
                mapErrCodeAttr[node.locName] = std::move(attr);
            }
        }
        const int32_t id = node.ioPointid;
        mapNodeInfo[id] = std::move(node);
    }
}

uint32_t FaultCausalityErrCodeGraph::GetData(const std::string& startDate, const std::string& endDate) {
    if (frameGraphFlag) {
        return 0;
    }
    std::string startTime;
    std::string endTime;
    std::vector<std::string> tables;
    uint32_t result = TransDateToTime(startDate, startTime);
    result += TransDateToTime(endDate, endTime);
    result += FaultGetQueryTable(startDate, endDate, tables);
    result += GetErrCodeData(startTime, endTime, tables);
    if (result != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "get data failed.");
        return 1;
    }
    return 0;
}

uint32_t FaultCausalityErrCodeGraph::GetErrCodeData(const std::string& startTime, const std::string& endTime,
                                                    const std::vector<std::string>& tables) {
    FaultSqlInputParam query{"curtime", "avgdelay", {}, {}, startTime, endTime};
    for (const auto& [label, attr] : mapErrCodeAttr) {
        std::map<std::string, FaultSeries> columns;
        if (LoadPoint(query, FaultCountedPoint(attr), tables, columns) != 0) {
            FAULT_LOG(FAULT_HERE, FAULT_ERROR, "get lumodata from database failed.");
            return 1;
        }
        mapLumoData[label] = std::move(columns);
    }
    return 0;
}

int64_t FaultCausalityErrCodeGraph::AvgSeriesArray(const FaultSeries& series) {
    return SumTimeSeriesArray(series);
}

bool FaultCausalityErrCodeGraph::CheckIfReturnDiffErrCodeToTop(const NodeBase& node) const {
    return FaultReturnsDiffErrCode(node.locName);
}

int64_t FaultCausalityErrCodeGraph::GetErrCodeAvgNum(const NodeBase& node, int32_t erridx) const {
    if (mapErrCodeAttr.count(node.locName) == 0) {
        return 0;
    }
    // An unknown index is added to the table, without a column, which finds no series.
    const FaultSeries* series = FindSeries(node.ioPointid, g_mapErrIdxName[erridx]);
    const int64_t count = series != nullptr ? AvgSeriesArray(*series) : 0;
    return count == 0 && CheckIfReturnDiffErrCodeToTop(node) ? GetOtherErrCodeAvgNum(node, erridx) : count;
}

int64_t FaultCausalityErrCodeGraph::GetOtherErrCodeAvgNum(const NodeBase& node, int32_t erridx) const {
    if (mapErrCodeAttr.count(node.locName) == 0) {
        return 0;
    }
    for (const auto& [index, column] : g_mapErrIdxName) {
        const FaultSeries* series = index != erridx ? FindSeries(node.ioPointid, column) : nullptr;
        const int64_t count = series != nullptr ? AvgSeriesArray(*series) : 0;
        if (count > 0) {
            return count;
        }
    }
    return 0;
}

NodeResult FaultCausalityErrCodeGraph::GetNodeResult(const NodeBase& node,
                                                     const std::map<std::string, FaultSeries>& data) const {
    NodeResult result;
    result.ioPointid = node.ioPointid;
    result.locName = node.locName;
    result.coff = node.coff;
    result.errCount = node.errCount;
    if (node.locName.empty() || data.empty()) {
        result.endFlag = 1;
        return result;
    }
    static const ErrCodeAttr none;
    const auto found = mapErrCodeAttr.find(node.locName);
    const ErrCodeAttr& attr = found != mapErrCodeAttr.end() ? found->second : none;
    const auto sumOf = [&](const std::string& column) { return AvgSeriesArray(ColumnOf(data, column)); };
    if (Has(attr.attr, ATOMIC)) {
        result.erridx = attr.erridx;
        result.acceptnum = sumOf(g_mapErrIdxName[attr.erridx]);
    } else {
        result.acceptnum = sumOf("acceptnum");
    }
    result.isFollow = FaultFollowsParent(attr.attr);
    result.errorSums = {sumOf("errCode0"), sumOf("errCode1"), sumOf("errCode2")};
    result.fixAdvice = GetFixAdvice(node.ioPointid);
    return result;
}

NodeBase FaultCausalityErrCodeGraph::SelectNodeByErrCountWeight(const std::vector<NodeBase>& candidates,
                                                                int32_t erridx) const {
    const auto bestOf = [&](bool follows) {
        NodeBase best;
        best.attr = WHOLE;
        Weigh(best, 0);
        for (const NodeBase& candidate : candidates) {
            if (FaultFollowsParent(candidate.attr) != follows) {
                continue;
            }
            const int64_t count = GetErrCodeAvgNum(candidate, erridx);
            if (count > best.errCount) {
                best = candidate;
                Weigh(best, count);
            }
        }
        return best;
    };
    const NodeBase ordinaryBest = bestOf(false);  // looked at first: failures are logged in this order
    const NodeBase followBest = bestOf(true);
    return followBest.errCount > 0 ? followBest : ordinaryBest;
}

NodeResult FaultCausalityErrCodeGraph::SelectChildNode(const std::vector<Edge>& edges, int32_t erridx) const {
    static FaultUsualLimiter limiter;
    std::vector<NodeBase> candidates;
    for (const Edge& edge : edges) {
        if (const auto node = mapNodeInfo.find(edge.targetId); node != mapNodeInfo.end()) {
            candidates.push_back(BaseOf(node->second));
        }
    }
    const NodeBase best = SelectNodeByErrCountWeight(candidates, erridx);
    const auto data = mapLumoData.find(best.locName);
    if (data == mapLumoData.end()) {
        return {};
    }
    NodeResult result = GetNodeResult(best, data->second);
    FAULT_LOG_LIMITED(limiter, FAULT_HERE, FAULT_ERROR,
                      "rstNode.locName(%s), nodeRst.locName(%s), acceptnum(%d), erridx(%d), isFollow(%d).",
                      best.locName.c_str(), result.locName.c_str(), static_cast<int32_t>(result.acceptnum),
                      result.erridx, result.isFollow ? 1 : 0);
    return result;
}

uint32_t FaultCausalityErrCodeGraph::TraverseByBfs(int32_t root, AnomalyPathInfo& pathInfo,
                                                   int32_t erridx) const {
    const Node* node = FindWalkRoot(root, FAULT_UNIT_FILE);
    if (node == nullptr) {
        return 1;
    }
    const auto* data = FindWalkData(*node, FAULT_UNIT_FILE);
    if (data == nullptr) {
        return 0;
    }
    NodeBase base = BaseOf(*node);
    Weigh(base, GetErrCodeAvgNum(base, erridx));
    std::vector<NodeResult> path{GetNodeResult(base, *data)};
    Descend(
        path, [&](int32_t /*parentId*/, const auto& edges) { return SelectChildNode(edges, erridx); },
        FAULT_UNIT_FILE);
    return GetAnomalyResult(path, pathInfo);
}

uint32_t FaultCausalityErrCodeGraph::GetAnomalyResult(const std::vector<NodeResult>& path,
                                                      AnomalyPathInfo& pathInfo) const {
    const NodeResult& rootCause = path.back();
    const auto node = mapNodeInfo.find(rootCause.ioPointid);
    pathInfo.anomalyNodeName = node != mapNodeInfo.end() ? node->second.nextGraph : std::string();
    pathInfo.nextGraphName = pathInfo.anomalyNodeName;
    pathInfo.anomalyNodeId = rootCause.ioPointid;
    pathInfo.path = path;
    pathInfo.statusCode = 0;
    return 0;
}
