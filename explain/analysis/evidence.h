// What the statistics of one point say of an event.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "explain/analysis/baseline.h"
#include "explain/finding/reason.h"
#include "explain/finding/sample_store.h"

namespace explain {

// What the extra delay of a point goes with.
enum class Nature {
    UNKNOWN,  // not enough intervals to tell
    USUAL,    // there is no extra delay
    LOAD,     // the requests: at equal load the point is as fast as ever
    DEVICE    // not the requests: the point is slower at equal load
};

// Absent values could not be computed; `reasons` says why. Delays are in microseconds, requests per interval.
struct Evidence {
    bool takesPart = false;
    size_t baselineCount = 0;  // samples
    size_t eventCount = 0;
    size_t estimated = 0;  // intervals of the event, besides: in both excesses and the deviations
    std::optional<double> baselineDelay;     // median
    std::optional<double> eventDelay;        // mean
    std::optional<double> baselineRequests;  // median
    std::optional<double> eventRequests;     // mean
    std::optional<double> excess;            // requests times extra delay, microseconds, over the event
    std::optional<double> ownExcess;         // the same of the point's own delay
    std::optional<double> deviations;        // mean of the event's samples, from the baseline, with its sign
    std::optional<int64_t> onset;            // the first high sample of the event, UTC
    std::optional<double> loadCorrelation;   // of delay with requests, in and around the event
    std::optional<double> equalLoadRatio;    // delay of the event to that of the baseline at equal load
    Nature nature = Nature::UNKNOWN;
    std::vector<Reason> reasons;
};

// How far above its baseline, in scales, a point lies in the mean when it takes part in the event of the slow
// point at the top, which always does: HIGH; less where that one lies no higher itself, in an event of
// several samples, of whose mean the noise is less.
constexpr double ANY_DEVIATION = -std::numeric_limits<double>::infinity();
double NeededBelow(const Evidence& top);

// What the budget needs of the evidence: the counts, delays, `eventRequests`, both excesses, `deviations`,
// `onset` and whether the point takes part, for which `needed` deviations are needed. The point's samples in
// `baseline` say what is usual; its own delays must be there.
Evidence BriefEvidenceOf(const PointData& point, const Stretches& baseline, const Window& event,
                         double needed);

// All of it. Takes several times as long.
Evidence EvidenceOf(const PointData& point, const Stretches& baseline, const Window& event, double needed);

}  // namespace explain
