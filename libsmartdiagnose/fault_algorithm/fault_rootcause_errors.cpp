#define FAULT_UNIT_FILE "fault_rootcause.cpp"
#include <algorithm>

#include "fault_algorithm/fault_rootcause.h"
#include "fault_algorithm/fault_rootcause_graph.h"
#include "fault_common/fault_boundary.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_rate_limiter.h"

uint32_t SearchAllErrCodeInGraph(const std::string& /*module*/, const std::string& graphName,
                                 const std::string& startDate, const std::string& endDate,
                                 FaultErrorPoints& points) {
    const char* operation = __func__;
    FaultCausalityErrCodeGraph graph;
    uint32_t result = 1;
    FaultRunGuarded(FAULT_HERE, [&] {
        result = FaultSearchGraph(operation, graphName, {startDate, endDate}, graph);
    });
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
