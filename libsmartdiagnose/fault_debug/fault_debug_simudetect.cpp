#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "fault_debug/fault_debug_command.h"
#include "fault_debug/fault_debug_detection.h"

namespace {

constexpr int32_t ARGUMENTS = 5;

}  // namespace

void FaultSimuDetectCommand(int32_t argc, char** argv) {
    if (FaultRefusedBySwitch()) {
        return;
    }
    if (argc != ARGUMENTS) {
        FaultPrintError("input err");
        return;
    }
    FaultRange range{argv[FIRST_ARGUMENT], argv[FIRST_ARGUMENT + 1], {}, {}};
    if (!FaultConvertRange(range)) {
        return;
    }
    FaultDetectObject detector;
    detector.InitObject();
    detector.TestSqlData(range.startTime, range.endTime);
    const std::vector<AnomalyDetectResult> results = FaultDetectAndAlarm(detector, range);
    DBG_Print("\nSmartDiagnose Anomaly Point\n");
    DBG_Print("lumoLocName                        timeStamp               nomalyVal\n");
    for (const AnomalyDetectResult& result : results) {
        DBG_Print("%-35s%-20s%-20d\n", result.lumoLocName.c_str(), FaultReadableTime(result).c_str(),
                  static_cast<int32_t>(result.anomalyValue));
    }
}
