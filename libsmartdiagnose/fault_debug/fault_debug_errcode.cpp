#define FAULT_UNIT_FILE "fault_debug.cpp"
#include <algorithm>

#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_debug/fault_debug_table.h"

namespace {

constexpr const char* ALL_MODULES = "ALL";
constexpr int32_t FIRST_TIME_ARGUMENT = FIRST_ARGUMENT + 2;
const std::string NUMBER_TITLE = "ioPointid   ";

// Whether a point belongs to a module of a graph, by how its name begins.
bool IsOfModule(const std::string& point, const FaultNameMultimap& modules, const std::string& module) {
    const auto prefixes = modules.equal_range(module);
    return std::any_of(prefixes.first, prefixes.second, [&](const auto& entry) {
        return point.compare(0, entry.second.size(), entry.second) == 0;
    });
}

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
        if (module == ALL_MODULES || IsOfModule(node.locName, modules, module)) {
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

// The points of a module with errors of one type, and the sum of their counts.
struct ModuleErrors {
    int32_t points = 0;
    int64_t sum = 0;
};

ModuleErrors ErrorsOf(const std::string& module, const FaultNameMultimap& modules, FaultErrorPoints& points,
                      size_t type) {
    ModuleErrors errors;
    for (const NodeResult& point : points[FAULT_ERROR_TYPES.at(type)]) {
        if (IsOfModule(point.locName, modules, module)) {
            ++errors.points;
            errors.sum = FaultWrapAdd(errors.sum, point.errorSums.at(type));
        }
    }
    return errors;
}

void PrintGraphState(const std::string& graph, const FaultNameMultimap& modules, FaultErrorPoints& points) {
    DBG_Print("ErrCode Graph:%-24s\n", graph.c_str());
    DBG_Print(
        "Module          Points    IOERROR           Points    IORETRY           Points    "
        "IOACCESSDENY      \n");
    for (auto module = modules.begin(); module != modules.end();
         module = modules.upper_bound(module->first)) {
        const ModuleErrors failed = ErrorsOf(module->first, modules, points, 0);
        const ModuleErrors retried = ErrorsOf(module->first, modules, points, 1);
        const ModuleErrors denied = ErrorsOf(module->first, modules, points, 2);
        DBG_Print("%-16s%-10d%-18ld%-10d%-18ld%-10d%-18ld\n", module->first.c_str(), failed.points,
                  failed.sum, retried.points, retried.sum, denied.points, denied.sum);
    }
    FaultPrintSeparator();
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

void FaultErrCodeShowAllCommand(int32_t argc, char** argv) {
    std::string start;
    std::string end;
    if (FaultRefusedBySwitch() || !FaultParseRange(argc, argv, FIRST_ARGUMENT, start, end) ||
        !CheckTimeRange(start, end)) {
        return;
    }
    std::map<std::string, FaultErrorPoints> states;
    for (const auto& [graph, modules] : g_mapErrCodeGraphModulePrefix) {
        if (SearchAllErrCodeInGraph({}, graph, start, end, states[graph]) != 0) {
            FaultPrintSearchFailed();
            return;
        }
    }
    for (const auto& [graph, modules] : g_mapErrCodeGraphModulePrefix) {
        PrintGraphState(graph, modules, states[graph]);
    }
}
