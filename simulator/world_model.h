// What is the same for all files of a world: points, graphs, and the samples of any time.
#pragma once

#include "simulator/levels.h"
#include "simulator/noise.h"
#include "simulator/plan.h"
#include "simulator/sample_source.h"
#include "simulator/scenario.h"
#include "simulator/topology.h"
#include "simulator/world_options.h"

namespace lumosim {

// A pure function of the options. Its parts refer to each other, so it stays where it is.
struct WorldModel {
    // Throws BadInput for options that cannot be served.
    explicit WorldModel(const WorldOptions& worldOptions);
    WorldModel(const WorldModel&) = delete;
    WorldModel& operator=(const WorldModel&) = delete;

    // Points with statistics.
    size_t PointCount() const;

    const WorldOptions options;
    const Topology topology;
    const Scenario scenario;  // with the errors that the options choose
    const Noise noise;
    const Levels levels;
    const Plan plan;
    const SampleSource source;
};

}  // namespace lumosim
