#include <algorithm>

#include "check/rules/misspelt.h"
#include "check/rules/rule.h"
#include "text/counted.h"

namespace check {
namespace {

// Calls `with` for each graph that is walked, as it may be: a factor graph is a list.
template <typename Visit>
void ForWalks(const Subject& subject, const Visit& with) {
    const std::vector<Graph>& graphs = subject.model.Graphs();
    for (size_t i = 0; i < graphs.size(); ++i) {
        if (graphs[i].kind != GraphKind::FACTOR) {
            with(graphs[i], subject.walks.Of(i));
        }
    }
}

std::vector<std::string> LabelsOf(const Graph& graph) {
    std::vector<std::string> labels;
    for (const Node& node : graph.nodes) {
        labels.emplace_back(node.Label());
    }
    return labels;
}

// The first node that hands over to a graph: "'NODE' of GRAPH".
std::string WhoHandsOver(const Subject& subject, const Graph& graph) {
    const auto& [other, node] = graph.handedOverBy.front();
    const Graph& from = subject.model.Graphs()[other];
    return Quoted(from.nodes[node].Label()) + " of " + from.name;
}

// Whether a node without an id of its own, which is told there, has the point at which walks would begin.
bool IsLost(const Graph& graph, const std::string& point) {
    return std::any_of(graph.nodes.begin(), graph.nodes.end(),
                       [&](const Node& node) { return node.Label().find(point) != std::string_view::npos; });
}

const Json::Value& PlaceOf(const Node& node) {
    return node.label != nullptr ? *node.label : *node.object;
}

// Where walks begin of which there is no delay, or no count: at an observation point and at what only groups
// others they fail.
bool IsBlindRoot(const Graph& graph, const GraphWalk& walk, size_t node) {
    const bool isEntry = std::count(walk.walkedEntries.begin(), walk.walkedEntries.end(), node) > 0;
    const bool isTop = !graph.handedOverBy.empty() && node == walk.top;
    const bool isBlind =
        graph.nodes[node].isModule || (graph.kind == GraphKind::FLOW && graph.nodes[node].IsObservation());
    return isBlind && (isEntry || isTop);
}

void FindBlindRoots(const Subject& subject, const Graph& graph, const GraphWalk& walk, const Report& report) {
    for (size_t i = 0; i < graph.nodes.size(); ++i) {
        if (IsBlindRoot(graph, walk, i)) {
            const Node& node = graph.nodes[i];
            report(subject.At(PlaceOf(node)), graph.name,
                   "walks begin at " + Quoted(node.Label()) + ", but fail: it " +
                       (node.isModule ? "counts nothing, by the MODULE in its description"
                                      : "is an observation point, by the OB_ in its label"));
        }
    }
}

void FindMissingRoots(const Subject& subject, const Report& report) {
    ForWalks(subject, [&](const Graph& graph, const GraphWalk& walk) {
        if (graph.nodes.empty()) {
            return;
        }
        FindBlindRoots(subject, graph, walk, report);
        for (const GraphUse* use : walk.usesWithoutEntry) {
            if (IsLost(graph, use->point)) {
                continue;
            }
            report(subject.At(*graph.value), graph.name,
                   "no node's label contains '" + use->point + "', from which '" + use->command + "' walks" +
                       subject.suggester.DidYouMean(use->point, LabelsOf(graph)));
        }
        const bool hasEdges = graph.edgeList == nullptr || graph.edgeList->isArray();
        if (!graph.handedOverBy.empty() && !walk.hasTop && hasEdges) {
            report(subject.At(*graph.value), graph.name,
                   WhoHandsOver(subject, graph) + " hands over to this graph, but it has no first node: no " +
                       "edge whose source is nobody's target");
        }
    });
}

void FindCirclesOf(const Subject& subject, const Report& report) {
    for (const Circle& circle : subject.walks.Circles()) {
        report(circle.at, subject.model.Graphs()[circle.graph].name,
               "this leads round in a circle: " + circle.points);
    }
}

bool IsSecondRoot(const GraphWalk& walk, size_t node) {
    return walk.isRoot[node] && !walk.entries.empty() && walk.isRoot[walk.entries.front()];
}

void FindUnreachable(const Subject& subject, const Report& report) {
    ForWalks(subject, [&](const Graph& graph, const GraphWalk& walk) {
        for (const LostPart& part : walk.lost) {
            if (part.below == 0 && IsSecondRoot(walk, part.node)) {
                continue;
            }
            const Node& node = graph.nodes[part.node];
            const std::string from =
                walk.entries.empty() ? "" : " from " + Quoted(graph.nodes[walk.entries.front()].Label());
            report(subject.At(PlaceOf(node)), graph.name,
                   "no edges lead" + from + " to " + Quoted(node.Label()) +
                       (part.below > 0 ? ", nor to " + Counted(part.below, "node") + " below it" : ""));
        }
    });
}

// Where a walk begins although another node is the one that is meant.
void FindWrongEntry(const Subject& subject, const Graph& graph, const GraphWalk& walk, const Report& report) {
    for (const size_t entry : walk.entries) {
        const Node& node = graph.nodes[entry];
        for (const GraphUse& use : graph.uses) {
            const bool isOther =
                node.Label() != use.point && node.Label().find(use.point) != std::string_view::npos;
            const bool hasExact = std::any_of(graph.nodes.begin(), graph.nodes.end(), [&](const Node& each) {
                return each.isKept && each.Label() == use.point;
            });
            if (isOther && hasExact && !use.point.empty()) {
                report(subject.At(*node.label), graph.name,
                       "walks begin here, not at '" + use.point +
                           "': the label contains that point, and the "
                           "id is lower");
            }
        }
    }
}

void FindSeveralRoots(const Subject& subject, const Report& report) {
    ForWalks(subject, [&](const Graph& graph, const GraphWalk& walk) {
        FindWrongEntry(subject, graph, walk, report);
        const size_t first = !walk.entries.empty() ? walk.entries.front() : walk.top;
        const bool isWalked = !walk.entries.empty() || !graph.handedOverBy.empty();
        if (!walk.isReachKnown || !isWalked || first == NONE || graph.nodes[first].isModule) {
            return;
        }
        for (const size_t root : walk.roots) {
            if (root != first && walk.isRoot[first]) {
                report(subject.At(PlaceOf(graph.nodes[root])), graph.name,
                       "no edge leads to " + Quoted(graph.nodes[root].Label()) + ", nor to " +
                           Quoted(graph.nodes[first].Label()) + ", where walks begin: they never come here");
            }
        }
    });
}

void FindReversed(const Subject& subject, const Report& report) {
    ForWalks(subject, [&](const Graph& graph, const GraphWalk& walk) {
        if (walk.reversed != NONE) {
            const Node& node = graph.nodes[walk.reversed];
            report(subject.At(PlaceOf(node)), graph.name,
                   "walks begin at " + Quoted(node.Label()) +
                       ", but edges only lead to it: the source is what is explained, the target the cause");
        }
    });
}

void FindObservers(const Subject& subject, const Report& report) {
    ForWalks(subject, [&](const Graph& graph, const GraphWalk& walk) {
        for (size_t i = 0; i < graph.nodes.size(); ++i) {
            const Node& node = graph.nodes[i];
            if (graph.kind == GraphKind::FLOW && node.IsObservation() && !node.children.empty() &&
                !IsBlindRoot(graph, walk, i)) {
                report(subject.At(*node.label), graph.name,
                       Quoted(node.Label()) +
                           " is an observation point, by the OB_ in its label: walks end " +
                           "above it, and never come to its " + Counted(node.children.size(), "edge"));
            }
        }
    });
}

void FindNoSuggestions(const Subject& subject, const Report& report) {
    ForWalks(subject, [&](const Graph& graph, const GraphWalk&) {
        for (const Node& node : graph.nodes) {
            const bool isLeaf = node.isKept && !node.Label().empty() && node.children.empty() &&
                                !node.isModule && !node.IsObservation() && node.NextGraph().empty();
            if (isLeaf && TextOf(node.suggestion).empty() && MisspeltMember(node, "suggestion") == nullptr) {
                const bool hasInfo = node.info != nullptr && node.info->isObject();
                report(
                    subject.At(node.suggestion != nullptr ? *node.suggestion
                               : hasInfo                  ? *node.info
                                                          : *node.object),
                    graph.name,
                    Quoted(node.Label()) + " has no 'suggestion': who finds the cause here is told nothing");
            }
        }
    });
}

}  // namespace

std::vector<Rule> WalkRules() {
    return {
        {"missing-root", Severity::ERROR, "A walk that does not know where to begin fails.",
         FindMissingRoots},
        {"circle", Severity::WARNING, "Causes do not go round; walks end where they would.", FindCirclesOf},
        {"unreachable-node", Severity::WARNING, "A point to which no walk comes is never found as a cause.",
         FindUnreachable},
        {"several-roots", Severity::WARNING,
         "Walks begin at one node; those below another one that no edge leads to are not come to.",
         FindSeveralRoots},
        {"reversed-edges", Severity::WARNING,
         "Edges lead from what is explained to its cause; where a walk begins they have to lead away.",
         FindReversed},
        {"observation-with-children", Severity::WARNING,
         "Walks end above an observation point, so what is below it is never found.", FindObservers},
        {"no-suggestion", Severity::NOTE, "Who finds this cause is not told what to do.", FindNoSuggestions},
    };
}

}  // namespace check
