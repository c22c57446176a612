#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "fault_algorithm/fault_anomalydetect.h"
#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_database/fault_database.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_debug/fault_debug_table.h"

namespace {

constexpr int64_t SPAN_SECONDS = 480;  // analysed before and after an anomaly

// Whether the agent healed something in the range, which is then all that is printed.
bool ZorvFaultCanGetHealEvent(const std::string& start, const std::string& end) {
    std::vector<FaultHealEvent> events;
    if (FaultQueryHealEvent(start, end, events) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "Failed to query heal event.");
        return false;
    }
    if (events.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "Heal event is empty.");
        return false;
    }
    DBG_Print("\n                   IoAbnormal Analysis\n");
    FaultPrintEqualsLine();
    DBG_Print("time             ioabnType       modulename      infercause\n");
    for (const auto& [time, module, healCause, inferredCause] : events) {
        DBG_Print("%-17s%-16s%-16s%-16s\n", time.c_str(), healCause.c_str(), module.c_str(),
                  inferredCause.c_str());
    }
    return true;
}

void PrintPath(const AnomalyPath& path) {
    FaultPrintPathHead("AnomalyNodeName                  RootGraphName\n", path.anomalyNodeName,
                       path.rootGraphName);
    DBG_Print("ioPointid      locName                         coff         avgdelay(us)\n");
    for (const AnomalyNodeInfo& node : path.nodes) {
        DBG_Print("%-12d%-32s%-13f%-30ld\n", node.ioPointid, node.locName.c_str(), node.coff, node.avgdelay);
    }
}

void ZorvFaultAnalysisInner(const std::string& point, const std::string& graph, const TimeWindow& span) {
    FAULT_LOG(FAULT_HERE, FAULT_INFO, "Fault analysis (nodeName:%s, graphName:%s).", point.c_str(),
              graph.c_str());
    FAULT_LOG(FAULT_HERE, FAULT_INFO, "Fault analysis timerange(%s, %s).", span.startTime.c_str(),
              span.endTime.c_str());
    const std::vector<AnomalyPath> paths = FlowAnalysisBFS(point, graph, span.startTime, span.endTime);
    DBG_Print("\n                   CausalityGraph Analysis\n");
    if (paths.empty()) {
        FaultPrintNoPath();
    }
    for (const AnomalyPath& path : paths) {
        PrintPath(path);
    }
}

// The span around an anomaly, in compact local time.
bool SpanAround(int64_t time, TimeWindow& span) {
    return TransUtcTimeToLocalTime(std::to_string(FaultWrapAdd(time, SPAN_SECONDS)), span.endTime) == 0 &&
           TransUtcTimeToLocalTime(std::to_string(FaultWrapSubtract(time, SPAN_SECONDS)), span.startTime) ==
               0;
}

void ZorvFaultMultiAnomalyProcess(const std::vector<AnomalyDetectResult>& results) {
    for (const AnomalyDetectResult& result : results) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "Fault detect (time: %d, val: %d).",
                  static_cast<int32_t>(result.anomalyTime), static_cast<int32_t>(result.anomalyValue));
        TimeWindow span;
        if (!SpanAround(result.anomalyTime, span)) {
            return;
        }
        const auto graphs = g_mapPointSubPoints.equal_range(result.lumoLocName);
        for (auto graph = graphs.first; graph != graphs.second; ++graph) {
            ZorvFaultAnalysisInner(graph->first, graph->second, span);
        }
    }
}

void ZorvFaultAnalysis(const std::string& start, const std::string& end) {
    const std::vector<AnomalyDetectResult> results = anomalyDetect(start, end);
    if (results.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "Fault no detect  result and travese default!");
        DBG_Print("There's no detect result in this time interval(from %s to %s)!\n", start.c_str(),
                  end.c_str());
        return;
    }
    ZorvFaultMultiAnomalyProcess(results);
}

}  // namespace

void FaultDelayAnalCommand(int32_t argc, char** argv) {
    std::string start;
    std::string end;
    if (!FaultRefusedBySwitch() && FaultParseRange(argc, argv, FIRST_ARGUMENT, start, end) &&
        CheckTimeRange(start, end) && !ZorvFaultCanGetHealEvent(start, end)) {
        ZorvFaultAnalysis(start, end);
    }
}
