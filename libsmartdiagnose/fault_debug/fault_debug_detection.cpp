#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "fault_debug/fault_debug_detection.h"

#include "agent/agent_switch.h"
#include "fault_common/fault_common.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_switch/fault_diagnose_switch.h"

bool FaultConvertRange(FaultRange& range) {
    if (TransDateToTime(range.startDate, range.startTime) != 0 ||
        TransDateToTime(range.endDate, range.endTime) != 0) {
        FaultPrintError("input datetime err");
        return false;
    }
    return true;
}

std::vector<AnomalyDetectResult> FaultDetectAndAlarm(FaultDetectObject& detector, const FaultRange& range) {
    std::vector<AnomalyDetectResult> results = detector.DoDetect(range.startTime, range.endTime);
    // The other value that means "on" asks for no alarms.
    if (!results.empty() && ZorvCoreGetFaultDiagSwitch() == FAULT_DIAG_SWITCH_ON) {
        FaultDiagRecordAndSendAlarm();
    }
    return results;
}

std::string FaultReadableTime(const AnomalyDetectResult& result) {
    std::string date;
    TransUtcTimeToDate(std::to_string(result.anomalyTime), date);
    return date;
}
