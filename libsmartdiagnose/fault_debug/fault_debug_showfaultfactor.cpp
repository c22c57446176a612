#define FAULT_UNIT_FILE "fault_debug.cpp"
#include <array>

#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_debug/fault_debug_table.h"

namespace {

constexpr int32_t ARGUMENTS = 6;
constexpr std::array<const char*, 3> KIND_NAMES = {"abnormal", "max", "no data"};

void PrintFactor(int32_t number, const FaultFactor& factor) {
    std::string value = FAULT_NOTHING;
    std::string time = FAULT_NOTHING;
    if (factor.kind != FaultFactorKind::NO_DATA) {
        value = std::to_string(factor.delay);
        TransUtcTimeToDate(std::to_string(factor.time), time);
    }
    DBG_Print("%-5d%-50s  %-10s  %-18s  %-20s  %s\n", number, factor.locName.c_str(),
              KIND_NAMES.at(static_cast<size_t>(factor.kind)), value.c_str(), time.c_str(),
              FaultAdviceText(factor.fixAdvice).c_str());
}

}  // namespace

void FaultShowFaultFactorCommand(int32_t argc, char** argv) {
    if (FaultRefusedBySwitch()) {
        return;
    }
    if (argc != ARGUMENTS) {
        FaultPrintError("input err");
        return;
    }
    const std::string module = argv[FIRST_ARGUMENT];
    const std::string start = argv[FIRST_ARGUMENT + 1];
    const std::string end = argv[FIRST_ARGUMENT + 2];
    if (!CheckTimeRange(start, end)) {
        return;
    }
    if (g_mapModuleFactor.count(module) == 0) {
        FaultPrintError("type err");
        return;
    }
    std::vector<FaultFactor> factors;
    if (ShowFaultFactor(module, start, end, factors) != 0) {
        FaultPrintSearchFailed();
        return;
    }
    DBG_Print("\nSmartDiagnose Fault Factor\n");
    DBG_Print(
        "No.  LocalPointName                                      Kind        Value(us)           Time"
        "                  FixAdvice\n");
    int32_t number = 0;
    for (const FaultFactor& factor : factors) {
        PrintFactor(++number, factor);
    }
}
