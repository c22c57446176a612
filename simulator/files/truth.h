// What was planted, for whoever checks a diagnosis against it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/graphs/topology.h"
#include "simulator/plan/heal_events.h"
#include "simulator/plan/plan.h"
#include "simulator/plan/sample_source.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

// Finds, among the rows that are written, the worst one of the fault: the longest average delay of the point
// that hosts see (a fault of delay or load), or most errors of the planted point (an error fault). The first
// one of equals.
class PeakFinder {
public:
    // Keeps `plan`.
    PeakFinder(const Topology& topology, const Plan& plan);

    void Observe(size_t point, int64_t time, const Sample& sample);
    // 0 before any row came.
    int64_t Time() const { return time; }
    int64_t Value() const { return value; }
    // Whether the worst one lies beyond three deviations of all rows of its point.
    bool StandsOut() const;

private:
    const Plan& plan;
    std::optional<size_t> watched;
    int64_t time = 0;
    int64_t value = 0;
    // Of the delays that were observed.
    double count = 0, mean = 0, squares = 0;
};

// The document; `events` are those that IsReported().
std::string Truth(const WorldOptions& options, const Topology& topology, const Plan& plan,
                  const PeakFinder& peak, const std::vector<HealEvent>& events);

}  // namespace lumosim
