#include "explain/event.h"

#include <algorithm>
#include <iterator>

#include "explain/statistics.h"

namespace explain {
namespace {

constexpr size_t GAP = 1;  // samples within a run that are not high

template <typename Condition>
Samples Select(const Samples& samples, Condition condition) {
    Samples selected;
    std::copy_if(samples.begin(), samples.end(), std::back_inserter(selected), condition);
    return selected;
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
        return sample.time > time ? sample.time - time : time - sample.time;
    };
    const auto closest =
        std::min_element(samples.begin(), samples.end(),
                         [&](const Sample& a, const Sample& b) { return distance(a) < distance(b); });
    Event event;
    event.start = closest->time;
    Extend(event, *closest, UsualOf(DelaysOf(samples)));
    return event;
}

Samples BaselineOf(const Samples& samples, const Event& event) {
    return Select(samples, [&](const Sample& sample) { return sample.time < event.start; });
}

Samples SamplesIn(const Samples& samples, const Event& event) {
    return Select(samples, [&](const Sample& sample) { return event.Holds(sample.time); });
}

std::vector<double> DelaysOf(const Samples& samples) {
    return Column(samples, [](const Sample& sample) { return sample.delay; });
}

std::vector<double> RequestsOf(const Samples& samples) {
    return Column(samples, [](const Sample& sample) { return sample.requests; });
}

}  // namespace explain
