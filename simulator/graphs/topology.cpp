#include "simulator/graphs/topology.h"

#include <algorithm>
#include <functional>
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
    // Marked before its children: a circle ends where it closes.
    const std::function<void(size_t)> visit = [&](size_t point) {
        if (seen[point]) {
            return;
        }
        seen[point] = true;
        std::for_each(children[point].begin(), children[point].end(), visit);
        order.push_back(point);
    };
    for (size_t point = 0; point < children.size(); ++point) {
        visit(point);
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
    const auto add = [&](std::string_view parentName, std::string_view childName) {
        size_t parent = IndexOf(parentName);
        size_t child = IndexOf(childName);
        if (family == GraphFamily::ERRCODE) {
            parent = errorCounter[parent];
            child = errorCounter[child];
        }
        auto& known = result.children[parent];
        if (parent != child && std::find(known.begin(), known.end(), child) == known.end()) {
            known.push_back(child);
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
                add(node.label, GraphOf(node.role.subGraph).nodes.front().label);
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
    std::set<std::pair<const Graph*, int>> seen;
    GraphPath path;
    const std::function<bool(const Graph&, int)> descend = [&](const Graph& graph, int id) {
        if (!seen.insert({&graph, id}).second) {
            return false;
        }
        const GraphNode& node = graph.NodeOf(id);
        const bool isEntered = path.empty() || path.back().graph != graph.name;
        if (isEntered) {
            path.push_back({graph.name, {}});
        }
        path.back().points.push_back(node.label);
        if (node.label == point) {
            return true;
        }
        for (const GraphEdge& edge : graph.edges) {
            if (edge.source == id && descend(graph, edge.target)) {
                return true;
            }
        }
        if (!node.role.subGraph.empty() && descend(GraphOf(node.role.subGraph), 1)) {
            return true;
        }
        path.back().points.pop_back();
        if (isEntered) {
            path.pop_back();
        }
        return false;
    };
    descend(GraphOf(start), 1);
    return path;
}

}  // namespace lumosim
