#include "check/graph/circles.h"

#include <set>
#include <utility>

#include "text/printable.h"

namespace check {
namespace {

using GraphNode = std::pair<size_t, size_t>;  // positions of a graph and of a node in it

class CircleSearch {
public:
    CircleSearch(const Model& toSearch, const std::vector<GraphWalk>& knownWalks)
        : model(toSearch), walks(knownWalks) {
        for (const Graph& graph : model.Graphs()) {
            states.emplace_back(graph.nodes.size(), NEW);
        }
    }

    std::vector<Circle> Run() {
        for (size_t graph = 0; graph < walks.size(); ++graph) {
            for (const size_t entry : walks[graph].entries) {
                SearchFrom({graph, entry});
            }
        }
        for (size_t graph = 0; graph < walks.size(); ++graph) {
            if (walks[graph].top != NONE) {
                SearchFrom({graph, walks[graph].top});
            }
        }
        for (size_t graph = 0; graph < walks.size(); ++graph) {
            for (size_t node = 0; node < states[graph].size(); ++node) {
                SearchFrom({graph, node});
            }
        }
        return std::move(circles);
    }

private:
    static constexpr size_t NEW = NONE;       // not met yet
    static constexpr size_t DONE = NONE - 1;  // met, and no longer on the way; else: its place on the way

    struct Step {
        GraphNode node;
        size_t next = 0;  // of the node's ways down
    };

    size_t& StateOf(const GraphNode& node) { return states[node.first][node.second]; }

    void SearchFrom(const GraphNode& start) {
        if (model.Graphs()[start.first].kind == GraphKind::FACTOR || StateOf(start) != NEW) {
            return;
        }
        Enter(start);
        while (!way.empty()) {
            const GraphNode from = way.back().node;
            const size_t next = way.back().next++;
            const Node& node = model.Graphs()[from.first].nodes[from.second];
            if (next > node.children.size()) {
                StateOf(from) = DONE;
                way.pop_back();
                continue;
            }
            const GraphNode below =
                next < node.children.size() ? GraphNode{from.first, node.children[next]} : NextOf(node);
            if (below.second != NONE) {
                Meet(from, next, below);
            }
        }
    }

    void Enter(const GraphNode& node) {
        StateOf(node) = way.size();
        way.push_back({node});
    }

    // The node at which the analysis goes on in another graph.
    GraphNode NextOf(const Node& node) const {
        const Graph* next = node.NextGraph().empty() ? nullptr : model.Find(node.NextGraph());
        if (next == nullptr || next->kind == GraphKind::FACTOR) {
            return {0, NONE};
        }
        const size_t position = model.PositionOf(*next);
        return {position, walks[position].top};
    }

    void Meet(const GraphNode& from, size_t step, const GraphNode& below) {
        const size_t state = StateOf(below);
        if (state == NEW) {
            Enter(below);
            return;
        }
        const Graph& graph = model.Graphs()[from.first];
        const Node& node = graph.nodes[from.second];
        const bool isEdge = step < node.children.size();
        if (state == DONE || (isEdge && from == below) || !told.insert({from, below}).second) {
            return;
        }
        const Json::Value& closing = isEdge ? *graph.edges[node.childEdges[step]].object : *node.subGraph;
        circles.push_back({from.first, model.Source().StartOf(closing), PointsFrom(state)});
    }

    // The points of the way from one of its places on, and the first one again; of many the first and last.
    std::string PointsFrom(size_t place) const {
        constexpr size_t SHOWN = 8;
        std::string points;
        const size_t count = way.size() - place;
        for (size_t i = 0; i < count; ++i) {
            if (count > SHOWN && i == SHOWN / 2) {
                points += ".. -> ";
                i = count - SHOWN / 2;
            }
            points += NameOf(place + i) + " -> ";
        }
        return points + NameOf(place);
    }

    std::string NameOf(size_t place) const {
        const GraphNode& at = way[place].node;
        const Graph& graph = model.Graphs()[at.first];
        const std::string label = Printable(graph.nodes[at.second].Label(), 80);
        const bool isOther = at.first != way.back().node.first;
        return isOther ? label + " (" + Printable(graph.name, 80) + ")" : label;
    }

    const Model& model;
    const std::vector<GraphWalk>& walks;
    std::vector<std::vector<size_t>> states;
    std::vector<Step> way;
    std::set<std::pair<GraphNode, GraphNode>> told;
    std::vector<Circle> circles;
};

}  // namespace

std::vector<Circle> FindCircles(const Model& model, const std::vector<GraphWalk>& walks) {
    return CircleSearch(model, walks).Run();
}

}  // namespace check
