#include "simulator/plan/choices.h"

namespace lumosim {
namespace {

void CheckFits(const WorldOptions& options, const Scenario& scenario) {
    const size_t count = scenario.faults.size();
    const bool isSlow = count > 0 && scenario.faults.front().kind == FaultKind::DELAY;
    if ((options.faultStrength || options.spike) && !isSlow) {
        throw cli::UsageError("--fault-strength and --spike are for scenarios with a slow point, not for " +
                              options.scenario);
    }
    if (options.secondFault && (count < 2 || scenario.faults[1].when != FaultTime::LATE)) {
        throw cli::UsageError("--second-fault is for scenarios with two faults at a time, not for " +
                              options.scenario);
    }
}

// A moment at which the point that hosts see is slow all by itself.
FaultRecipe Spike(const WorldOptions& options, const Topology& topology, const FaultRecipe& fault) {
    FaultRecipe spike{FaultKind::DELAY, fault.graph,
                      topology.FindPath(fault.graph, fault.point).front().points.front(), *options.spike - 1};
    spike.when = FaultTime::EARLY;
    spike.course.before = options.spikeBefore;
    return spike;
}

void ChooseVariation(const WorldOptions& options, Variation& variation) {
    constexpr double PERCENT = 100;
    if (options.noise) {
        variation.own = variation.host = static_cast<double>(*options.noise) / PERCENT;
    }
    if (options.swing) {
        variation.swing = static_cast<double>(*options.swing) / PERCENT / LOAD_SWING;
    }
}

}  // namespace

void ChooseFaults(const WorldOptions& options, const Topology& topology, Scenario& scenario) {
    CheckFits(options, scenario);
    ChooseVariation(options, scenario.variation);
    for (FaultRecipe& fault : scenario.faults) {
        if (fault.when == FaultTime::LATE) {
            fault.course.seconds = options.faultLength.value_or(fault.course.seconds);
        }
    }
    if (options.faultStrength) {
        scenario.faults.front().hostFactor = *options.faultStrength;
    }
    if (options.secondFault) {
        scenario.faults[1].againstFirst = *options.secondFault;
    }
    if (options.spike) {
        scenario.faults.push_back(Spike(options, topology, scenario.faults.front()));
    }
}

}  // namespace lumosim
