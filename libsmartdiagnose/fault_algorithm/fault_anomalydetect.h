// One complete run of the delay detector.
#pragma once

#include <string>
#include <vector>

#include "fault_common/fault_export.h"
#include "fault_spectrum_graph/fault_detect_object.h"

// Loads the delays of the detector's points from `startDate` to `endDate` (compact local times, both
// included) and returns the anomalies, at most one per point. Empty when there are none, when a date does not
// convert (logged), or when nothing could be loaded. Blocks on the database, for 70 s per query that keeps
// failing. Throws the standard conversion errors for a text that is no number.
FAULT_EXPORT std::vector<AnomalyDetectResult> anomalyDetect(const std::string& startDate,
                                                            const std::string& endDate);
