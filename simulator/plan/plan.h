// What a scenario changes in one world: when its faults happen, what every point sees of them, and which
// rows are never written.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "simulator/graphs/topology.h"
#include "simulator/plan/levels.h"
#include "simulator/plan/noise.h"
#include "simulator/plan/scenario.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

// The samples of the planted point that are affected: from `start` to `last`, both included, UTC.
struct PlantedFault {
    FaultRecipe recipe;
    GraphPath path;
    int64_t start;
    int64_t last;
    // By point, then by sample from the start: microseconds on top of the usual delay, failed requests, or
    // multiples of the usual requests.
    std::vector<std::vector<double>> added;
};

class Plan {
public:
    // The scenario must live as long as the plan. Throws std::logic_error when no way leads to the fault's
    // point, std::out_of_range for a point that no graph has.
    Plan(const WorldOptions& options, const Scenario& scenario, const Topology& topology,
         const Levels& levels, const Noise& noise);

    // As the scenario has them.
    const std::vector<PlantedFault>& Faults() const { return faults; }
    // Null: the scenario plants none.
    const PlantedFault* Fault() const { return faults.empty() ? nullptr : &faults.front(); }
    // When all is over: the end of the range, or of what faults after it leave behind.
    int64_t End() const;
    // Microseconds on top of the point's usual delay at a sample's time.
    double AddedDelay(size_t point, int64_t time) const { return Added(FaultKind::DELAY, point, time); }
    // Requests on top of the point's usual ones at a sample's time, in multiples of these.
    double AddedLoad(size_t point, int64_t time) const { return Added(FaultKind::LOAD, point, time); }
    // The column that counts the fault's failed requests, and how many the point counts there at a sample's
    // time.
    size_t ErrorColumn() const {
        return faults.empty() ? 0 : static_cast<size_t>(faults.front().recipe.errorColumn);
    }
    double AddedErrors(size_t point, int64_t time) const { return Added(FaultKind::ERROR, point, time); }
    // How often the point counts errors that mean nothing, against an ordinary day.
    double UsualErrors(size_t point) const { return usualErrors[point]; }
    // Whether the point's statistics never change.
    bool IsConstant(size_t point) const { return constant[point]; }
    // A point, and the one whose statistics are its own as well.
    const std::optional<std::pair<size_t, size_t>>& Twins() const { return twins; }
    // Whether the row of the point at that time is never written.
    bool IsMissing(size_t point, int64_t time) const;

private:
    int64_t FirstSample(FaultTime when) const;
    PlantedFault Place(const FaultRecipe& recipe, const Topology& topology) const;
    void Spread(const Topology& topology, const Levels& levels, PlantedFault& fault);
    void ClearErrorWalk(size_t point, const Topology& topology);
    void PlanGaps();
    // Nothing is missing close to a fault, so that it can be seen.
    bool IsNearFault(int64_t time) const;
    double Added(FaultKind kind, size_t point, int64_t time) const;

    WorldOptions options;
    Noise noise;
    std::vector<PlantedFault> faults;
    std::vector<double> usualErrors;
    std::vector<bool> constant;
    std::optional<std::pair<size_t, size_t>> twins;
    std::vector<std::pair<int64_t, int64_t>> gaps;  // from, before
};

}  // namespace lumosim
