#include "simulator/plan/world_model.h"

#include <algorithm>

#include "simulator/graphs/config_graphs.h"
#include "simulator/plan/choices.h"

namespace lumosim {
namespace {

const WorldOptions& Checked(const WorldOptions& options) {
    CheckOptions(options);
    return options;
}

// Throws cli::UsageError in the configuration's name.
template <typename Read>
auto ReadConfig(const WorldOptions& options, const Read& read) {
    try {
        return read();
    } catch (const ConfigError& error) {
        throw cli::UsageError(options.config.string() + ": " + error.what());
    }
}

std::optional<std::string> ConfigOf(const WorldOptions& options) {
    if (options.config.empty()) {
        return std::nullopt;
    }
    return ReadConfig(options, [&] { return ConfigFileText(options.config); });
}

Topology TopologyOf(const WorldOptions& options, const std::optional<std::string>& config) {
    if (config) {
        return ReadConfig(options, [&] { return Topology(ReadConfigGraphs(*config)); });
    }
    std::vector<GraphTable> tables = AllGraphs();
    const Scenario& scenario = *FindScenario(options.scenario);
    tables.insert(tables.end(), scenario.graphs.begin(), scenario.graphs.end());
    return Topology(tables);
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
      config(ConfigOf(options)),
      topology(TopologyOf(options, config)),
      scenario(ScenarioOf(options, topology)),
      noise(options.seed),
      levels(config ? EvenLevels(topology) : UsualLevels(topology)),
      plan(options, scenario, topology, levels, noise),
      source(options, scenario.variation, topology, levels, plan, noise) {}

size_t WorldModel::PointCount() const {
    return static_cast<size_t>(std::count_if(topology.Points().begin(), topology.Points().end(),
                                             [](const Point& point) { return !point.IsGroup(); }));
}

}  // namespace lumosim
