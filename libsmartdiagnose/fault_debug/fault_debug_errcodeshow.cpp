#define FAULT_UNIT_FILE "fault_debug.cpp"
#include <algorithm>

#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_debug/fault_debug_table.h"

namespace {

constexpr const char* ALL_MODULES = "ALL";
constexpr int32_t FIRST_TIME_ARGUMENT = FIRST_ARGUMENT + 2;
const std::string NUMBER_TITLE = "ioPointid   ";

bool IsModuleOfAnyGraph(const std::string& module) {
    const auto& graphs = g_mapErrCodeGraphModulePrefix;
    return std::any_of(graphs.begin(), graphs.end(),
                       [&](const auto& graph) { return graph.second.count(module) > 0; });
}

// What the analysis that began in one graph found.
struct GraphErrors {
    const FaultNameMultimap* modules;  // of the graph
    std::vector<AnomalyPath> paths;    // those with errors
};

bool HasNoErrors(const AnomalyPath& path) {
    return std::all_of(path.nodes.begin(), path.nodes.end(),
                       [](const AnomalyNodeInfo& node) { return node.errCount == 0; });
}

// Analyses all graphs that have the module. False when one fails.
bool FindErrorPaths(int32_t erridx, const std::string& module, const TimeWindow& range,
                    std::vector<GraphErrors>& found) {
    for (const auto& [point, graph] : g_mapPointErrCodeGraph) {
        const FaultNameMultimap& modules = g_mapErrCodeGraphModulePrefix.at(graph);
        if (module != ALL_MODULES && modules.count(module) == 0) {
            continue;
        }
        GraphErrors errors{&modules, {}};
        if (AnalysisErrCodeBFS(graph, range.startTime, range.endTime, point, erridx, errors.paths) != 0) {
            return false;
        }
        const auto end = std::remove_if(errors.paths.begin(), errors.paths.end(), HasNoErrors);
        errors.paths.erase(end, errors.paths.end());
        found.push_back(std::move(errors));
    }
    return true;
}

void PrintErrorPath(const AnomalyPath& path, const FaultNameMultimap& modules, const std::string& module) {
    FaultPrintPathHead("RootCauseName                   RootGraphName\n", path.anomalyNodeName,
                       path.rootGraphName);
    FaultPrintPointsHead(NUMBER_TITLE);
    for (const AnomalyNodeInfo& node : path.nodes) {
        if (module == ALL_MODULES || FaultIsOfModule(node.locName, modules, module)) {
            FaultPrintPointsRow(NUMBER_TITLE, node.ioPointid, node.locName, node.errCount, node.fixAdvice);
        }
    }
}

void PrintGraphErrors(const GraphErrors& errors, const std::string& module) {
    DBG_Print("\n                   ErrCode Analysis\n");
    if (errors.paths.empty()) {
        FaultPrintNoPath();
    }
    for (const AnomalyPath& path : errors.paths) {
        PrintErrorPath(path, *errors.modules, module);
    }
}

}  // namespace

void FaultErrCodeShowCommand(int32_t argc, char** argv) {
    TimeWindow range;
    if (FaultRefusedBySwitch() ||
        !FaultParseRange(argc, argv, FIRST_TIME_ARGUMENT, range.startTime, range.endTime)) {
        return;
    }
    const auto type = g_mapTypeIdx.find(argv[FIRST_ARGUMENT]);
    const std::string module = argv[FIRST_ARGUMENT + 1];
    if (type == g_mapTypeIdx.end() || (module != ALL_MODULES && !IsModuleOfAnyGraph(module))) {
        FaultPrintError("type err");
        return;
    }
    if (!CheckTimeRange(range.startTime, range.endTime)) {
        return;
    }
    std::vector<GraphErrors> found;
    if (!FindErrorPaths(type->second, module, range, found)) {
        FaultPrintSearchFailed();
        return;
    }
    for (const GraphErrors& errors : found) {
        PrintGraphErrors(errors, module);
    }
}
