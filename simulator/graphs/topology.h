// The simulated system's points and graphs, made from the graph tables.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/graphs/graph_table.h"

namespace lumosim {

// What marks, at its begin, the description of a node that groups points.
constexpr std::string_view GROUP_MARK = "MODULE";

// A node of a graph. Ids count from 1 in the order of the outline, so a graph's first row has id 1.
struct GraphNode {
    int id;
    std::string_view label;
    NodeRole role;
    std::vector<int> children = {};  // ids, in the order of the edges
};

struct GraphEdge {
    int source, target;  // ids: whose delay or errors are explained, and by whom
};

struct Graph {
    std::string_view name;
    GraphFamily family;
    std::vector<GraphNode> nodes;  // ascending by id
    std::vector<GraphEdge> edges;  // in the order of the outline
    int entry = 1;                 // the node at which ways down begin
    int root = 1;                  // the node to which other graphs hand over; 0: none

    const GraphNode& NodeOf(int id) const { return nodes[static_cast<size_t>(id) - 1]; }
};

// A trace point or observation point, or a node that groups points.
struct Point {
    std::string_view name;
    std::string_view description;
    std::string_view advice;

    // A group has no statistics.
    bool IsGroup() const { return description.substr(0, GROUP_MARK.size()) == GROUP_MARK; }
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

// By point: whether it is `point` or below it.
std::vector<bool> AllBelow(const Dependencies& dependencies, size_t point);

// The part of a way that lies in one graph: its points from top to bottom.
struct GraphStretch {
    std::string_view graph;
    std::vector<std::string_view> points;
};
// A way from where a graph is entered down to a point, over the graphs that hand over to each other. Empty:
// there is no way.
using GraphPath = std::vector<GraphStretch>;

// Graphs of a configuration, whose hand-overs lead to graphs with a root. The nodes' children are not filled.
struct ConfigGraphs {
    std::vector<Graph> graphs;
    std::vector<Point> points;
    std::shared_ptr<const std::deque<std::string>> texts;  // what the views look at
};

class Topology {
public:
    // Throws std::logic_error when a row hands over to a graph that is not among the tables.
    explicit Topology(const std::vector<GraphTable>& tables);
    explicit Topology(ConfigGraphs config);

    const std::vector<Graph>& Graphs() const { return graphs; }
    const std::vector<Point>& Points() const { return points; }
    // The index of a point that some graph has; throws std::out_of_range for others.
    size_t IndexOf(std::string_view point) const { return pointIndex.at(point); }
    bool HasGraph(std::string_view graph) const { return graphIndex.count(graph) > 0; }
    bool HasPoint(std::string_view point) const { return pointIndex.count(point) > 0; }
    // How delays and requests spread.
    const Dependencies& Flow() const { return flow; }
    // How errors spread.
    const Dependencies& Errors() const { return errors; }
    // The point that counts the errors of `point`: itself, unless an atomic node names another one.
    size_t ErrorCounterOf(size_t point) const { return errorCounter[point]; }

    // The first way, hand-overs included, from where the graph `start` is entered to `point`.
    GraphPath FindPath(std::string_view start, std::string_view point) const;
    // The graphs of a family from whose entries a way leads to the point, those in which commands begin
    // first.
    std::vector<std::string_view> GraphsAbove(GraphFamily family, std::string_view point) const;
    // The first graph that has the point; empty: it is counted for other points only.
    std::string_view GraphWith(std::string_view point) const;

private:
    void AddTable(const GraphTable& table);
    Graph& GraphFor(const GraphTable& table);
    void AddPoint(const GraphRow& row);
    void Connect();
    const Graph& GraphOf(std::string_view name) const;
    Dependencies Depend(GraphFamily family) const;
    void FindErrorCounters();

    std::vector<Graph> graphs;
    std::vector<Point> points;
    std::map<std::string_view, size_t> pointIndex;
    std::map<std::string_view, size_t> graphIndex;
    std::shared_ptr<const std::deque<std::string>> texts;
    std::vector<size_t> errorCounter;
    Dependencies flow;
    Dependencies errors;
};

}  // namespace lumosim
