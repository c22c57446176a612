#include <set>

#include "check/rules/rule.h"

namespace check {
namespace {

// Calls `with` for each end of each edge: the end, what it is called, the edge, the graph.
template <typename Visit>
void ForEnds(const Model& model, const Visit& with) {
    for (const Graph& graph : model.Graphs()) {
        for (const Edge& edge : graph.edges) {
            with(edge.source, "source", edge, graph);
            with(edge.target, "target", edge, graph);
        }
    }
}

bool IsDigits(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

void FindMissingEnds(const Subject& subject, const Report& report) {
    ForEnds(subject.model, [&](const EdgeEnd& end, const char* name, const Edge& edge, const Graph& graph) {
        if (end.member == nullptr) {
            report(subject.At(*edge.object), graph.name, std::string("the edge has no ") + name);
        }
    });
}

void FindNoNumbers(const Subject& subject, const Report& report) {
    ForEnds(subject.model, [&](const EdgeEnd& end, const char* name, const Edge&, const Graph& graph) {
        if (end.member != nullptr && (end.member->isString() || end.member->isIntegral()) && !end.number) {
            report(subject.At(*end.member), graph.name,
                   std::string("the ") + name + " " + Quoted(end.text) + " is not the id of a node");
        }
    });
}

std::string MeantNode(const Subject& subject, const Graph& graph, const EdgeEnd& end, const Edge& edge) {
    const size_t meant = subject.walks.Of(subject.model.PositionOf(graph)).meantTarget;
    if (meant == NONE || &end != &edge.target) {
        return "";
    }
    const Node& node = graph.nodes[meant];
    return "; did you mean " + std::to_string(*node.number) + " (" + Quoted(node.Label()) +
           "), to which no edge leads?";
}

void FindNowhere(const Subject& subject, const Report& report) {
    ForEnds(subject.model, [&](const EdgeEnd& end, const char* name, const Edge& edge, const Graph& graph) {
        if (end.number && end.node == NONE && !graph.nodes.empty()) {
            report(subject.At(*end.member), graph.name,
                   std::string("the ") + name + " " + std::to_string(*end.number) + " is no node's id" +
                       MeantNode(subject, graph, end, edge));
        }
    });
}

// Numbers that a graph's edges write in more than one way: what is nobody's target is told by the texts.
std::set<int32_t> WrittenTwice(const Graph& graph) {
    std::unordered_map<int32_t, const std::string*> texts;
    std::set<int32_t> twice;
    for (const Edge& edge : graph.edges) {
        for (const EdgeEnd* end : {&edge.source, &edge.target}) {
            if (end->number && *texts.try_emplace(*end->number, &end->text).first->second != end->text) {
                twice.insert(*end->number);
            }
        }
    }
    return twice;
}

void FindNumbersWithText(const Subject& subject, const Report& report) {
    for (const Graph& graph : subject.model.Graphs()) {
        const std::set<int32_t> twice = WrittenTwice(graph);
        for (const Edge& edge : graph.edges) {
            for (const EdgeEnd* end : {&edge.source, &edge.target}) {
                const size_t first = end->text.find_first_not_of(" \t\r\n\v\f+");
                if (!end->number || !end->member->isString() || end->text == std::to_string(*end->number)) {
                    continue;
                }
                if (!IsDigits(end->text.substr(first)) || twice.count(*end->number) > 0) {
                    report(subject.At(*end->member), graph.name,
                           Quoted(end->text) + " is read as " + std::to_string(*end->number) +
                               ", but another text than '" + std::to_string(*end->number) +
                               "' where the first node is looked for");
                }
            }
        }
        for (const Node& node : graph.nodes) {
            const std::string_view text = TextOf(node.erridx);
            const size_t last = text.find_first_not_of("0123456789", text.substr(0, 1) == "-" ? 1 : 0);
            if (graph.kind == GraphKind::ERRCODE && !node.isModule && last != std::string_view::npos &&
                last > 0 && text[last - 1] != '-') {
                report(subject.At(*node.erridx), graph.name,
                       Quoted(text) + " is read as " + std::string(text.substr(0, last)));
            }
        }
    }
}

void FindNumberEnds(const Subject& subject, const Report& report) {
    ForEnds(subject.model, [&](const EdgeEnd& end, const char* name, const Edge&, const Graph& graph) {
        if (end.member != nullptr && end.member->isIntegral() && end.number) {
            report(subject.At(*end.member), graph.name,
                   std::string("the ") + name + " is a number; edges name ids as texts: \"" +
                       std::to_string(*end.number) + "\"");
        }
    });
}

void FindDuplicateEdges(const Subject& subject, const Report& report) {
    for (const Graph& graph : subject.model.Graphs()) {
        std::map<std::pair<int32_t, int32_t>, const Edge*> known;
        for (const Edge& edge : graph.edges) {
            if (!edge.source.number || !edge.target.number) {
                continue;
            }
            const auto [place, isNew] = known.try_emplace({*edge.source.number, *edge.target.number}, &edge);
            if (!isNew) {
                report(subject.At(*edge.object), graph.name,
                       "the edge from " + std::to_string(*edge.source.number) + " to " +
                           std::to_string(*edge.target.number) + " is in line " +
                           std::to_string(subject.LineOf(subject.At(*place->second->object))) + " too");
            }
        }
    }
}

void FindSelfEdges(const Subject& subject, const Report& report) {
    for (const Graph& graph : subject.model.Graphs()) {
        for (const Edge& edge : graph.edges) {
            if (edge.source.number && edge.source.number == edge.target.number) {
                report(subject.At(*edge.object), graph.name,
                       "the edge leads from node " + std::to_string(*edge.source.number) + " to itself");
            }
        }
    }
}

}  // namespace

std::vector<Rule> EdgeRules() {
    return {
        {"edge-end-missing", Severity::ERROR, "An edge without a source or target ends the command.",
         FindMissingEnds},
        {"edge-end-not-a-number", Severity::ERROR,
         "An edge's end that is no number ends the command; one below 0 is left out.", FindNoNumbers},
        {"edge-to-nowhere", Severity::ERROR, "An edge whose end is no node leads no walk anywhere.",
         FindNowhere},
        {"number-with-text", Severity::WARNING,
         "Text behind a number is left out when the number is read, but counts when the first node is looked "
         "for.",
         FindNumbersWithText},
        {"number-valued-end", Severity::WARNING, "The plug-in takes numbers where it documents texts.",
         FindNumberEnds},
        {"duplicate-edge", Severity::WARNING, "The second of two equal edges changes nothing.",
         FindDuplicateEdges},
        {"self-edge", Severity::WARNING, "A point cannot be the cause of its own delay.", FindSelfEdges},
    };
}

}  // namespace check
