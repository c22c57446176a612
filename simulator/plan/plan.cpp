#include "simulator/plan/plan.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace lumosim {
namespace {

constexpr int64_t FAULT_SECONDS = 120;
constexpr int64_t FAULT_MINIMUM_SAMPLES = 2;
constexpr int64_t ECHO_SAMPLES = 6;  // after the fault has ended at the point itself
// A request that takes long is counted by whoever waits for it, and by some of them in the next interval.
constexpr double LATE_SHARE = 0.25;
// Of a child's errors, some are mended by its parent.
constexpr double ERROR_SHARE = 0.9;
constexpr int64_t QUIET_SECONDS = 480;  // around a fault
constexpr double LOST_ROW_SHARE = 0.02;

constexpr uint64_t FAULT_STREAM = Noise::Hash("fault");
constexpr uint64_t GAP_STREAM = Noise::Hash("gap");
constexpr uint64_t LOST_ROW_SALT = 15;

// How much of the worst a fault of `length` samples shows at sample i: it comes, peaks in the middle, goes.
double Shape(int64_t i, int64_t length) {
    const double offCentre =
        static_cast<double>(std::abs(2 * i - (length - 1))) / static_cast<double>(length - 1);
    return 1 - 0.4 * offCentre;
}

// Adds to every point what its children have, times the share that reaches it, part of it a sample later.
template <typename Share>
void SpreadToParents(const Dependencies& dependencies, Share share,
                     std::vector<std::vector<double>>& series) {
    for (const size_t parent : dependencies.childrenFirst) {
        for (size_t i = 0; i < dependencies.children[parent].size(); ++i) {
            const std::vector<double>& child = series[dependencies.children[parent][i]];
            double before = 0;
            for (size_t k = 0; k < child.size(); ++k) {
                series[parent][k] += share(parent, i) * ((1 - LATE_SHARE) * child[k] + LATE_SHARE * before);
                before = child[k];
            }
        }
    }
}

// The point and all points below it.
std::vector<bool> AllBelow(const Dependencies& dependencies, size_t point) {
    std::vector<bool> isBelow(dependencies.children.size());
    isBelow[point] = true;
    std::for_each(dependencies.childrenFirst.rbegin(), dependencies.childrenFirst.rend(), [&](size_t parent) {
        for (const size_t child : dependencies.children[parent]) {
            isBelow[child] = isBelow[child] || isBelow[parent];
        }
    });
    return isBelow;
}

}  // namespace

Plan::Plan(const WorldOptions& worldOptions, const Scenario& scenario, const Topology& topology,
           const Levels& levels, const Noise& worldNoise)
    : options(worldOptions),
      noise(worldNoise),
      usualErrors(topology.Points().size(), scenario.usualErrors),
      constant(topology.Points().size()) {
    for (const std::string_view point : scenario.constantPoints) {
        constant[topology.IndexOf(point)] = true;
    }
    for (const FaultRecipe& recipe : scenario.faults) {
        faults.push_back(Place(recipe, topology));
        Spread(topology, levels, faults.back());
        if (!recipe.twin.empty()) {
            twins.emplace(topology.IndexOf(recipe.twin), topology.IndexOf(recipe.point));
        }
    }
    if (scenario.hasGaps) {
        PlanGaps();
    }
}

int64_t Plan::FirstSample(FaultTime when) const {
    if (when == FaultTime::LATE && options.faultAt != 0) {
        return (options.faultAt - options.Start() + options.step - 1) / options.step;
    }
    const double place = when == FaultTime::LATE ? 0.55 + 0.3 * noise.Uniform(FAULT_STREAM, 0, 0)
                                                 : 0.1 + 0.2 * noise.Uniform(FAULT_STREAM, 1, 0);
    return static_cast<int64_t>(place * static_cast<double>(options.SampleCount()));
}

// The fault as the point itself has it.
PlantedFault Plan::Place(const FaultRecipe& recipe, const Topology& topology) const {
    GraphPath path = topology.FindPath(recipe.graph, recipe.point);
    if (path.empty()) {
        throw std::logic_error("no way from " + std::string(recipe.graph) + " to " +
                               std::string(recipe.point));
    }
    // Short against the range, whose deviation would otherwise widen until the fault hides in it.
    const int64_t length = std::max(FAULT_SECONDS / options.step, FAULT_MINIMUM_SAMPLES);
    const int64_t first = FirstSample(recipe.when);
    const std::vector<double> none(static_cast<size_t>(length + ECHO_SAMPLES));
    PlantedFault fault{recipe, std::move(path), options.TimeOf(first), options.TimeOf(first + length - 1),
                       std::vector<std::vector<double>>(topology.Points().size(), none)};
    std::vector<double>& own = fault.added[topology.IndexOf(recipe.point)];
    for (int64_t i = 0; i < length; ++i) {
        const double flicker = 1 + 0.05 * noise.Symmetric(FAULT_STREAM, i, 1);
        own[static_cast<size_t>(i)] = recipe.strength * Shape(i, length) * flicker;
    }
    return fault;
}

