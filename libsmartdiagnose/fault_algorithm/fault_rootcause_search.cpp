#define FAULT_UNIT_FILE "fault_rootcause.cpp"
#include <algorithm>
#include <numeric>
#include <set>
#include <tuple>

#include "fault_algorithm/fault_correlation.h"
#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_boundary.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_rate_limiter.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_spectrum_graph/fault_json_object.h"

namespace {

// Reads the nodes of the configuration's graph into `graph`, and loads its data. Log lines carry the
// name of `operation`.
template <typename Graph>
uint32_t LoadNodes(const char* operation, const std::string& graphName, const std::string& startDate,
                   const std::string& endDate, Graph& graph) {
    FaultJsonObject& config = FaultJsonObject::GetInstance();
    if (!config.IsMember(graphName)) {
        FAULT_LOG(FAULT_IN(operation), FAULT_WARNING, "The %s is not exist.", graphName.c_str());
        return 1;
    }
    Json::Value nodes;
    if (const uint32_t result = config.GetGraphValueByKeyTag(graphName, "nodes", nodes); result != 0) {
        FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "Fail to get graph value, ret(%d).",
                  static_cast<int32_t>(result));
        return 1;
    }
    graph.ExtracNodeInfo(nodes);
    if (graph.GetData(startDate, endDate) != 0) {
        FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "GetData failed.");
        return 1;
    }
    return 0;
}

// The delays of a point; null when there are none.
const FaultSeries* DelaysOf(const FaultCausalityGraph& graph, const Node& node) {
    if (node.statLabel == FAULT_OB_POINT) {
        const auto observed = graph.mapObserveData.find(node.locName);
        return observed != graph.mapObserveData.end() ? &observed->second : nullptr;
    }
    const auto& columns = graph.mapLumoData.at(node.locName);
    const auto delays = columns.find("avgdelay");
    return delays != columns.end() ? &delays->second : nullptr;
}

FaultFactor FactorOf(const FaultCausalityGraph& graph, const Node& node) {
    FaultFactor factor;
    factor.locName = node.locName;
    factor.fixAdvice = node.suggestion;
    const FaultSeries* delays = DelaysOf(graph, node);
    if (delays == nullptr || delays->empty()) {
        return factor;
    }
    std::vector<int64_t> samples;
    samples.reserve(delays->size());
    for (const FaultSeriesRow& row : *delays) {
        samples.push_back(row[1]);
    }
    std::vector<size_t> candidates = SmartDiagnose::Outliers(samples);
    factor.kind = candidates.empty() ? FaultFactorKind::MAX : FaultFactorKind::ABNORMAL;
    if (candidates.empty()) {
        candidates.resize(samples.size());
        std::iota(candidates.begin(), candidates.end(), size_t{0});
    }
    const auto less = [&](size_t a, size_t b) { return samples[a] < samples[b]; };
    const size_t largest = *std::max_element(candidates.begin(), candidates.end(), less);
    factor.delay = samples[largest];
    factor.time = (*delays)[largest][0];
    return factor;
}

bool ComesBefore(const FaultFactor& a, const FaultFactor& b) {
    return std::tie(a.kind, b.delay, a.locName) < std::tie(b.kind, a.delay, b.locName);
}

}  // namespace

uint32_t SearchAllErrCodeInGraph(const std::string& /*module*/, const std::string& graphName,
                                 const std::string& startDate, const std::string& endDate,
                                 FaultErrorPoints& points) {
    const char* operation = __func__;
    FaultCausalityErrCodeGraph graph;
    uint32_t result = 1;
    FaultRunGuarded(FAULT_HERE, [&] { result = LoadNodes(operation, graphName, startDate, endDate, graph); });
    return result != 0 ? result : SearchErrCodeDataByLumo(&graph, points);
}

uint32_t SearchErrCodeDataByLumo(const FaultCausalityErrCodeGraph* graph, FaultErrorPoints& points) {
    static FaultUsualLimiter limiter;
    if (graph->mapNodeInfo.empty() || graph->mapLumoData.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "The input nodeinfo and lumo data is empty.");
        return 1;
    }
    for (const auto& [id, node] : graph->mapNodeInfo) {
        const auto data = graph->mapLumoData.find(node.locName);
        if (data == graph->mapLumoData.end()) {
            FAULT_LOG_LIMITED(limiter, FAULT_HERE, FAULT_WARNING, "There's not data finded about %s.",
                              node.locName.c_str());
            continue;
        }
        NodeBase base;
        base.ioPointid = id;
        base.locName = node.locName;
        const NodeResult result = graph->GetNodeResult(base, data->second);
        for (size_t type = 0; type < FAULT_ERROR_TYPES.size(); ++type) {
            const char* name = FAULT_ERROR_TYPES[type];
            const FaultSeries& errors =
                FaultCausalityGraph::ColumnOf(data->second, "errCode" + std::to_string(type));
            const int64_t errNum = FaultCausalityErrCodeGraph::AvgSeriesArray(errors);
            SearchErrCodeUpdDataIntoMap(name, errNum, result, points[name]);
        }
    }
    return 0;
}

void SearchErrCodeUpdDataIntoMap(const std::string& typeName, int64_t errNum, const NodeResult& result,
                                 std::vector<NodeResult>& results) {
    static FaultUsualLimiter limiter;
    if (errNum == 0) {
        return;
    }
    const bool listed = std::any_of(results.begin(), results.end(),
                                    [&](const NodeResult& one) { return one.locName == result.locName; });
    if (listed) {
        FAULT_LOG_LIMITED(limiter, FAULT_HERE, FAULT_ERROR,
                          "Node already exists, err(%s) errNum(%ld) node(%s).", typeName.c_str(), errNum,
                          result.locName.c_str());
        return;
    }
    results.push_back(result);
    FAULT_LOG(FAULT_HERE, FAULT_INFO, "Insert data into map, err(%s) errNum(%ld) node(%s).", typeName.c_str(),
              errNum, result.locName.c_str());
}

uint32_t ShowFaultFactor(const std::string& moduleName, const std::string& startDate,
                         const std::string& endDate, std::vector<FaultFactor>& factors) {
    FaultCausalityGraph graph;
    if (LoadNodes(__func__, g_mapModuleFactor.at(moduleName), startDate, endDate, graph) != 0) {
        return 1;
    }
    if (graph.mapNodeInfo.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "The graph of %s has no points.", moduleName.c_str());
        return 1;
    }
    factors.clear();
    std::set<std::string> listed;
    for (const auto& [id, node] : graph.mapNodeInfo) {
        if (listed.insert(node.locName).second) {
            factors.push_back(FactorOf(graph, node));
        }
    }
    std::sort(factors.begin(), factors.end(), ComesBefore);
    return 0;
}
