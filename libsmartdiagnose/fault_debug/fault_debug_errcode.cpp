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

// A path, and the modules of the graph in which its analysis began.
struct ErrorPath {
    AnomalyPath path;
    const FaultNameMultimap* modules;
};

bool HasErrors(const AnomalyPath& path) {
    return std::any_of(path.nodes.begin(), path.nodes.end(),
                       [](const AnomalyNodeInfo& node) { return node.errCount != 0; });
}

// Appends the paths with errors of all graphs that have the module. False when a graph fails.
bool FindErrorPaths(int32_t erridx, const std::string& module, const TimeWindow& range,
                    std::vector<ErrorPath>& found) {
    for (const auto& [point, graph] : g_mapPointErrCodeGraph) {
        const FaultNameMultimap& modules = g_mapErrCodeGraphModulePrefix.at(graph);
        if (module != ALL_MODULES && modules.count(module) == 0) {
            continue;
        }
        std::vector<AnomalyPath> paths;
        if (AnalysisErrCodeBFS(graph, range.startTime, range.endTime, point, erridx, paths) != 0) {
            return false;
        }
        for (AnomalyPath& path : paths) {
            if (HasErrors(path)) {
                found.push_back({std::move(path), &modules});
            }
        }
    }
    return true;
}

void PrintErrorPath(const ErrorPath& error, const std::string& module) {
    FaultPrintPathHead("RootCauseName                   RootGraphName\n", error.path.anomalyNodeName,
                       error.path.rootGraphName);
    FaultPrintPointsHead(NUMBER_TITLE);
    for (const AnomalyNodeInfo& node : error.path.nodes) {
        if (module == ALL_MODULES || IsOfModule(node.locName, *error.modules, module)) {
            FaultPrintPointsRow(NUMBER_TITLE, node.ioPointid, node.locName, node.errCount, node.fixAdvice);
        }
    }
}

void PrintErrorPaths(const std::vector<ErrorPath>& paths, const std::string& module) {
    DBG_Print("\n                   ErrCode Analysis\n");
    if (paths.empty()) {
        FaultPrintNoPath();
    }
    for (const ErrorPath& path : paths) {
        PrintErrorPath(path, module);
    }
}

// A module's points with errors, of one type, and the sum of their counts.
void PrintModuleErrors(const std::string& module, const FaultNameMultimap& modules,
                       const std::vector<NodeResult>& points, size_t column) {
    int32_t count = 0;
    int64_t sum = 0;
    for (const NodeResult& point : points) {
        if (IsOfModule(point.locName, modules, module)) {
            ++count;
            sum = FaultWrapAdd(sum, point.errorSums.at(column));
        }
    }
    DBG_Print("%-10d%-18ld", count, sum);
}

void PrintGraphState(const std::string& graph, const FaultNameMultimap& modules, FaultErrorPoints& points) {
    DBG_Print("ErrCode Graph:%-24s\n", graph.c_str());
    DBG_Print(
        "Module          Points    IOERROR           Points    IORETRY           Points    "
        "IOACCESSDENY      \n");
    for (auto module = modules.begin(); module != modules.end();
         module = modules.upper_bound(module->first)) {
        DBG_Print("%-16s", module->first.c_str());
        for (size_t type = 0; type < FAULT_ERROR_TYPES.size(); ++type) {
            PrintModuleErrors(module->first, modules, points[FAULT_ERROR_TYPES.at(type)], type);
        }
        DBG_Print("\n");
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
    std::vector<ErrorPath> paths;
    if (!FindErrorPaths(type->second, module, range, paths)) {
        FaultPrintSearchFailed();
        return;
    }
    PrintErrorPaths(paths, module);
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
