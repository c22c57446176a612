// What is the same for all files of a world: points, graphs, and the samples of any time.
#pragma once

#include <optional>
#include <string>

#include "simulator/graphs/topology.h"
#include "simulator/plan/levels.h"
#include "simulator/plan/noise.h"
#include "simulator/plan/plan.h"
#include "simulator/plan/sample_source.h"
#include "simulator/plan/scenario.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

// A pure function of the options. Its parts refer to each other, so it stays where it is.
struct WorldModel {
    // Throws cli::UsageError for options that cannot be served.
    explicit WorldModel(const WorldOptions& worldOptions);
    WorldModel(const WorldModel&) = delete;
    WorldModel& operator=(const WorldModel&) = delete;

    // Points with statistics.
    size_t PointCount() const;

    const WorldOptions options;
    const std::optional<std::string> config;  // the text of the configuration that the options name
    const Topology topology;
    const Scenario scenario;  // with the errors that the options choose
    const Noise noise;
    const Levels levels;
    const Plan plan;
    const SampleSource source;
};

}  // namespace lumosim
