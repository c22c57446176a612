#include "simulator/graphs/topology.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <stdexcept>
#include <utility>

namespace lumosim {
namespace {

// The id of the node with `label`; 0 when the graph has none.
int FindNode(const Graph& graph, std::string_view label) {
    for (const GraphNode& node : graph.nodes) {
        if (node.label == label) {
            return node.id;
        }
    }
    return 0;
}

std::vector<size_t> ChildrenFirst(const std::vector<std::vector<size_t>>& children) {
    std::vector<size_t> order;
    std::vector<bool> seen(children.size());
    std::vector<std::pair<size_t, size_t>> way;  // point, its next child; graphs may be of any depth
    // Marked before its children: a circle ends where it closes.
    const auto enter = [&](size_t point) {
        if (!seen[point]) {
            seen[point] = true;
            way.emplace_back(point, 0);
        }
    };
    for (size_t first = 0; first < children.size(); ++first) {
        enter(first);
        while (!way.empty()) {
            const size_t point = way.back().first;
            if (way.back().second < children[point].size()) {
                enter(children[point][way.back().second++]);
            } else {
                order.push_back(point);
                way.pop_back();
            }
        }
    }
    return order;
}

// Takes out the edges that close a circle, which lead to a point that comes later in the order.
void OpenCircles(Dependencies& dependencies) {
    std::vector<size_t> place(dependencies.childrenFirst.size());
    for (size_t i = 0; i < place.size(); ++i) {
        place[dependencies.childrenFirst[i]] = i;
    }
    for (size_t parent = 0; parent < place.size(); ++parent) {
        auto& known = dependencies.children[parent];
        known.erase(std::remove_if(known.begin(), known.end(),
                                   [&](size_t child) { return place[child] > place[parent]; }),
                    known.end());
    }
}

}  // namespace

bool IsEntered(std::string_view graph) {
    return std::any_of(std::begin(ENTERED_GRAPHS), std::end(ENTERED_GRAPHS),
                       [graph](const EnteredGraph& entered) { return entered.graph == graph; });
}

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

std::vector<GraphTable> AllGraphs() {
    std::vector<GraphTable> all;
    for (const auto& family : {SanFlowGraphs, NasFlowGraphs, PoolFlowGraphs, SanErrorGraphs, NasErrorGraphs,
                               PoolErrorGraphs, FactorGraphs}) {
        const std::vector<GraphTable> tables = family();
        all.insert(all.end(), tables.begin(), tables.end());
    }
    return all;
}

Topology::Topology(const std::vector<GraphTable>& tables) {
    for (const GraphTable& table : tables) {
        AddTable(table);
    }
    Connect();
}

Topology::Topology(ConfigGraphs config)
    : graphs(std::move(config.graphs)), points(std::move(config.points)), texts(std::move(config.texts)) {
    for (size_t i = 0; i < graphs.size(); ++i) {
        graphIndex.emplace(graphs[i].name, i);
    }
    for (size_t i = 0; i < points.size(); ++i) {
        pointIndex.emplace(points[i].name, i);
    }
    Connect();
}

void Topology::Connect() {
    for (Graph& graph : graphs) {
        for (const GraphEdge& edge : graph.edges) {
            graph.nodes[static_cast<size_t>(edge.source) - 1].children.push_back(edge.target);
        }
    }
    FindErrorCounters();
    flow = Depend(GraphFamily::FLOW);
    errors = Depend(GraphFamily::ERRCODE);
}

Graph& Topology::GraphFor(const GraphTable& table) {
    const auto [place, isNew] = graphIndex.try_emplace(table.name, graphs.size());
    if (isNew) {
        graphs.push_back({table.name, table.family, {}, {}});
    }
    return graphs[place->second];
}

void Topology::AddTable(const GraphTable& table) {
    Graph& graph = GraphFor(table);
    std::vector<int> parents;  // the ids above the row, by depth
    for (const GraphRow& row : table) {
        AddPoint(row);
        int id = FindNode(graph, row.point);
        if (id == 0) {
            id = static_cast<int>(graph.nodes.size()) + 1;
            graph.nodes.push_back({id, row.point, row.role});
        } else if (!row.role.subGraph.empty()) {
            graph.nodes[static_cast<size_t>(id) - 1].role.subGraph = row.role.subGraph;
        }
        parents.resize(static_cast<size_t>(row.depth));
        if (!parents.empty()) {
            graph.edges.push_back({parents.back(), id});
        }
        parents.push_back(id);
    }
}

void Topology::AddPoint(const GraphRow& row) {
    const auto [place, isNew] = pointIndex.try_emplace(row.point, points.size());
    if (isNew) {
        points.push_back({row.point, row.description, row.advice});
        return;
    }
    Point& known = points[place->second];
    if (known.description.empty()) {
        known.description = row.description;
    }
    if (known.advice.empty()) {
        known.advice = row.advice;
    }
}

const Graph& Topology::GraphOf(std::string_view name) const {
    const auto place = graphIndex.find(name);
    if (place == graphIndex.end()) {
        throw std::logic_error("no graph named " + std::string(name));
    }
    return graphs[place->second];
}

void Topology::FindErrorCounters() {
    errorCounter.resize(points.size());
    std::iota(errorCounter.begin(), errorCounter.end(), size_t{0});
    for (const Graph& graph : graphs) {
        for (const GraphNode& node : graph.nodes) {
            if (!node.role.qname.empty()) {
                errorCounter[IndexOf(node.label)] = IndexOf(node.role.qname);
            }
        }
    }
}

Dependencies Topology::Depend(GraphFamily family) const {
    Dependencies result;
    result.children.resize(points.size());
    result.hasParent.resize(points.size());
    std::set<std::pair<size_t, size_t>> known;
    const auto add = [&](std::string_view parentName, std::string_view childName) {
        size_t parent = IndexOf(parentName);
        size_t child = IndexOf(childName);
        if (family == GraphFamily::ERRCODE) {
            parent = errorCounter[parent];
            child = errorCounter[child];
        }
        if (parent != child && known.emplace(parent, child).second) {
            result.children[parent].push_back(child);
        }
    };
    for (const Graph& graph : graphs) {
        if (graph.family != family) {
            continue;
        }
        for (const GraphEdge& edge : graph.edges) {
            add(graph.NodeOf(edge.source).label, graph.NodeOf(edge.target).label);
        }
        for (const GraphNode& node : graph.nodes) {
            if (!node.role.subGraph.empty()) {
                const Graph& below = GraphOf(node.role.subGraph);
                add(node.label, below.NodeOf(below.root).label);
            }
        }
    }
    result.childrenFirst = ChildrenFirst(result.children);
    OpenCircles(result);
    for (const auto& children : result.children) {
        std::for_each(children.begin(), children.end(),
                      [&](size_t child) { result.hasParent[child] = true; });
    }
    return result;
}

GraphPath Topology::FindPath(std::string_view start, std::string_view point) const {
    struct Step {
        const Graph* graph;
        const GraphNode* node;
        size_t next = 0;  // of the node's children, or the graph below it
    };
    std::set<const GraphNode*> seen;
    std::vector<Step> way;
    const auto enter = [&](const Graph& graph, int id) {
        const GraphNode& node = graph.NodeOf(id);
        if (seen.insert(&node).second) {
            way.push_back({&graph, &node});
        }
    };
    for (enter(GraphOf(start), GraphOf(start).entry); !way.empty() && way.back().node->label != point;) {
        const auto [graph, node, next] = way.back();
        ++way.back().next;
        if (next < node->children.size()) {
            enter(*graph, node->children[next]);
        } else if (next == node->children.size() && !node->role.subGraph.empty()) {
            enter(GraphOf(node->role.subGraph), GraphOf(node->role.subGraph).root);
        } else {
            way.pop_back();
        }
    }
    GraphPath path;
    for (const Step& step : way) {
        if (path.empty() || path.back().graph != step.graph->name) {
            path.push_back({step.graph->name, {}});
        }
        path.back().points.push_back(step.node->label);
    }
    return path;
}

std::vector<std::string_view> Topology::GraphsAbove(GraphFamily family, std::string_view point) const {
    std::vector<std::string_view> names;
    for (const EnteredGraph& entered : ENTERED_GRAPHS) {
        if (graphIndex.count(entered.graph) > 0) {
            names.push_back(entered.graph);
        }
    }
    std::transform(graphs.begin(), graphs.end(), std::back_inserter(names),
                   [](const Graph& graph) { return graph.name; });
    names.erase(std::remove_if(names.begin(), names.end(),
                               [&](std::string_view name) {
                                   return GraphOf(name).family != family || FindPath(name, point).empty();
                               }),
                names.end());
    return names;
}

std::string_view Topology::GraphWith(std::string_view point) const {
    const auto graph = std::find_if(graphs.begin(), graphs.end(),
                                    [&](const Graph& one) { return FindNode(one, point) != 0; });
    return graph != graphs.end() ? graph->name : std::string_view();
}

}  // namespace lumosim
