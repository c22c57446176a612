// What a scenario changes in one world: when its fault happens, what every point sees of it, and which rows
// are never written.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "simulator/levels.h"
#include "simulator/noise.h"
#include "simulator/scenario.h"
#include "simulator/topology.h"
#include "simulator/world_options.h"

namespace lumosim {

// The samples of the planted point that are affected: from `start` to `last`, both included, UTC.
struct PlantedFault {
    FaultRecipe recipe;
    GraphPath path;
    int64_t start;
    int64_t last;
};

class Plan {
public:
    // The scenario must live as long as the plan. Throws std::logic_error when no way leads to the fault's
    // point, std::out_of_range for a point that no graph has.
    Plan(const WorldOptions& options, const Scenario& scenario, const Topology& topology,
         const Levels& levels, const Noise& noise);

    // Null: the scenario plants none.
    const PlantedFault* Fault() const { return fault ? &*fault : nullptr; }
    // Microseconds on top of the point's usual delay at a sample's time.
    double AddedDelay(size_t point, int64_t time) const { return Added(FaultKind::DELAY, point, time); }
    // The column that counts the fault's failed requests, and how many the point counts there at a sample's
    // time.
    size_t ErrorColumn() const { return fault ? static_cast<size_t>(fault->recipe.errorColumn) : 0; }
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
    void PlantFault(const FaultRecipe& recipe, const Topology& topology, const Levels& levels);
    void ClearErrorWalk(size_t point, const Topology& topology);
    void PlanGaps();
    // Nothing is missing close to the fault, so that it can be seen.
    bool IsNearFault(int64_t time) const;
    double Added(FaultKind kind, size_t point, int64_t time) const;

    WorldOptions options;
    Noise noise;
    std::optional<PlantedFault> fault;
    std::vector<std::vector<double>> added;  // by point, then by sample from the fault's start
    std::vector<double> usualErrors;
    std::vector<bool> constant;
    std::optional<std::pair<size_t, size_t>> twins;
    std::vector<std::pair<int64_t, int64_t>> gaps;  // from, before
};

}  // namespace lumosim
