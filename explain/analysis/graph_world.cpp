#include "explain/analysis/graph_world.h"

#include <algorithm>
#include <iterator>

#include "fault_spectrum_graph/fault_causality_graph.h"
#include "fault_spectrum_graph/fault_json_object.h"

namespace explain {
namespace {

// One graph of the configuration. The root is that of the topology; 0, a node like any other, without one.
struct ConfiguredGraph {
    FaultCausalityGraph graph;
    int32_t root = 0;
};

class WorldReader {
public:
    explicit WorldReader(GraphWorld& toFill) : world(toFill) {}

    // Adds the node and all that can be reached from it.
    void Read(const std::string& graph, const std::string& point) {
        const auto& nodes = GraphOf(graph)->graph.mapNodeInfo;
        const auto top = std::find_if(nodes.begin(), nodes.end(),
                                      [&](const auto& entry) { return entry.second.locName == point; });
        if (top == nodes.end()) {
            std::vector<std::string> known;
            std::transform(nodes.begin(), nodes.end(), std::back_inserter(known),
                           [](const auto& entry) { return entry.second.locName; });
            throw NoData({ReasonKind::NO_POINT_IN_GRAPH, 0, 0, point, graph, 0, 0, 0, std::move(known)});
        }
        Add(graph, top->first);
        for (size_t next = 0; next < world.nodes.size(); ++next) {
            ReadBelow(next);
        }
    }

private:
    // Null for a graph that the configuration does not have.
    ConfiguredGraph* GraphOf(const std::string& name);
    void ReadBelow(size_t position);

    size_t Add(const std::string& graph, int32_t id) {
        const auto [entry, isNew] = positions.try_emplace({graph, id}, world.nodes.size());
        if (isNew) {
            const Node& node = GraphOf(graph)->graph.mapNodeInfo.at(id);
            world.nodes.push_back({graph, id, node.locName, node.suggestion, {}});
            world.points[node.locName].isObservation = node.statLabel == FAULT_OB_POINT;
        }
        return entry->second;
    }

    GraphWorld& world;
    std::map<std::string, std::unique_ptr<ConfiguredGraph>> graphs;
    std::map<std::pair<std::string, int32_t>, size_t> positions;
};

ConfiguredGraph* WorldReader::GraphOf(const std::string& name) {
    FaultJsonObject& config = FaultJsonObject::GetInstance();
    if (const auto known = graphs.find(name); known != graphs.end()) {
        return known->second.get();
    }
    Json::Value nodes;
    Json::Value edges;
    auto& graph = graphs[name];
    if (config.IsMember(name) && config.GetGraphValueByKeyTag(name, "nodes", nodes) == 0 &&
        config.GetGraphValueByKeyTag(name, "edges", edges) == 0) {
        graph = std::make_unique<ConfiguredGraph>();
        graph->graph.InitGraph(edges);
        graph->graph.ExtracNodeInfo(nodes);
        graph->graph.FindRootBySelf(edges, graph->root);
    }
    return graph.get();
}

void WorldReader::ReadBelow(size_t position) {
    const std::string name = world.nodes[position].graph;
    const int32_t id = world.nodes[position].id;
    const FaultCausalityGraph& graph = GraphOf(name)->graph;
    if (const auto edges = graph.mapGraph.find(id); edges != graph.mapGraph.end()) {
        for (const Edge& edge : edges->second) {
            if (graph.mapNodeInfo.count(edge.targetId) > 0) {
                const size_t child = Add(name, edge.targetId);
                world.nodes[position].children.push_back(child);
            }
        }
    }
    const std::string next = graph.mapNodeInfo.at(id).nextGraph;
    ConfiguredGraph* below = next != name ? GraphOf(next) : nullptr;
    if (below != nullptr && below->graph.mapNodeInfo.count(below->root) > 0) {
        world.handOvers[position] = Add(next, below->root);
    }
}

}  // namespace

GraphWorld ReadGraphWorld(const std::string& point, const std::string& graph) {
    GraphWorld world;
    if (!FaultJsonObject::GetInstance().IsMember(graph)) {
        throw NoData({ReasonKind::NO_GRAPH, 0, 0, graph});
    }
    WorldReader(world).Read(graph, point);
    return world;
}

GraphWorld LoadGraphWorld(const std::string& point, const std::string& graph, SampleStore& store) {
    GraphWorld world = ReadGraphWorld(point, graph);
    for (auto& [name, data] : world.points) {
        const bool isObservation = data.isObservation;
        data = store.Of(name);
        data.isObservation = isObservation;
        for (Sample& sample : data.samples) {
            sample.requests = isObservation ? 0.0 : sample.requests;
        }
    }
    return world;
}

}  // namespace explain
