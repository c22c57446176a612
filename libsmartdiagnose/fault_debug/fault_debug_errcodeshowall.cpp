#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_debug/fault_debug_table.h"

namespace {

// The points of a module with errors of one type, and the sum of their counts.
struct ModuleErrors {
    int32_t points = 0;
    int64_t sum = 0;
};

ModuleErrors ErrorsOf(const std::string& module, const FaultNameMultimap& modules, FaultErrorPoints& points,
                      size_t type) {
    ModuleErrors errors;
    for (const NodeResult& point : points[FAULT_ERROR_TYPES.at(type)]) {
        if (FaultIsOfModule(point.locName, modules, module)) {
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
