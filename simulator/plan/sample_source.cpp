#include "simulator/plan/sample_source.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace lumosim {
namespace {

constexpr double USUAL_USE = 0.15;  // of a point's time by its requests
constexpr double COUNT_JITTER = 0.05;
constexpr double RETRY_CHANCE = 0.003;
constexpr double DENIED_CHANCE = 0.0005;
constexpr size_t RETRY_COLUMN = 1;
constexpr size_t DENIED_COLUMN = 2;

enum Salt : uint64_t { OWN, HOST, COUNT, MINIMUM, MAXIMUM, RETRY, RETRIES, DENIED };

int64_t Round(double value) {
    return static_cast<int64_t>(std::floor(value + 0.5));
}

// A wave between -1 and 1 of period 1, as a sine but made of parabolas: the same on every machine.
double Wave(double phase) {
    const double x = phase - std::floor(phase);
    return x < 0.5 ? 16 * x * (0.5 - x) : -16 * (x - 0.5) * (1 - x);
}

// How many times as long requests take that wait in a queue, when more of them come than the day brings.
double Queueing(double load, double added) {
    return (1 - USUAL_USE * load) / (1 - USUAL_USE * (load + added));
}

}  // namespace

SampleSource::SampleSource(const WorldOptions& worldOptions, const Variation& worldVariation,
                           const Topology& worldTopology, const Levels& worldLevels, const Plan& worldPlan,
                           const Noise& worldNoise)
    : options(worldOptions),
      variation(worldVariation),
      topology(worldTopology),
      levels(worldLevels),
      plan(worldPlan),
      noise(worldNoise) {
    for (const Point& point : topology.Points()) {
        streams.push_back(Noise::Hash(point.name));
    }
}

// Least at two in the night, most at two in the afternoon.
double SampleSource::Load(int64_t time) const {
    const double days = static_cast<double>(time + options.zoneOffset) / 86400;
    return 1 + LOAD_SWING * Wave(days - 8.0 / 24);
}

// All noise is uniform, hence bounded, and at the points that hosts see one part of it outweighs the sum of
// the others. A sum of many equals would, over thousands of samples, stray beyond three deviations by chance.
double SampleSource::OwnDelay(size_t point, int64_t time, double load) const {
    const double swing = 1 + variation.swing * (load - 1);
    const double own =
        levels.ownDelay[point] * (1 + variation.own * noise.Symmetric(streams[point], time, OWN));
    const double host = topology.Flow().hasParent[point] ? 0
                                                         : levels.usualDelay[point] * variation.host *
                                                               noise.Symmetric(streams[point], time, HOST);
    return swing * Queueing(load, plan.AddedLoad(point, time)) * (own + host);
}

void SampleSource::FillDelays(size_t point, int64_t time, double delay, Sample& sample) const {
    sample.averageDelay = std::max<int64_t>(1, Round(delay));
    const double average = static_cast<double>(sample.averageDelay);
    const bool constant = plan.IsConstant(point);
    const double below = constant ? 0.5 : noise.Uniform(streams[point], time, MINIMUM);
    const double above = constant ? 0.5 : noise.Uniform(streams[point], time, MAXIMUM);
    sample.minimumDelay = Round(average * (0.3 + 0.4 * below));
    sample.maximumDelay = Round(average * (1.5 + 2.5 * above));
}

void SampleSource::FillCounts(size_t point, int64_t time, double load, Sample& sample) const {
    sample = {};
    if (topology.Points()[point].IsObservation()) {
        return;
    }
    const double usual = levels.rate[point] * static_cast<double>(options.step);
    if (plan.IsConstant(point)) {
        sample.accepted = sample.succeeded = std::max<int64_t>(1, Round(usual));
        return;
    }
    const double jitter = 1 + COUNT_JITTER * noise.Symmetric(streams[point], time, COUNT);
    const double all = load + plan.AddedLoad(point, time);
    sample.accepted = std::max<int64_t>(1, Round(usual * all * jitter));

    const size_t counter = topology.ErrorCounterOf(point);
    const uint64_t stream = streams[counter];
    const double usualErrors = plan.UsualErrors(counter);
    if (noise.Uniform(stream, time, RETRY) < RETRY_CHANCE * usualErrors) {
        sample.errorCodes[RETRY_COLUMN] = 1 + Round(2 * noise.Uniform(stream, time, RETRIES));
    }
    if (noise.Uniform(stream, time, DENIED) < DENIED_CHANCE * usualErrors) {
        sample.errorCodes[DENIED_COLUMN] = 1;
    }
    if (const double errors = plan.AddedErrors(counter, time); errors > 0) {
        sample.errorCodes[plan.ErrorColumn()] += Round(errors);
    }
    for (int64_t& count : sample.errorCodes) {
        count = std::min(count, sample.accepted / 4);
    }
    sample.retried = sample.errorCodes[RETRY_COLUMN];
    sample.failed = std::accumulate(sample.errorCodes.begin(), sample.errorCodes.end(), -sample.retried);
    sample.succeeded = sample.accepted - sample.failed;
}

void SampleSource::Fill(int64_t time, std::vector<Sample>& samples) const {
    const Dependencies& flow = topology.Flow();
    const double load = Load(time);
    std::vector<double> delays(topology.Points().size());
    samples.resize(delays.size());
    for (const size_t point : flow.childrenFirst) {
        double delay = OwnDelay(point, time, load);
        for (size_t i = 0; i < flow.children[point].size(); ++i) {
            delay += levels.share[point][i] * delays[flow.children[point][i]];
        }
        delays[point] = plan.IsConstant(point) ? levels.usualDelay[point] : delay;
        FillCounts(point, time, load, samples[point]);
        FillDelays(point, time, delays[point] + plan.AddedDelay(point, time), samples[point]);
    }
    for (const auto& [twin, point] : plan.Twins()) {
        samples[twin] = samples[point];
    }
}

}  // namespace lumosim
