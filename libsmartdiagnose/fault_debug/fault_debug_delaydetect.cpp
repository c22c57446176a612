#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "fault_debug/fault_debug_command.h"
#include "fault_debug/fault_debug_detection.h"

void FaultDelayDetectCommand(int32_t argc, char** argv) {
    FaultRange range;
    if (!FaultParseRange(argc, argv, FIRST_ARGUMENT, range.startDate, range.endDate) ||
        !CheckTimeRange(range.startDate, range.endDate) || !FaultConvertRange(range)) {
        return;
    }
    FaultDetectObject detector;
    detector.InitObject();
    detector.GetData(range.startDate, range.endDate);
    const std::vector<AnomalyDetectResult> results = FaultDetectAndAlarm(detector, range);
    DBG_Print("\nSmartDiagnose Anomaly Point\n");
    DBG_Print("lumoLocName                        anomalyTime               anomalyValue\n");
    for (const AnomalyDetectResult& result : results) {
        DBG_Print("%-35s%-24s%-20ld\n", result.lumoLocName.c_str(), FaultReadableTime(result).c_str(),
                  result.anomalyValue);
    }
}
