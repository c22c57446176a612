#include "check/graph/walks.h"

#include <algorithm>
#include <unordered_set>

#include "check/graph/circles.h"

namespace check {
namespace {

// The node with the lowest id whose label contains `point`.
size_t EntryOf(const Graph& graph, const std::string& point) {
    size_t entry = NONE;
    for (size_t i = 0; i < graph.nodes.size(); ++i) {
        const Node& node = graph.nodes[i];
        if (node.number && node.isKept && node.Label().find(point) != std::string_view::npos &&
            (entry == NONE || *node.number < *graph.nodes[entry].number)) {
            entry = i;
        }
    }
    return entry;
}

void FindEntries(const Graph& graph, GraphWalk& walk) {
    for (const GraphUse& use : graph.uses) {
        const size_t entry = use.point.empty() ? NONE : EntryOf(graph, use.point);
        if (entry != NONE) {
            walk.entries.push_back(entry);
            if (use.isWalked) {
                walk.walkedEntries.push_back(entry);
            }
        } else if (use.isWalked) {
            walk.usesWithoutEntry.push_back(&use);
        }
    }
}

// As the plug-in does: by the ends' texts, not their numbers.
void FindTop(const Graph& graph, GraphWalk& walk) {
    std::unordered_set<std::string_view> targets;
    for (const Edge& edge : graph.edges) {
        targets.insert(edge.target.text);
    }
    for (const Edge& edge : graph.edges) {
        if (targets.count(edge.source.text) == 0) {
            walk.hasTop = true;
            walk.top = edge.source.node;
            return;
        }
    }
}

void FindRoots(const Graph& graph, GraphWalk& walk) {
    walk.isRoot.resize(graph.nodes.size());
    for (size_t i = 0; i < graph.nodes.size(); ++i) {
        const Node& node = graph.nodes[i];
        if (!node.isModule && !node.children.empty() && node.parents.empty()) {
            walk.roots.push_back(i);
            walk.isRoot[i] = true;
        }
    }
}

// The node with the label of one that hands over to the graph, where such a walk is meant to begin, when all
// others lead somewhere; else NONE.
size_t OnlySink(const Model& model, const Graph& graph) {
    std::unordered_set<std::string_view> labels;
    for (const auto& [other, node] : graph.handedOverBy) {
        if (&model.Graphs()[other] != &graph) {
            labels.insert(model.Graphs()[other].nodes[node].Label());
        }
    }
    labels.erase("");
    std::vector<size_t> sinks;
    for (size_t i = 0; i < graph.nodes.size(); ++i) {
        if (graph.nodes[i].isKept && graph.nodes[i].children.empty()) {
            sinks.push_back(i);
        }
    }
    const bool isMeant = sinks.size() == 1 && labels.count(graph.nodes[sinks.front()].Label()) > 0;
    return isMeant ? sinks.front() : NONE;
}

void FindReversed(const Model& model, const Graph& graph, GraphWalk& walk) {
    std::vector<size_t> meant = walk.entries;
    if (const size_t top = OnlySink(model, graph); top != NONE) {
        meant.push_back(top);
    }
    for (const size_t node : meant) {
        if (graph.nodes[node].children.empty() && !graph.nodes[node].parents.empty()) {
            walk.reversed = node;
        }
    }
}

// Where walks begin from which the rest must be reached. None: that cannot be told.
std::vector<size_t> Beginnings(const Graph& graph, const GraphWalk& walk) {
    const bool isWalked =
        !graph.handedOverBy.empty() ||
        std::any_of(graph.uses.begin(), graph.uses.end(), [](const GraphUse& use) { return use.isWalked; });
    const bool isUsed = isWalked || (!graph.uses.empty() && !graph.edges.empty());
    const bool hasEdges = graph.edgeList == nullptr || graph.edgeList->isArray();  // that can be known
    if (!hasEdges || !isUsed || graph.kind == GraphKind::FACTOR || walk.reversed != NONE ||
        !walk.usesWithoutEntry.empty()) {
        return {};
    }
    std::vector<size_t> beginnings = walk.entries;
    if (beginnings.empty()) {
        beginnings = walk.roots;
    } else if (!graph.handedOverBy.empty() && walk.top != NONE) {
        beginnings.push_back(walk.top);
    }
    return beginnings;
}

// Marks what can be reached from a node and is not marked. Returns how many nodes that are.
size_t Mark(const Graph& graph, size_t from, std::vector<bool>& marked) {
    std::vector<size_t> open;
    size_t count = 0;
    const auto add = [&](size_t node) {
        if (!marked[node]) {
            marked[node] = true;
            ++count;
            open.push_back(node);
        }
    };
    add(from);
    while (!open.empty()) {
        const size_t node = open.back();
        open.pop_back();
        for (const size_t child : graph.nodes[node].children) {
            add(child);
        }
    }
    return count;
}

void FindLost(const Graph& graph, GraphWalk& walk) {
    std::vector<bool> told = walk.isReached;
    const auto mayBeLost = [&](size_t node) {
        const Node& tried = graph.nodes[node];
        return !told[node] && tried.isKept && !tried.isModule && tried.number > 0;
    };
    const auto tell = [&](size_t node) { walk.lost.push_back({node, Mark(graph, node, told) - 1}); };
    for (size_t i = 0; i < graph.nodes.size(); ++i) {
        const std::vector<size_t>& parents = graph.nodes[i].parents;
        const bool isTop = std::none_of(parents.begin(), parents.end(), [&](size_t parent) {
            return parent != i && !graph.nodes[parent].isModule;
        });
        if (isTop && mayBeLost(i)) {
            tell(i);
        }
    }
    for (size_t i = 0; i < graph.nodes.size(); ++i) {  // what is left goes round
        if (mayBeLost(i)) {
            tell(i);
        }
    }
}

// Takes out of `lost` the targets of edges whose source is wrong, which is told there, and finds the node
// that a wrong target may have meant.
void Explain(const Graph& graph, GraphWalk& walk) {
    std::unordered_set<size_t> explained;
    size_t wrongTargets = 0;
    for (const Edge& edge : graph.edges) {
        if (edge.source.node == NONE && edge.target.node != NONE) {
            explained.insert(edge.target.node);
        }
        wrongTargets += edge.source.node != NONE && edge.target.node == NONE ? 1U : 0U;
    }
    walk.lost.erase(std::remove_if(walk.lost.begin(), walk.lost.end(),
                                   [&](const LostPart& part) { return explained.count(part.node) > 0; }),
                    walk.lost.end());
    const bool isOne = wrongTargets == 1 && walk.lost.size() == 1;
    if (isOne && graph.nodes[walk.lost.front().node].parents.empty()) {
        walk.meantTarget = walk.lost.front().node;
    }
}

void FindReach(const Graph& graph, GraphWalk& walk) {
    const std::vector<size_t> beginnings = Beginnings(graph, walk);
    walk.isReachKnown = !beginnings.empty();
    walk.isReached.resize(graph.nodes.size());
    if (!walk.isReachKnown) {
        return;
    }
    for (const size_t beginning : beginnings) {
        Mark(graph, beginning, walk.isReached);
    }
    FindLost(graph, walk);
    Explain(graph, walk);
}

}  // namespace

Walks::Walks(const Model& model) : walks(model.Graphs().size()) {
    for (size_t i = 0; i < walks.size(); ++i) {
        const Graph& graph = model.Graphs()[i];
        FindEntries(graph, walks[i]);
        FindTop(graph, walks[i]);
        FindRoots(graph, walks[i]);
        FindReversed(model, graph, walks[i]);
        FindReach(graph, walks[i]);
    }
    circles = FindCircles(model, walks);
}

}  // namespace check
