#include "fault_algorithm/fault_anomalydetect.h"

#include "fault_common/fault_common.h"
#include "fault_common/fault_log.h"

std::vector<AnomalyDetectResult> anomalyDetect(const std::string& startDate, const std::string& endDate) {
    std::string startTime;
    std::string endTime;
    if (TransDateToTime(startDate, startTime) != 0 || TransDateToTime(endDate, endTime) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "failed to trans date to time");
        return {};
    }
    FaultDetectObject detector;
    detector.InitObject();
    detector.GetData(startDate, endDate);
    return detector.DoDetect(startDate, endDate);
}
