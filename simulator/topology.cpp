#include "simulator/topology.h"

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
    // Marked before its children, so that a circle in the graphs ends where it closes.
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
        AddGraph(table);
    }
    FindErrorCounters();
    flow = Depend(GraphFamily::FLOW);
    errors = Depend(GraphFamily::ERRCODE);
}

void Topology::AddGraph(const GraphTable& table) {
    Graph graph{table.name, table.family, {}, {}};
    std::vector<int> parents;  // the ids above the row, by depth
    for (const GraphRow& row : table) {
        AddPoint(row);
        int id = FindNode(graph, row.point);
        if (id == 0) {
            id = static_cast<int>(graph.nodes.size()) + 1;
            graph.nodes.push_back({id, row.point, row.role});
        }
        parents.resize(static_cast<size_t>(row.depth));
        if (!parents.empty()) {
            graph.edges.push_back({parents.back(), id});
        }
        parents.push_back(id);
    }
    graphIndex[table.name] = graphs.size();
    graphs.push_back(std::move(graph));
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
            result.hasParent[child] = true;
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
        const bool isNew = path.points.empty() || path.points.back() != node.label;
        if (isNew) {
            path.points.push_back(node.label);
        }
        path.graph = graph.name;
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
        if (isNew) {
            path.points.pop_back();
        }
        return false;
    };
    descend(GraphOf(start), 1);
    return path;
}

}  // namespace lumosim
