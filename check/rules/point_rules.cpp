#include <algorithm>
#include <functional>
#include <set>

#include "check/rules/rule.h"
#include "text/counted.h"

namespace check {
namespace {

// Calls `with` for each node that shows a point's statistics: the name's place in the document, the graph.
void ForPoints(const Subject& subject, const std::function<void(const Json::Value&, const Graph&)>& with) {
    if (subject.statistics == nullptr) {
        return;
    }
    for (const Graph& graph : subject.model.Graphs()) {
        for (const Node& node : graph.nodes) {
            if (const Member point = PointOf(node, graph.kind)) {
                with(*point, graph);
            }
        }
    }
}

const std::vector<PointRow>* RowsOf(const Subject& subject, std::string_view point) {
    const auto place = subject.statistics->find(point);
    return place == subject.statistics->end() ? nullptr : &place->second;
}

void FindUnknownPoints(const Subject& subject, const Report& report) {
    std::vector<std::string> names;
    if (subject.statistics != nullptr) {
        for (const auto& [name, rows] : *subject.statistics) {
            names.push_back(name);
        }
    }
    ForPoints(subject, [&](const Json::Value& point, const Graph& graph) {
        if (RowsOf(subject, TextOf(&point)) == nullptr) {
            report(subject.At(point), graph.name,
                   "the database knows no point " + Quoted(TextOf(&point)) +
                       subject.suggester.DidYouMean(TextOf(&point), names));
        }
    });
}

void FindNoRows(const Subject& subject, const Report& report) {
    ForPoints(subject, [&](const Json::Value& point, const Graph& graph) {
        const std::vector<PointRow>* rows = RowsOf(subject, TextOf(&point));
        if (rows != nullptr && rows->empty()) {
            report(subject.At(point), graph.name,
                   Quoted(TextOf(&point)) + " has no row in the newest day of the database");
        }
    });
}

void FindConstants(const Subject& subject, const Report& report) {
    ForPoints(subject, [&](const Json::Value& point, const Graph& graph) {
        const std::vector<PointRow>* rows = RowsOf(subject, TextOf(&point));
        if (graph.kind == GraphKind::FLOW && rows != nullptr && rows->size() > 1 &&
            std::all_of(rows->begin(), rows->end(),
                        [&](const PointRow& row) { return row.delay == rows->front().delay; })) {
            report(subject.At(point), graph.name,
                   "the delay of " + Quoted(TextOf(&point)) + " is " + std::to_string(rows->front().delay) +
                       " us in all " + Counted(rows->size(), "row") +
                       " of the newest day: it correlates with nothing");
        }
    });
}

void FindPointsInNoGraph(const Subject& subject, const Report& report) {
    if (subject.statistics == nullptr || !subject.document.Root().isObject()) {
        return;
    }
    std::set<std::string_view> known;
    for (const Graph& graph : subject.model.Graphs()) {
        for (const Node& node : graph.nodes) {
            known.insert(node.Label());
            known.insert(TextOf(node.qname));
        }
    }
    for (const auto& [name, rows] : *subject.statistics) {
        if (known.count(name) == 0) {
            report(subject.At(subject.document.Root()), "", "the point " + Quoted(name) + " is in no graph");
        }
    }
}

// Calls `with` for each edge between two trace points that have rows: the edge, its graph, parent and child.
template <typename Visit>
void ForPairs(const Subject& subject, const Visit& with) {
    if (subject.statistics == nullptr) {
        return;
    }
    for (const Graph& graph : subject.model.Graphs()) {
        for (const Edge& edge : graph.edges) {
            if (graph.kind != GraphKind::FLOW || !edge.IsWhole()) {
                continue;
            }
            const Node& parent = graph.nodes[edge.source.node];
            const Node& child = graph.nodes[edge.target.node];
            const auto* parentRows = RowsOf(subject, parent.Label());
            const auto* childRows = RowsOf(subject, child.Label());
            if (parentRows != nullptr && childRows != nullptr && !parentRows->empty() &&
                !childRows->empty() && !parent.IsObservation() && !child.IsObservation() &&
                parentRows != childRows) {
                with(edge, graph, parent, child, *parentRows, *childRows);
            }
        }
    }
}

int64_t RequestsOf(const std::vector<PointRow>& rows) {
    double sum = 0;
    for (const PointRow& row : rows) {
        sum += static_cast<double>(std::max<int64_t>(row.requests, 0));
    }
    return static_cast<int64_t>(std::min(sum, 9e18));
}

void FindDifferentCounts(const Subject& subject, const Report& report) {
    constexpr int64_t FAR_MORE = 10;
    ForPairs(subject, [&](const Edge& edge, const Graph& graph, const Node& parent, const Node& child,
                          const auto& parentRows, const auto& childRows) {
        const int64_t above = RequestsOf(parentRows);
        const int64_t below = RequestsOf(childRows);
        if (below / FAR_MORE > std::max<int64_t>(above, 1)) {
            report(subject.At(*edge.object), graph.name,
                   Quoted(child.Label()) + " counts " + std::to_string(below) +
                       " requests in the newest day, " + Quoted(parent.Label()) + " above it " +
                       std::to_string(above) + ": what it takes of their delay cannot be told");
        }
    });
}

void FindSlowerChildren(const Subject& subject, const Report& report) {
    ForPairs(subject, [&](const Edge& edge, const Graph& graph, const Node& parent, const Node& child,
                          const auto& parentRows, const auto& childRows) {
        size_t common = 0;
        size_t slower = 0;
        auto above = parentRows.begin();
        for (const PointRow& row : childRows) {
            while (above != parentRows.end() && above->time < row.time) {
                ++above;
            }
            if (above != parentRows.end() && above->time == row.time) {
                ++common;
                slower += row.delay > above->delay ? 1U : 0U;
            }
        }
        if (slower * 2 > common) {
            report(subject.At(*edge.object), graph.name,
                   Quoted(child.Label()) + " is slower than " + Quoted(parent.Label()) + " above it in " +
                       std::to_string(slower) + " of " + Counted(common, "interval"));
        }
    });
}

}  // namespace

std::vector<Rule> PointRules() {
    return {
        {"unknown-point", Severity::WARNING, "A point that the database does not know has no statistics.",
         FindUnknownPoints},
        {"no-rows", Severity::WARNING, "A point without rows in the newest day cannot be found as a cause.",
         FindNoRows},
        {"constant", Severity::NOTE,
         "Delays that never change correlate with nothing, so no walk comes to the point.", FindConstants},
        {"point-in-no-graph", Severity::NOTE, "A point that is in no graph is never found as a cause.",
         FindPointsInNoGraph},
        {"counts-differ", Severity::NOTE,
         "A child with far more requests than its parent serves others too: the budget will not trust it.",
         FindDifferentCounts},
        {"slower-than-parent", Severity::NOTE,
         "A parent waits for its child, so it is slower; where it is not, the edge may be wrong.",
         FindSlowerChildren},
    };
}

}  // namespace check
