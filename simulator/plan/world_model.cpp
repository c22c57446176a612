#include "simulator/plan/world_model.h"

#include <algorithm>

#include "simulator/plan/choices.h"

namespace lumosim {
namespace {

const WorldOptions& Checked(const WorldOptions& options) {
    CheckOptions(options);
    return options;
}

std::vector<GraphTable> GraphsOf(const Scenario& scenario) {
    std::vector<GraphTable> tables = AllGraphs();
    tables.insert(tables.end(), scenario.graphs.begin(), scenario.graphs.end());
    return tables;
}

Scenario ScenarioOf(const WorldOptions& options, const Topology& topology) {
    Scenario scenario = *FindScenario(options.scenario);
    ChooseErrors(options, topology, scenario);
    ChooseFaults(options, topology, scenario);
    return scenario;
}

}  // namespace

WorldModel::WorldModel(const WorldOptions& worldOptions)
    : options(Checked(worldOptions)),
      topology(GraphsOf(*FindScenario(options.scenario))),
      scenario(ScenarioOf(options, topology)),
      noise(options.seed),
      levels(UsualLevels(topology)),
      plan(options, scenario, topology, levels, noise),
      source(options, scenario.variation, topology, levels, plan, noise) {}

size_t WorldModel::PointCount() const {
    return static_cast<size_t>(std::count_if(topology.Points().begin(), topology.Points().end(),
                                             [](const Point& point) { return !point.IsGroup(); }));
}

}  // namespace lumosim
