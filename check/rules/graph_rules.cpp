#include <algorithm>
#include <set>

#include "check/rules/misspelt.h"
#include "check/rules/rule.h"

namespace check {
namespace {

// The commands that read a graph.
std::string ReadersOf(const std::vector<GraphUse>& uses) {
    std::string readers;
    for (const GraphUse& use : uses) {
        const std::string reader = "'" + use.command + "'";
        if (!use.command.empty() && readers.find(reader) == std::string::npos) {
            readers += (readers.empty() ? "" : ", ") + reader;
        }
    }
    return readers;
}

bool IsUnused(const Graph& graph) {
    return graph.uses.empty() && graph.handedOverBy.empty();
}

std::vector<std::string> NamesOfGraphs(const Model& model) {
    std::vector<std::string> names;
    for (const Graph& graph : model.Graphs()) {
        names.push_back(graph.name);
    }
    return names;
}

// The vocabulary's graphs that the configuration does not have and a command reads.
std::vector<std::string> MissingGraphs(const Model& model) {
    std::vector<std::string> missing;
    for (const GraphUse& use : GraphUses()) {
        if (!use.command.empty() && model.Find(use.graph) == nullptr &&
            (missing.empty() || missing.back() != use.graph)) {
            missing.push_back(use.graph);
        }
    }
    return missing;
}

void FindUnknownSubGraphs(const Subject& subject, const Report& report) {
    const std::vector<std::string> names = NamesOfGraphs(subject.model);
    for (const Graph& graph : subject.model.Graphs()) {
        for (const Node& node : graph.nodes) {
            const std::string_view next = node.NextGraph();
            if (!next.empty() && subject.model.Find(next) == nullptr) {
                report(subject.At(*node.subGraph), graph.name,
                       "there is no graph " + Quoted(next) + subject.suggester.DidYouMean(next, names));
            }
        }
    }
}

void FindNamesOfGraphs(const Subject& subject, const Report& report) {
    for (const Graph& graph : subject.model.Graphs()) {
        for (const Node& node : graph.nodes) {
            const std::string_view name = TextOf(node.name);
            const bool hasOther = name != graph.name && subject.model.Find(name) != nullptr;
            if (hasOther && node.subGraph == nullptr && !node.isModule && graph.kind != GraphKind::FACTOR) {
                report(subject.At(*node.name), graph.name,
                       "the name " + Quoted(name) +
                           " is that of a graph, so the analysis goes on there; rename the node, or say so "
                           "with a 'subGraph'");
            }
        }
    }
}

void FindMissingGraphs(const Subject& subject, const Report& report) {
    if (!subject.document.Root().isObject()) {
        return;
    }
    std::vector<std::string> unused;
    for (const Graph& graph : subject.model.Graphs()) {
        if (IsUnused(graph)) {
            unused.push_back(graph.name);
        }
    }
    for (const std::string& name : MissingGraphs(subject.model)) {
        report(subject.At(subject.document.Root()), name,
               "there is no such graph, though it is read by " + ReadersOf(UsesOf(name)) +
                   subject.suggester.DidYouMean(name, unused));
    }
}

// What leads to a graph by mistake, or to none: subGraphs that are no graphs, what stands in members that
// should have been a subGraph, and names of nodes.
std::set<std::string> NamesInVain(const Model& model) {
    std::set<std::string> names;
    for (const Graph& graph : model.Graphs()) {
        for (const Node& node : graph.nodes) {
            const Member next = node.subGraph != nullptr ? node.subGraph : MisspeltMember(node, "subGraph");
            if (!TextOf(next).empty() && (next != node.subGraph || model.Find(TextOf(next)) == nullptr)) {
                names.emplace(TextOf(next));
            }
            if (next == nullptr && model.Find(TextOf(node.name)) != nullptr &&
                TextOf(node.name) != graph.name) {
                names.emplace(TextOf(node.name));
            }
        }
    }
    return names;
}

// The graphs that are meant by what leads to none: of these names, those of graphs and the nearest to others.
std::set<std::string> MeantByMistake(const Subject& subject) {
    const std::vector<std::string> names = NamesOfGraphs(subject.model);
    std::set<std::string> meant;
    for (const std::string& name : NamesInVain(subject.model)) {
        meant.insert(subject.model.Find(name) != nullptr ? name : subject.suggester.Nearest(name, names));
    }
    return meant;
}

void FindUnusedGraphs(const Subject& subject, const Report& report) {
    const std::vector<std::string> missing = MissingGraphs(subject.model);
    const std::set<std::string> meant = MeantByMistake(subject);
    for (const Graph& graph : subject.model.Graphs()) {
        if (IsUnused(graph) && meant.count(graph.name) == 0) {
            report(graph.key, graph.name,
                   "no command reads this graph, and none hands over to it" +
                       subject.suggester.DidYouMean(graph.name, missing));
        }
    }
}

}  // namespace

std::vector<Rule> GraphRules() {
    return {
        {"unknown-sub-graph", Severity::ERROR, "An analysis that is handed over to no graph ends there.",
         FindUnknownSubGraphs},
        {"name-is-a-graph", Severity::ERROR,
         "Without a subGraph the node's name is where the analysis goes on: by accident, when it is a "
         "graph's.",
         FindNamesOfGraphs},
        {"missing-graph", Severity::WARNING,
         "A command fails, or finds nothing, without a graph that it reads.", FindMissingGraphs},
        {"unused-graph", Severity::WARNING, "Nothing leads to the graph, often because its name is misspelt.",
         FindUnusedGraphs},
    };
}

}  // namespace check
