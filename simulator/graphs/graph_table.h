// The graphs of the simulated storage system as tables: one source for the list of trace points, for the way
// in which delays and errors spread, and for the route configuration.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace lumosim {

// FLOW graphs carry delays, ERRCODE graphs carry error counts, FACTOR graphs list a module's points.
enum class GraphFamily { FLOW, ERRCODE, FACTOR };

// A graph in which commands begin, and the point at which they enter.
struct EnteredGraph {
    std::string_view graph, point;
    GraphFamily family;
};

// Those of a family in the order in which they are looked at.
constexpr EnteredGraph ENTERED_GRAPHS[] = {
    {"SAN_IO_READ", "TGT_LUMO_HOST_READ", GraphFamily::FLOW},
    {"SAN_IO_WRITE", "TGT_LUMO_HOST_WRITE", GraphFamily::FLOW},
    {"SAN_IO_CMD", "TGT_LUMO_HOST_CMD", GraphFamily::FLOW},
    {"NAS_IO_NFSV3", "NAS_TRANS_ALL", GraphFamily::FLOW},
    {"NAS_IO_NFSV4", "NAS_TRANS_ALL", GraphFamily::FLOW},
    {"NAS_IO_SMB2", "NAS_TRANS_ALL", GraphFamily::FLOW},
    {"ERRCODE_SAN_PROTO", "TGT_IO_ERRCODE_COMMON", GraphFamily::ERRCODE},
    {"ERRCODE_NAS_PROTO", "NAS_QELMAR_IO_COMMON", GraphFamily::ERRCODE},
    {"ERRCODE_SMB", "SMB_AUTHTICATE_LOGON_FAILURE", GraphFamily::ERRCODE},
};

// Whether commands begin in the graph.
bool IsEntered(std::string_view graph);

// What a node is besides a point: where the walk goes on below it, and how an error-code graph counts it.
struct NodeRole {
    std::string_view subGraph = {};  // the graph that continues below the node; empty: none
    std::string_view attr = {};      // words of an error-code node: "whole", "automic", "follow"
    std::string_view erridx = {};    // error index of an atomic node, as text
    std::string_view qname = {};     // the point that an atomic node is counted by; empty: itself
};

constexpr NodeRole PLAIN = {};
constexpr NodeRole WHOLE = {{}, "whole"};
constexpr NodeRole FOLLOW = {{}, "whole follow"};
constexpr NodeRole ATOMIC_ERROR = {{}, "automic", "-1"};
constexpr NodeRole ATOMIC_RETRY = {{}, "automic", "-2"};
constexpr NodeRole ATOMIC_DENIED = {{}, "automic", "-3"};

constexpr NodeRole HandOver(std::string_view graph) {
    return {graph};
}
constexpr NodeRole WholeHandOver(std::string_view graph) {
    return {graph, "whole"};
}
constexpr NodeRole CountedBy(std::string_view point, std::string_view erridx) {
    return {{}, "automic", erridx, point};
}

// One row of a graph's outline: a node below the nearest row above it that has a smaller depth. A point that
// the graph has already is no second node but a second parent of the first. Description and advice of a
// point are those of the first row of all graphs that gives any. A description that begins with "MODULE"
// makes a node that groups points and is none itself. A row may hand over in place of an earlier row of the
// same point in its graph, and edges may form a circle.
struct GraphRow {
    int depth;
    std::string_view point;
    NodeRole role = PLAIN;
    std::string_view description = {};
    std::string_view advice = {};
};

// A named graph, or more of a graph that an earlier table of that name began. The rows are static data.
struct GraphTable {
    std::string_view name;
    GraphFamily family;
    const GraphRow* rows;
    size_t count;

    template <size_t N>
    constexpr GraphTable(std::string_view graphName, GraphFamily graphFamily, const GraphRow (&graphRows)[N])
        : name(graphName), family(graphFamily), rows(graphRows), count(N) {}

    const GraphRow* begin() const { return rows; }
    const GraphRow* end() const { return rows + count; }
};

std::vector<GraphTable> SanFlowGraphs();
std::vector<GraphTable> NasFlowGraphs();
std::vector<GraphTable> PoolFlowGraphs();
std::vector<GraphTable> SanErrorGraphs();
std::vector<GraphTable> NasErrorGraphs();
std::vector<GraphTable> PoolErrorGraphs();
std::vector<GraphTable> FactorGraphs();

// All of them, in the order above.
std::vector<GraphTable> AllGraphs();

}  // namespace lumosim