// From the point to the others, and from multiples of the usual to what is added to it.
void Plan::Spread(const Topology& topology, const Levels& levels, PlantedFault& fault) {
    const size_t point = topology.IndexOf(fault.recipe.point);
    std::vector<double>& own = fault.added[point];
    const auto scale = [&](double unit) {
        std::for_each(own.begin(), own.end(), [unit](double& value) { value *= unit; });
    };
    switch (fault.recipe.kind) {
        case FaultKind::DELAY:
            scale(levels.usualDelay[point]);
            SpreadToParents(
                topology.Flow(), [&](size_t parent, size_t i) { return levels.share[parent][i]; },
                fault.added);
            break;
        case FaultKind::ERROR: {
            const size_t counter = topology.ErrorCounterOf(point);
            scale(levels.rate[counter] * static_cast<double>(options.step));
            std::swap(own, fault.added[counter]);
            ClearErrorWalk(counter, topology);
            SpreadToParents(
                topology.Errors(), [](size_t, size_t) { return ERROR_SHARE; }, fault.added);
            break;
        }
        case FaultKind::LOAD: {
            const std::vector<bool> isBelow = AllBelow(topology.Flow(), point);
            for (size_t other = 0; other < isBelow.size(); ++other) {
                if (isBelow[other]) {
                    fault.added[other] = own;
                }
            }
        }
    }
}

// However few, errors lead a walk on below the planted point, and to points that follow the one above them.
void Plan::ClearErrorWalk(size_t point, const Topology& topology) {
    const std::vector<bool> isBelow = AllBelow(topology.Errors(), point);
    for (size_t other = 0; other < isBelow.size(); ++other) {
        if (isBelow[other]) {
            usualErrors[other] = 0;
        }
    }
    for (const Graph& graph : topology.Graphs()) {
        for (const GraphNode& node : graph.nodes) {
            if (node.role.attr == FOLLOW.attr) {
                usualErrors[topology.IndexOf(node.label)] = 0;
            }
        }
    }
}

void Plan::PlanGaps() {
    const int64_t firstFullHour =
        (options.Start() + SECONDS_PER_HOUR - 1) / SECONDS_PER_HOUR * SECONDS_PER_HOUR;
    gaps.emplace_back(firstFullHour, firstFullHour + SECONDS_PER_HOUR);
    for (int64_t i = 0; i < 4; ++i) {
        const double place = noise.Uniform(GAP_STREAM, i, 0);
        const int64_t first = static_cast<int64_t>(place * static_cast<double>(options.SampleCount()));
        const int64_t length = 3 + static_cast<int64_t>(4 * noise.Uniform(GAP_STREAM, i, 1));
        gaps.emplace_back(options.TimeOf(first), options.TimeOf(first + length));
    }
}

int64_t Plan::End() const {
    int64_t end = options.end;
    for (const PlantedFault& fault : faults) {
        end = std::max(end, fault.last + (ECHO_SAMPLES + 1) * options.step);
    }
    return end;
}

bool Plan::IsNearFault(int64_t time) const {
    return std::any_of(faults.begin(), faults.end(), [&](const PlantedFault& fault) {
        return time >= fault.start - QUIET_SECONDS &&
               time <= fault.last + std::max(QUIET_SECONDS, ECHO_SAMPLES * options.step);
    });
}

bool Plan::IsMissing(size_t point, int64_t time) const {
    if (gaps.empty() || IsNearFault(time)) {
        return false;
    }
    return noise.Uniform(GAP_STREAM + point, time, LOST_ROW_SALT) < LOST_ROW_SHARE ||
           std::any_of(gaps.begin(), gaps.end(),
                       [time](const auto& gap) { return time >= gap.first && time < gap.second; });
}

double Plan::Added(FaultKind kind, size_t point, int64_t time) const {
    double sum = 0;
    for (const PlantedFault& fault : faults) {
        if (fault.recipe.kind == kind && time >= fault.start && !constant[point]) {
            const auto sample = static_cast<size_t>((time - fault.start) / options.step);
            sum += sample < fault.added[point].size() ? fault.added[point][sample] : 0;
        }
    }
    return sum;
}

}  // namespace lumosim
