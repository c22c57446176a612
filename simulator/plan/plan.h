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

// From the first to the last sample of something, both included, UTC.
struct Stretch {
    int64_t first, last;
};

struct PlantedFault {
    FaultRecipe recipe;
    GraphPath path;
    std::vector<Stretch>
        bursts;     // the samples of the planted point that are affected, ascending; never empty
    int64_t start;  // of the first burst
    int64_t last;   // of the last one
    // By point, then by sample from the start: microseconds on top of the usual delay, failed requests, or
    // multiples of the usual requests. Nothing for points that the fault does not reach.
    std::vector<std::vector<double>> added;
};

class Plan {
public:
    // The scenario must live as long as the plan. Throws std::logic_error when no way leads to the fault's
    // point, std::out_of_range for a point that no graph has, cli::UsageError when nothing of a fault would
    // be seen.
    Plan(const WorldOptions& options, const Scenario& scenario, const Topology& topology,
         const Levels& levels, const Noise& noise);

    // As the scenario has them.
    const std::vector<PlantedFault>& Faults() const { return faults; }
    // Null: the scenario plants none.
    const PlantedFault* Fault() const { return faults.empty() ? nullptr : &faults.front(); }
    // When all is over: the end of the range, or, in a world that goes on, of what faults leave behind.
    int64_t End() const;
    // Whether the fault has not ended when all is over.
    bool IsOngoing(const PlantedFault& fault) const { return fault.last + options.step >= End(); }
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
    // Points, each with the one whose statistics are its own as well.
    const std::vector<std::pair<size_t, size_t>>& Twins() const { return twins; }
    // Whether the row of the point at that time is never written.
    bool IsMissing(size_t point, int64_t time) const;

private:
    int64_t SamplesOf(const FaultCourse& course) const;
    int64_t FirstSample(const FaultRecipe& recipe) const;
    std::vector<double> PlaceBursts(PlantedFault& fault) const;
    PlantedFault Place(const FaultRecipe& recipe, const Topology& topology) const;
    void Spread(const Topology& topology, const Levels& levels, PlantedFault& fault);
    void FitToHosts(const Topology& topology, const Levels& levels);
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
    std::vector<std::pair<size_t, size_t>> twins;
    std::vector<std::pair<int64_t, int64_t>> gaps;  // from, before
};

}  // namespace lumosim
