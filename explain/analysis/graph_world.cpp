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

    // Adds the point's node of the first graph and all that can be reached from it, and from the point's
    // nodes of the other graphs, which are the same node.
    void Read(const std::vector<std::string>& entered, const std::string& point) {
        for (const std::string& graph : entered) {
            const Place top{graph, TopOf(graph, point)};
            if (world.nodes.empty()) {
                Add(top);
            } else {
                Join(top, 0);
            }
        }
        for (size_t next = 0; next < world.nodes.size(); ++next) {
            ReadBelow(next);
        }
    }

private:
    using Place = std::pair<std::string, int32_t>;  // graph, id of the node

    // Null for a graph that the configuration does not have.
    ConfiguredGraph* GraphOf(const std::string& name);
    int32_t TopOf(const std::string& graph, const std::string& point);
    void ReadBelow(size_t position);
    void ReadBelow(size_t position, const Place& place);
    size_t AddBelow(size_t position, const Place& place);
    void ShareBelow(size_t position);

    size_t Add(const Place& place) {
        const auto [entry, isNew] = positions.try_emplace(place, world.nodes.size());
        if (isNew) {
            const Node& node = NodeAt(place);
            world.nodes.push_back({place.first, place.second, node.locName, node.suggestion, {}});
            world.points[node.locName].isObservation = node.statLabel == FAULT_OB_POINT;
        }
        return entry->second;
    }

    // Makes a node of another graph one with that at the position, whose lower ones are not read yet.
    void Join(const Place& place, size_t position) {
        if (positions.try_emplace(place, position).second) {
            joined[position].push_back(place);
        }
    }

    const Node& NodeAt(const Place& place) {
        return GraphOf(place.first)->graph.mapNodeInfo.at(place.second);
    }

    GraphWorld& world;
    std::map<std::string, std::unique_ptr<ConfiguredGraph>> graphs;
    std::map<Place, size_t> positions;
    std::map<size_t, std::vector<Place>> joined;
};

int32_t WorldReader::TopOf(const std::string& graph, const std::string& point) {
    const auto& nodes = GraphOf(graph)->graph.mapNodeInfo;
    const auto top = std::find_if(nodes.begin(), nodes.end(),
                                  [&](const auto& entry) { return entry.second.locName == point; });
    if (top == nodes.end()) {
        std::vector<std::string> known;
        std::transform(nodes.begin(), nodes.end(), std::back_inserter(known),
                       [](const auto& entry) { return entry.second.locName; });
        throw NoData({ReasonKind::NO_POINT_IN_GRAPH, 0, 0, point, graph, 0, 0, 0, std::move(known)});
    }
    return top->first;
}

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
    ReadBelow(position, {world.nodes[position].graph, world.nodes[position].id});
    if (const auto others = joined.find(position); others != joined.end()) {
        ShareBelow(position);
        for (const Place& place : others->second) {
            ReadBelow(position, place);
            ShareBelow(position);
        }
    }
}

void WorldReader::ReadBelow(size_t position, const Place& place) {
    const FaultCausalityGraph& graph = GraphOf(place.first)->graph;
    if (const auto edges = graph.mapGraph.find(place.second); edges != graph.mapGraph.end()) {
        for (const Edge& edge : edges->second) {
            if (graph.mapNodeInfo.count(edge.targetId) > 0) {
                const size_t child = AddBelow(position, {place.first, edge.targetId});
                world.nodes[position].children.push_back(child);
            }
        }
    }
    const std::string next = NodeAt(place).nextGraph;
    ConfiguredGraph* below = next != place.first ? GraphOf(next) : nullptr;
    if (below != nullptr && below->graph.mapNodeInfo.count(below->root) > 0) {
        world.handOvers[position] = AddBelow(position, {next, below->root});
    }
}

// Of a node that several graphs enter, children of one name are one, too: each claims all that the point
// took.
size_t WorldReader::AddBelow(size_t position, const Place& place) {
    if (joined.count(position) > 0) {
        const std::vector<size_t>& children = world.nodes[position].children;
        const auto same = std::find_if(children.begin(), children.end(), [&](size_t child) {
            const GraphNode& node = world.nodes[child];
            return child > position && node.graph != place.first && node.point == NodeAt(place).locName;
        });
        if (same != children.end()) {
            Join(place, *same);
        }
    }
    return Add(place);
}

// Where there are several graphs below a node, the one that continues it does not get all: its root is a
// child.
void WorldReader::ShareBelow(size_t position) {
    std::vector<size_t>& children = world.nodes[position].children;
    if (const auto next = world.handOvers.find(position); next != world.handOvers.end()) {
        children.push_back(next->second);
        world.handOvers.erase(next);
    }
    std::vector<size_t> once;
    for (const size_t child : children) {
        if (child != position && std::find(once.begin(), once.end(), child) == once.end()) {
            once.push_back(child);
        }
    }
    children = std::move(once);
}

}  // namespace

GraphWorld ReadGraphWorld(const std::string& point, const std::vector<std::string>& graphs) {
    GraphWorld world;
    for (const std::string& graph : graphs) {
        if (!FaultJsonObject::GetInstance().IsMember(graph)) {
            throw NoData({ReasonKind::NO_GRAPH, 0, 0, graph});
        }
    }
    WorldReader(world).Read(graphs, point);
    return world;
}

GraphWorld LoadGraphWorld(const std::string& point, const std::vector<std::string>& graphs,
                          SampleStore& store) {
    GraphWorld world = ReadGraphWorld(point, graphs);
    for (auto& [name, data] : world.points) {
        const bool isObservation = data.isObservation;
        data = store.Of(name);
        data.isObservation = isObservation;
        data.idle = data.samples.size();
        data.samples = WithoutIdle(data.samples);
        data.idle -= data.samples.size();
        for (Sample& sample : data.samples) {
            sample.requests = isObservation ? 0.0 : sample.requests;
        }
    }
    return world;
}

}  // namespace explain
