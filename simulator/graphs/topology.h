// The simulated system's points and graphs, made from the graph tables.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/graphs/graph_table.h"

namespace lumosim {

// A node of a graph. Ids count from 1 in the order of the outline, so a graph's first row has id 1.
struct GraphNode {
    int id;
    std::string_view label;
    NodeRole role;
};

struct GraphEdge {
    int source, target;  // ids: whose delay or errors are explained, and by whom
};

struct Graph {
    std::string_view name;
    GraphFamily family;
    std::vector<GraphNode> nodes;  // ascending by id
    std::vector<GraphEdge> edges;  // in the order of the outline

    const GraphNode& NodeOf(int id) const { return nodes[static_cast<size_t>(id) - 1]; }
};

// A trace point or observation point, or a node that groups points.
struct Point {
    std::string_view name;
    std::string_view description;
    std::string_view advice;

    // A group has no statistics.
    bool IsGroup() const { return description.substr(0, 6) == "MODULE"; }
    // An observation point measures a state, and counts no requests.
    bool IsObservation() const { return name.find("OB_") != std::string_view::npos; }
};

// Who makes use of whom, over all graphs of a family. Points go by index. Where the graphs form a circle, the
// edge that closes it is left out: nobody waits for itself.
struct Dependencies {
    std::vector<std::vector<size_t>> children;  // in the order of the graphs
    std::vector<size_t> childrenFirst;          // every point, each one after all that it makes use of
    std::vector<bool> hasParent;
};

// The part of a way that lies in one graph: its points from top to bottom.
struct GraphStretch {
    std::string_view graph;
    std::vector<std::string_view> points;
};
// A way from a graph's first node down to a point, over the graphs that hand over to each other. Empty: there
// is no way.
using GraphPath = std::vector<GraphStretch>;

class Topology {
public:
    // Throws std::logic_error when a row hands over to a graph that is not among the tables.
    explicit Topology(const std::vector<GraphTable>& tables);

    const std::vector<Graph>& Graphs() const { return graphs; }
    const std::vector<Point>& Points() const { return points; }
    // The index of a point that some graph has; throws std::out_of_range for others.
    size_t IndexOf(std::string_view point) const { return pointIndex.at(point); }
    // How delays and requests spread.
    const Dependencies& Flow() const { return flow; }
    // How errors spread.
    const Dependencies& Errors() const { return errors; }
    // The point that counts the errors of `point`: itself, unless an atomic node names another one.
    size_t ErrorCounterOf(size_t point) const { return errorCounter[point]; }

    // The first way, hand-overs included, from the first node of the graph `start` to `point`.
    GraphPath FindPath(std::string_view start, std::string_view point) const;

private:
    void AddTable(const GraphTable& table);
    Graph& GraphFor(const GraphTable& table);
    void AddPoint(const GraphRow& row);
    const Graph& GraphOf(std::string_view name) const;
    Dependencies Depend(GraphFamily family) const;
    void FindErrorCounters();

    std::vector<Graph> graphs;
    std::vector<Point> points;
    std::map<std::string_view, size_t> pointIndex;
    std::map<std::string_view, size_t> graphIndex;
    std::vector<size_t> errorCounter;
    Dependencies flow;
    Dependencies errors;
};

}  // namespace lumosim
