#include "explain/finding/look.h"

#include <algorithm>

#include "explain/finding/sample_store.h"
#include "explain/finding/statistics.h"
#include "fault_algorithm/fault_correlation.h"

namespace explain {
namespace {

// A sample beyond three deviations of n, of which a share f is as high: (1 - f) / sqrt(f (1 - f)) > 3 needs f
// below a tenth.
constexpr double MOST_FLAGGED = 0.1;

// Positions of the samples that the detector flags when it looks at those from `first` to before `end`.
std::vector<size_t> FlagsOf(const Samples& samples, size_t first, size_t end) {
    const auto begin = samples.begin();
    std::vector<int64_t> delays;
    for (const FaultSeriesRow& row : DelaySeries(
             {begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(end)})) {
        delays.push_back(row[1]);
    }
    std::vector<size_t> flags = SmartDiagnose::Outliers(delays);
    for (size_t& position : flags) {
        position += first;
    }
    return flags;
}

// The event that is just the sample which lies highest.
std::optional<Event> HighestOf(const Samples& samples, const Finding& finding, size_t first, size_t end) {
    if (finding.deviations.empty() || first == end) {
        return std::nullopt;
    }
    const auto begin = finding.deviations.begin();
    const auto highest = std::max_element(begin + static_cast<std::ptrdiff_t>(first),
                                          begin + static_cast<std::ptrdiff_t>(end));
    const auto position = static_cast<size_t>(highest - begin);
    return EventOf(samples, finding, position, position);
}

}  // namespace

Silence Look::SilenceOn(const Event& event) const {
    const auto flag = std::lower_bound(flagged.begin(), flagged.end(), event.first);
    if (flag != flagged.end() && *flag <= event.last) {
        return Silence::NONE;
    }
    if (samples < FEWEST_FOR_SIGMA) {
        return Silence::FEW;
    }
    if (static_cast<double>(samplesInEvents) > MOST_FLAGGED * static_cast<double>(samples)) {
        return Silence::FILLED;
    }
    const bool isLargest = std::none_of(
        events.begin(), events.end(), [&](const Event& other) { return other.peakDelay > event.peakDelay; });
    return isLargest ? Silence::SMALL : Silence::OUTSHONE;
}

Look LookAt(const std::string& point, const Samples& samples, const Window& range,
            const std::optional<Window>& baseline) {
    Look look;
    look.point = point;
    look.finding = FindEvents(samples, baseline);
    const auto [first, end] = PositionsIn(samples, range);
    look.rows = {samples.begin() + static_cast<std::ptrdiff_t>(first),
                 samples.begin() + static_cast<std::ptrdiff_t>(end)};
    look.firstRow = first;
    look.samples = end - first;
    look.flagged = FlagsOf(samples, first, end);
    for (const Event& event : look.finding.events) {
        if (event.last >= first && event.first < end) {
            look.events.push_back(event);
            look.events.back().isOngoing = IsOngoing(event, end);
            look.samplesInEvents += std::min(event.last + 1, end) - std::max(event.first, first);
        }
    }
    look.highest = HighestOf(samples, look.finding, first, end);
    return look;
}

std::vector<Event> ByUrgency(std::vector<Event> events) {
    std::stable_sort(events.begin(), events.end(), [](const Event& a, const Event& b) {
        return a.isOngoing != b.isOngoing ? a.isOngoing : a.start > b.start;
    });
    return events;
}

}  // namespace explain
