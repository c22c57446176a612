#include "explain/analysis/event.h"

#include <algorithm>
#include <iterator>

#include "explain/analysis/statistics.h"

namespace explain {
namespace {

constexpr size_t GAP = 1;  // samples within a run that are not high

// The first sample that is not before the time.
Samples::const_iterator First(const Samples& samples, int64_t time) {
    return std::partition_point(samples.begin(), samples.end(),
                                [time](const Sample& sample) { return sample.time < time; });
}

template <typename Value>
std::vector<double> Column(const Samples& samples, Value value) {
    std::vector<double> column;
    column.reserve(samples.size());
    std::transform(samples.begin(), samples.end(), std::back_inserter(column), value);
    return column;
}

void Extend(Event& event, const Sample& sample, const Usual& usual) {
    event.end = sample.time;
    ++event.count;
    if (event.count == 1 || sample.delay > event.peakDelay) {
        event.peakTime = sample.time;
        event.peakDelay = sample.delay;
        event.peakDeviations = usual.Deviations(sample.delay);
    }
}

}  // namespace

std::vector<Event> FindEvents(const Samples& samples) {
    std::vector<Event> events;
    if (samples.empty()) {
        return events;
    }
    const Usual usual = UsualOf(DelaysOf(samples));
    size_t gap = GAP + 1;
    for (const Sample& sample : samples) {
        if (usual.Deviations(sample.delay) <= HIGH) {
            ++gap;
            continue;
        }
        if (gap > GAP) {
            events.emplace_back();
            events.back().start = sample.time;
        }
        gap = 0;
        Extend(events.back(), sample, usual);
    }
    return events;
}

std::optional<Event> EventAt(const Samples& samples, const std::vector<Event>& runs, int64_t time) {
    if (samples.empty()) {
        return std::nullopt;
    }
    const auto run =
        std::find_if(runs.begin(), runs.end(), [time](const Event& one) { return one.Holds(time); });
    if (run != runs.end()) {
        return *run;
    }
    const auto distance = [time](const Sample& sample) {
        const auto a = static_cast<uint64_t>(sample.time);
        const auto b = static_cast<uint64_t>(time);
        return sample.time > time ? a - b : b - a;
    };
    const auto closest =
        std::min_element(samples.begin(), samples.end(),
                         [&](const Sample& a, const Sample& b) { return distance(a) < distance(b); });
    Event event;
    event.start = closest->time;
    Extend(event, *closest, UsualOf(DelaysOf(samples)));
    return event;
}

Samples SamplesBetween(const Samples& samples, int64_t from, int64_t until) {
    return from < until ? Samples(First(samples, from), First(samples, until)) : Samples();
}

Samples BaselineOf(const Samples& samples, const Event& event) {
    return {samples.begin(), First(samples, event.start)};
}

Samples SamplesIn(const Samples& samples, const Event& event) {
    const auto last = std::find_if(First(samples, event.start), samples.end(),
                                   [&](const Sample& sample) { return !event.Holds(sample.time); });
    return {First(samples, event.start), last};
}

std::vector<double> DelaysOf(const Samples& samples) {
    return Column(samples, [](const Sample& sample) { return sample.delay; });
}

std::vector<double> RequestsOf(const Samples& samples) {
    return Column(samples, [](const Sample& sample) { return sample.requests; });
}

}  // namespace explain
