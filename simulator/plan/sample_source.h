// The statistics of all points at a time: load, noise, and what the plan adds.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "simulator/graphs/topology.h"
#include "simulator/plan/levels.h"
#include "simulator/plan/noise.h"
#include "simulator/plan/plan.h"
#include "simulator/plan/scenario.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

// One row of the statistics: counts of one interval, delays in microseconds.
struct Sample {
    int64_t accepted = 0, succeeded = 0, failed = 0, retried = 0;
    int64_t averageDelay = 0, maximumDelay = 0, minimumDelay = 0;
    std::array<int64_t, 5> errorCodes = {};
};

// A pure function of world and time: samples may be asked for in any order.
class SampleSource {
public:
    // Keeps references to topology, levels and plan.
    SampleSource(const WorldOptions& options, const Variation& variation, const Topology& topology,
                 const Levels& levels, const Plan& plan, const Noise& noise);

    // Replaces `samples` by one per point, groups included (theirs mean nothing).
    void Fill(int64_t time, std::vector<Sample>& samples) const;

private:
    double Load(int64_t time) const;
    double OwnDelay(size_t point, int64_t time, double load) const;
    void FillDelays(size_t point, int64_t time, double delay, Sample& sample) const;
    void FillCounts(size_t point, int64_t time, double load, Sample& sample) const;

    WorldOptions options;
    Variation variation;
    const Topology& topology;
    const Levels& levels;
    const Plan& plan;
    Noise noise;
    std::vector<uint64_t> streams;  // each point's
};

}  // namespace lumosim
