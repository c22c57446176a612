#include "simulator/plan/choices.h"

#include <algorithm>
#include <string>
#include <vector>

namespace lumosim {
namespace {

constexpr double USUAL_HOST_FACTOR = 3;  // how many times as slow hosts see what is planted anywhere

void CheckFits(const WorldOptions& options, const Scenario& scenario) {
    const size_t count = scenario.faults.size();
    const bool isSlow = count > 0 && scenario.faults.front().kind == FaultKind::DELAY;
    if ((options.faultStrength || options.spike || !options.faultPoint.empty()) && !isSlow) {
        throw cli::UsageError(
            "--fault-point, --fault-strength and --spike are for scenarios with a slow point, not for " +
            options.scenario);
    }
    if (options.secondFault && (count < 2 || scenario.faults[1].when != FaultTime::LATE)) {
        throw cli::UsageError("--second-fault is for scenarios with two faults at a time, not for " +
                              options.scenario);
    }
}

// Whether what is slow at the point makes the one slow at which the graph is entered.
bool IsSeen(const Topology& topology, std::string_view graph, std::string_view point) {
    const GraphPath path = topology.FindPath(graph, point);
    return !path.empty() &&
           AllBelow(topology.Flow(), topology.IndexOf(path.front().points.front()))[topology.IndexOf(point)];
}

bool IsReached(const Topology& topology, const FaultRecipe& fault) {
    if (!topology.HasGraph(fault.graph)) {
        return false;
    }
    return fault.kind == FaultKind::ERROR ? !topology.FindPath(fault.graph, fault.point).empty()
                                          : IsSeen(topology, fault.graph, fault.point);
}

std::vector<std::string> PointNames(const Topology& topology) {
    std::vector<std::string> names;
    for (const Point& point : topology.Points()) {
        if (!point.IsGroup()) {
            names.emplace_back(point.name);
        }
    }
    return names;
}

// The point of that name, which has statistics.
std::string_view PointNamed(const std::string& name, const Topology& topology) {
    const std::vector<std::string> names = PointNames(topology);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        throw cli::UsageError(NoSuchName("point", name, names));
    }
    return topology.Points()[topology.IndexOf(name)].name;
}

void MoveTo(const std::string& name, const Topology& topology, FaultRecipe& fault) {
    fault.point = PointNamed(name, topology);
    const std::vector<std::string_view> graphs = topology.GraphsAbove(GraphFamily::FLOW, name);
    const auto graph = std::find_if(graphs.begin(), graphs.end(),
                                    [&](std::string_view one) { return IsSeen(topology, one, name); });
    fault.graph = graph != graphs.end() ? *graph : std::string_view();
    fault.isWalked = false;
    fault.hostFactor = USUAL_HOST_FACTOR;
}

// A moment at which the point that hosts see is slow all by itself.
FaultRecipe Spike(const WorldOptions& options, const Topology& topology, const FaultRecipe& fault) {
    const std::string_view seen = fault.graph.empty()
                                      ? fault.point
                                      : topology.FindPath(fault.graph, fault.point).front().points.front();
    FaultRecipe spike{FaultKind::DELAY, fault.graph, seen, *options.spike - 1};
    spike.when = FaultTime::EARLY;
    spike.course.before = options.spikeBefore;
    return spike;
}

// That the configuration has the points and the ways of the scenario.
void CheckFitsGraphs(const WorldOptions& options, const Topology& topology, const Scenario& scenario) {
    if (options.config.empty()) {
        return;
    }
    const auto refuse = [&](const std::string& why) {
        throw cli::UsageError("scenario " + options.scenario + " does not fit " + options.config.string() +
                              ": " + why);
    };
    if (!scenario.graphs.empty()) {
        refuse("it changes graphs of lumo-sim's own");
    }
    std::vector<std::string_view> points = scenario.constantPoints;
    for (const FaultRecipe& fault : scenario.faults) {
        points.insert(points.end(), {fault.point, fault.twin.empty() ? fault.point : fault.twin});
    }
    for (const std::string_view point : points) {
        if (!topology.HasPoint(point)) {
            refuse("it needs the point " + std::string(point));
        }
    }
    for (const FaultRecipe& fault : scenario.faults) {
        if (!fault.graph.empty() && !IsReached(topology, fault)) {
            refuse("no way leads from " + std::string(fault.graph) + " to " + std::string(fault.point));
        }
    }
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
    if (!options.faultPoint.empty()) {
        MoveTo(options.faultPoint, topology, scenario.faults.front());
    }
    CheckFitsGraphs(options, topology, scenario);
    for (const std::string& name : options.constantPoints) {
        scenario.constantPoints.push_back(PointNamed(name, topology));
    }
    for (const auto& [point, twin] : options.twinPoints) {
        scenario.twins.emplace_back(PointNamed(point, topology), PointNamed(twin, topology));
    }
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
