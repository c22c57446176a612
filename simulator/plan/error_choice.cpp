#include "simulator/plan/choices.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace lumosim {
namespace {

int ColumnOf(const std::string& type) {
    const auto place = std::find(ERROR_TYPES.begin(), ERROR_TYPES.end(), type);
    if (place == ERROR_TYPES.end()) {
        throw cli::UsageError(NoSuchName("error type", type, {ERROR_TYPES.begin(), ERROR_TYPES.end()}));
    }
    return static_cast<int>(place - ERROR_TYPES.begin());
}

std::vector<std::string> ErrorPoints(const Topology& topology) {
    std::set<std::string> names;
    for (const Graph& graph : topology.Graphs()) {
        for (const GraphNode& node : graph.nodes) {
            const Point& point = topology.Points()[topology.IndexOf(node.label)];
            if (graph.family == GraphFamily::ERRCODE && !point.IsGroup() && !point.IsObservation()) {
                names.insert(std::string(node.label));
            }
        }
    }
    return {names.begin(), names.end()};
}

void MoveTo(const std::string& point, const Topology& topology, FaultRecipe& fault) {
    const std::vector<std::string> points = ErrorPoints(topology);
    if (!std::binary_search(points.begin(), points.end(), point)) {
        throw cli::UsageError(NoSuchName("point with errors", point, points));
    }
    const std::vector<std::string_view> graphs = topology.GraphsAbove(GraphFamily::ERRCODE, point);
    fault.graph = graphs.empty() ? std::string_view() : graphs.front();
    fault.point = topology.Points()[topology.IndexOf(point)].name;
}

}  // namespace

void ChooseErrors(const WorldOptions& options, const Topology& topology, Scenario& scenario) {
    if (options.errorType.empty() && options.errorPoint.empty()) {
        return;
    }
    if (scenario.faults.empty() || scenario.faults.front().kind != FaultKind::ERROR) {
        throw cli::UsageError("--error-type and --error-point are for scenarios with errors, not for " +
                              options.scenario);
    }
    FaultRecipe& fault = scenario.faults.front();
    if (!options.errorType.empty()) {
        fault.errorColumn = ColumnOf(options.errorType);
    }
    if (!options.errorPoint.empty()) {
        MoveTo(options.errorPoint, topology, fault);
    }
}

}  // namespace lumosim
