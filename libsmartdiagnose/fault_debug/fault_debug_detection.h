// What `delaydetect` and `simudetect` have in common. Inside fault_debug only.
#pragma once

#include <string>
#include <vector>

#include "fault_spectrum_graph/fault_detect_object.h"

// A range as the operator gave it, compact local times, and as UTC seconds.
struct FaultRange {
    std::string startDate, endDate;
    std::string startTime, endTime;
};

// Fills in the seconds. False, and an error line printed, when a date does not convert.
bool FaultConvertRange(FaultRange& range);

// The anomalies in what a detector has loaded. Raises the alarm if there are any and the switch asks for it.
std::vector<AnomalyDetectResult> FaultDetectAndAlarm(FaultDetectObject& detector, const FaultRange& range);

// The time of an anomaly, in the readable form.
std::string FaultReadableTime(const AnomalyDetectResult& result);
