// The graphs of a configuration as the plug-in reads them, each value with its place. One model serves all
// rules, and whatever else asks what a configuration says.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "check/graph/vocabulary.h"
#include "check/source/document.h"

namespace check {

constexpr size_t NONE = static_cast<size_t>(-1);

// A member of an object as it stands in the document, whatever its type; null when it is not there.
using Member = const Json::Value*;

Member MemberOf(const Json::Value& object, std::string_view name);

// The text of a member; empty when it is none.
std::string_view TextOf(Member member);

struct Node {
    const Json::Value* object;  // all that is in it
    Member id, label, name, description, info;
    Member subGraph, suggestion, attr, erridx, qname;  // of info
    std::optional<int32_t> number;                     // the id; also one that stands in a text
    bool isModule = false;           // of an error-code graph: it groups points, and is none
    bool isKept = true;              // no later node has its id
    std::vector<size_t> children;    // positions in the graph's nodes, in the order of the edges
    std::vector<size_t> childEdges;  // of each child, a position in the graph's edges
    std::vector<size_t> parents;

    std::string_view Label() const { return TextOf(label); }
    // The graph in which the analysis goes on below it; empty: none.
    std::string_view NextGraph() const { return TextOf(subGraph); }
    // In an error-code graph: whether another point, its qname, counts for it.
    bool IsCountedElsewhere() const;
    bool IsObservation() const { return Label().find("OB_") != std::string_view::npos; }
};

// The member that names the point whose statistics a node of a graph of that kind shows; null: it shows none.
Member PointOf(const Node& node, GraphKind kind);

struct EdgeEnd {
    Member member = nullptr;
    std::string text;               // as the plug-in reads it
    std::optional<int32_t> number;  // none: it is no number of 32 bits, or below 0
    size_t node = NONE;             // the node of that id, a position in the graph's nodes
};

struct Edge {
    const Json::Value* object;
    EdgeEnd source, target;

    bool IsWhole() const { return source.node != NONE && target.node != NONE; }
};

struct Graph {
    std::string name;
    const Json::Value* value;  // all that is in it
    size_t key = 0;            // offset of its name
    Member nodeList, edgeList;
    GraphKind kind = GraphKind::FLOW;  // what reads it; by its looks, where nothing does
    std::vector<GraphUse> uses;
    std::vector<Node> nodes;
    std::vector<Edge> edges;
    std::vector<std::pair<size_t, size_t>> handedOverBy;  // graph and node, positions

    // The node that the plug-in has for an id; NONE: none.
    size_t NodeOf(int32_t id) const;

    std::unordered_map<int32_t, size_t> byId;
};

class Model {
public:
    // Refers to `document`, which must live as long.
    explicit Model(const Document& document);

    const Document& Source() const { return document; }
    // In the order of the document.
    const std::vector<Graph>& Graphs() const { return graphs; }
    // The graph of that name; null: none.
    const Graph* Find(std::string_view name) const;
    size_t PositionOf(const Graph& graph) const { return static_cast<size_t>(&graph - graphs.data()); }
    // The name of the graph in which a byte of the document lies; empty: none.
    std::string GraphAt(size_t offset) const;
    size_t CountNodes() const;

private:
    void ReadGraphs();
    void FindHandOvers();
    void FindKinds();

    const Document& document;
    std::vector<Graph> graphs;
    std::unordered_map<std::string_view, size_t> byName;
};

}  // namespace check
