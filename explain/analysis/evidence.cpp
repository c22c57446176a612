#include "explain/analysis/evidence.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "explain/finding/statistics.h"

namespace explain {
namespace {

constexpr double EQUAL_LOAD = 0.1;  // requests that differ by less than this share are the same load
constexpr size_t FEWEST_EQUAL_LOAD = 3;
constexpr double EQUAL_DELAY = 1.2;  // at equal load, a delay up to this ratio is not slower
constexpr double MOST_OF_EXTRA = 0.5;
constexpr double FOLLOWS_LOAD = 0.7;  // correlation of delay with requests
constexpr size_t SAMPLES_AROUND = 10;

// How many intervals between the first and the last sample have none, as far as the usual distance of two
// samples tells.
size_t MissingIntervals(const Samples& samples) {
    std::vector<double> distances;
    for (size_t i = 1; i < samples.size(); ++i) {
        if (samples[i].time != samples[i - 1].time) {
            distances.push_back(static_cast<double>(samples[i].time) -
                                static_cast<double>(samples[i - 1].time));
        }
    }
    if (distances.size() < 2) {
        return 0;
    }
    std::vector<double> toOrder = distances;
    const double step = MedianOf(toOrder);
    double missing = 0.0;
    for (const double distance : distances) {
        missing += std::max(0.0, std::round(distance / step) - 1.0);
    }
    return static_cast<size_t>(missing);
}

bool IsConstant(const Samples& samples) {
    return std::all_of(samples.begin(), samples.end(),
                       [&](const Sample& sample) { return sample.delay == samples.front().delay; });
}

void TellWhatIsMissing(const PointData& point, Evidence& evidence) {
    std::vector<Reason>& reasons = evidence.reasons;
    const Samples& samples = point.samples;
    if (samples.empty()) {
        reasons.push_back({ReasonKind::NO_ROWS});
        return;
    }
    if (point.isObservation) {
        reasons.push_back({ReasonKind::OBSERVATION_POINT});
    }
    if (samples.size() < FEWEST_FOR_SIGMA) {
        reasons.push_back({ReasonKind::FEW_FOR_SIGMA, samples.size(), FEWEST_FOR_SIGMA});
    }
    if (evidence.baselineCount < FEWEST_BASELINE) {
        reasons.push_back({ReasonKind::FEW_BEFORE_EVENT, evidence.baselineCount, FEWEST_BASELINE});
    }
    if (evidence.eventCount == 0) {
        reasons.push_back({ReasonKind::NO_ROWS_IN_EVENT});
    }
    if (samples.size() > 1 && IsConstant(samples)) {
        reasons.push_back({ReasonKind::CONSTANT_DELAY});
    }
    if (const size_t missing = MissingIntervals(samples); missing > point.idle) {
        reasons.push_back({ReasonKind::MISSING_INTERVALS, missing - point.idle});
    }
    if (evidence.estimated > 0) {
        reasons.push_back({ReasonKind::ESTIMATED_INTERVALS, evidence.estimated});
    }
    if (point.hasGoneBack) {
        reasons.push_back({ReasonKind::CLOCK_JUMPED});
    }
}

// The event's samples against the baseline: how unusual, since when, how much extra delay, and whether the
// point takes part.
void JudgeDelays(const Usual& usual, double ownUsual, const PointData& point, const Window& event,
                 Evidence& evidence) {
    const Samples& samples = point.Complete();
    const auto [first, end] = PositionsIn(samples, event);
    double deviations = 0.0;
    double excess = 0.0;
    double ownExcess = 0.0;
    for (size_t i = first; i < end; ++i) {
        const Sample& sample = samples[i];
        const double deviation = usual.Deviations(sample.delay);
        deviations += deviation;
        excess += sample.requests * (sample.delay - usual.median);
        ownExcess += sample.requests * (point.own[i] - ownUsual);
    }
    for (const Sample& sample : SamplesIn(point.samples, {event})) {
        if (usual.Deviations(sample.delay) > HIGH) {
            evidence.onset = sample.time;
            break;
        }
    }
    evidence.deviations = deviations / static_cast<double>(end - first);
    evidence.estimated = end - first - evidence.eventCount;
    if (!point.isObservation) {
        evidence.excess = excess;
        evidence.ownExcess = ownExcess;
    }
}

// The delay of the event relative to that of the baseline's intervals of equal load; none where there are too
// few of them.
std::optional<double> EqualLoadRatio(const Samples& baseline, double requests, double delay) {
    std::vector<double> delays;
    for (const Sample& sample : baseline) {
        if (std::fabs(sample.requests - requests) <= EQUAL_LOAD * requests) {
            delays.push_back(sample.delay);
        }
    }
    if (delays.size() < FEWEST_EQUAL_LOAD) {
        return std::nullopt;
    }
    const double usual = MedianOf(delays);
    return usual > 0.0 ? std::optional<double>(delay / usual) : std::nullopt;
}

// How far the requests rose.
enum class Rise { NONE, SOME, SURGE };

// Whether intervals of equal load have most of the extra delay, too.
bool HasItAtEqualLoad(const Evidence& evidence) {
    const double extra = *evidence.eventDelay - *evidence.baselineDelay;
    const double usual = *evidence.eventDelay / *evidence.equalLoadRatio - *evidence.baselineDelay;
    return usual > MOST_OF_EXTRA * extra;
}

Nature NatureOf(const Evidence& evidence, Rise rise) {
    if (!evidence.takesPart) {
        return Nature::USUAL;
    }
    if (evidence.equalLoadRatio) {
        const bool isSlower = *evidence.equalLoadRatio > EQUAL_DELAY;
        const int signs = (rise == Rise::SURGE) + !isSlower + HasItAtEqualLoad(evidence);
        return rise != Rise::NONE && signs >= 2 ? Nature::LOAD : isSlower ? Nature::DEVICE : Nature::UNKNOWN;
    }
    if (rise != Rise::SURGE) {
        return Nature::DEVICE;
    }
    if (!evidence.loadCorrelation) {
        return Nature::UNKNOWN;
    }
    return *evidence.loadCorrelation >= FOLLOWS_LOAD ? Nature::LOAD : Nature::DEVICE;
}

// The samples of the event and a few to either side: over a long range, the swing of a day says more of how
// delays go with requests than a short event does.
Samples Around(const Samples& samples, const Window& event) {
    const auto [first, end] = PositionsIn(samples, event);
    const auto from = static_cast<std::ptrdiff_t>(first - std::min(SAMPLES_AROUND, first));
    const auto until = static_cast<std::ptrdiff_t>(end + std::min(SAMPLES_AROUND, samples.size() - end));
    return {samples.begin() + from, samples.begin() + until};
}

// How many more requests came than usual: the scale of a day's swing may be wide, but hardly what is above
// all that was seen before.
Rise RiseOf(double requests, const std::vector<double>& before) {
    const double most = *std::max_element(before.begin(), before.end());
    const double deviations = UsualOf(before).Deviations(requests);
    return requests > (1.0 + EQUAL_LOAD) * most || deviations > HIGH ? Rise::SURGE
           : deviations > WEAK                                       ? Rise::SOME
                                                                     : Rise::NONE;
}

// From the first to the last time of the baseline: its samples and those of the other events.
Samples Outside(const Samples& samples, const Stretches& baseline, const Window& event) {
    Samples all = SamplesIn(samples, {{baseline.front().start, baseline.back().end}});
    all.erase(std::remove_if(all.begin(), all.end(),
                             [&](const Sample& sample) { return event.Holds(sample.time); }),
              all.end());
    return all;
}

void JudgeLoad(const PointData& point, const Stretches& baseline, const Window& event, Evidence& evidence) {
    const Samples usual = SamplesIn(point.samples, baseline);
    const std::vector<double> before = RequestsOf(usual);
    const Rise rise = RiseOf(*evidence.eventRequests, before);
    const Samples around = Around(point.samples, event);
    evidence.baselineRequests = UsualOf(before).median;
    evidence.loadCorrelation = CorrelationOf(DelaySeries(around), RequestSeries(around)).correlation;
    evidence.equalLoadRatio =
        EqualLoadRatio(rise == Rise::SURGE ? Outside(point.samples, baseline, event) : usual,
                       *evidence.eventRequests, *evidence.eventDelay);
    evidence.nature = NatureOf(evidence, rise);
}

}  // namespace

double NeededBelow(const Evidence& top) {
    return top.deviations.value_or(HIGH) >= HIGH
               ? HIGH
               : HIGH / std::sqrt(static_cast<double>(std::min(top.eventCount, WINDOW)));
}

Evidence BriefEvidenceOf(const PointData& point, const Stretches& baseline, const Window& event,
                         double needed) {
    const Samples during = SamplesIn(point.samples, {event});
    const Samples before = SamplesIn(point.samples, baseline);
    std::vector<double> own = ValuesIn(point.Complete(), point.own, baseline);
    Evidence evidence;
    evidence.baselineCount = before.size();
    evidence.eventCount = during.size();
    if (before.size() < FEWEST_BASELINE || during.empty()) {
        return evidence;
    }
    const Usual usual = UsualOf(DelaysOf(before));
    evidence.baselineDelay = usual.median;
    evidence.eventDelay = MeanOf(DelaysOf(during));
    if (!point.isObservation) {
        evidence.eventRequests = MeanOf(RequestsOf(during));
    }
    JudgeDelays(usual, MedianOf(own), point, event, evidence);
    evidence.takesPart = evidence.excess && *evidence.deviations > needed &&
                         (needed == ANY_DEVIATION || *evidence.excess > 0.0);
    return evidence;
}

Evidence EvidenceOf(const PointData& point, const Stretches& baseline, const Window& event, double needed) {
    Evidence evidence = BriefEvidenceOf(point, baseline, event, needed);
    TellWhatIsMissing(point, evidence);
    if (evidence.excess) {
        JudgeLoad(point, baseline, event, evidence);
    }
    return evidence;
}

}  // namespace explain
