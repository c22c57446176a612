#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "agent/agent_switch.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_number.h"
#include "fault_database/fault_database.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_spectrum_graph/fault_detect_object.h"
#include "fault_switch/fault_diagnose_switch.h"

namespace {

constexpr int32_t SIMU_DETECT_ARGUMENTS = 5;
constexpr int32_t DATA_SHOW_ARGUMENTS = 7;
constexpr int32_t SHOW_VALID_TIME_ARGUMENTS = 3;

// A range as the operator gave it, compact local times, and as UTC seconds.
struct FaultRange {
    std::string startDate, endDate;
    std::string startTime, endTime;
};

// Fills in the seconds; prints an error line when a date does not convert.
bool ConvertRange(FaultRange& range) {
    if (TransDateToTime(range.startDate, range.startTime) != 0 ||
        TransDateToTime(range.endDate, range.endTime) != 0) {
        FaultPrintError("input datetime err");
        return false;
    }
    return true;
}

// One run of the detector over what `load` gives it.
template <typename Load>
std::vector<AnomalyDetectResult> DetectAndAlarm(const FaultRange& range, Load load) {
    FaultDetectObject detector;
    detector.InitObject();
    load(detector);
    std::vector<AnomalyDetectResult> results = detector.DoDetect(range.startTime, range.endTime);
    // The other value that means "on" asks for no alarms.
    if (!results.empty() && ZorvCoreGetFaultDiagSwitch() == FAULT_DIAG_SWITCH_ON) {
        FaultDiagRecordAndSendAlarm();
    }
    return results;
}

std::string ReadableTime(const AnomalyDetectResult& result) {
    std::string date;
    TransUtcTimeToDate(std::to_string(result.anomalyTime), date);
    return date;
}

}  // namespace

void FaultDelayDetectCommand(int32_t argc, char** argv) {
    FaultRange range;
    if (!FaultParseRange(argc, argv, FIRST_ARGUMENT, range.startDate, range.endDate) ||
        !CheckTimeRange(range.startDate, range.endDate) || !ConvertRange(range)) {
        return;
    }
    const std::vector<AnomalyDetectResult> results = DetectAndAlarm(
        range, [&](FaultDetectObject& detector) { detector.GetData(range.startDate, range.endDate); });
    DBG_Print("\nSmartDiagnose Anomaly Point\n");
    DBG_Print("lumoLocName                        anomalyTime               anomalyValue\n");
    for (const AnomalyDetectResult& result : results) {
        DBG_Print("%-35s%-24s%-20ld\n", result.lumoLocName.c_str(), ReadableTime(result).c_str(),
                  result.anomalyValue);
    }
}

void FaultSimuDetectCommand(int32_t argc, char** argv) {
    if (FaultRefusedBySwitch()) {
        return;
    }
    if (argc != SIMU_DETECT_ARGUMENTS) {
        FaultPrintError("input err");
        return;
    }
    FaultRange range{argv[FIRST_ARGUMENT], argv[FIRST_ARGUMENT + 1], {}, {}};
    if (!ConvertRange(range)) {
        return;
    }
    const std::vector<AnomalyDetectResult> results = DetectAndAlarm(
        range, [&](FaultDetectObject& detector) { detector.TestSqlData(range.startTime, range.endTime); });
    DBG_Print("\nSmartDiagnose Anomaly Point\n");
    DBG_Print("lumoLocName                        timeStamp               nomalyVal\n");
    for (const AnomalyDetectResult& result : results) {
        DBG_Print("%-35s%-20s%-20d\n", result.lumoLocName.c_str(), ReadableTime(result).c_str(),
                  static_cast<int32_t>(result.anomalyValue));
    }
}

void FaultDataShowCommand(int32_t argc, char** argv) {
    if (argc != DATA_SHOW_ARGUMENTS) {
        FaultPrintError("input err");
        return;
    }
    const std::string pointName = argv[FIRST_ARGUMENT];
    FaultDetectObject detector;
    detector.InitObject();
    detector.GetData(argv[FIRST_ARGUMENT + 1], argv[FIRST_ARGUMENT + 2]);
    DBG_Print("\nSmartDiagnose DetectData Show\n");
    detector.DisplayData(pointName, FaultToInt32(argv[FIRST_ARGUMENT + 3]));
}

void FaultShowValidTimeCommand(int32_t argc, char** /*argv*/) {
    if (argc != SHOW_VALID_TIME_ARGUMENTS) {
        FaultPrintError("input err");
        return;
    }
    std::string earliest;
    if (FaultGetDataTimeRange(earliest) != 0) {
        FaultPrintError("inner err");
        return;
    }
    DBG_Print("\t\tThe earliest timestamp that can be diagnosed is %s.\n", earliest.c_str());
}
