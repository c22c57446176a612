#include <map>

#include "check/rules/rule.h"

namespace check {
namespace {

void FindSyntax(const Subject& subject, const Report& report) {
    const auto& refusal = subject.document.Refused();
    if (refusal && !refusal->isTooDeep) {
        report(refusal->at, "", refusal->text);
    }
}

void FindTooDeep(const Subject& subject, const Report& report) {
    const auto& refusal = subject.document.Refused();
    if (refusal && refusal->isTooDeep) {
        report(refusal->at, "", "nested more than 200 deep: the file is refused");
    }
}

const char* KindOf(const Json::Value& value) {
    constexpr const char* KINDS[] = {"null",   "a number",  "a number", "a number",
                                     "a text", "a boolean", "an array", "an object"};
    return KINDS[value.type()];
}

void FindNoObjects(const Subject& subject, const Report& report) {
    const Json::Value& root = subject.document.Root();
    const auto demand = [&](const Json::Value& value, const std::string& graph, const char* thing) {
        if (!value.isObject()) {
            report(subject.At(value), graph, std::string(thing) + " is " + KindOf(value) + ", not an object");
        }
    };
    if (!subject.document.Refused()) {
        demand(root, "", "the configuration");
    }
    for (const Graph& graph : subject.model.Graphs()) {
        demand(*graph.value, graph.name, "the graph");
        if (graph.nodeList != nullptr && graph.nodeList->isArray()) {
            for (const Json::Value& node : *graph.nodeList) {
                demand(node, graph.name, "a node");
            }
        }
        if (graph.edgeList != nullptr && graph.edgeList->isArray()) {
            for (const Json::Value& edge : *graph.edgeList) {
                demand(edge, graph.name, "an edge");
            }
        }
    }
}

// Tells each key of an object that an earlier one of its keys is the same as.
void FindTwins(const Subject& subject, const Json::Value& object, const std::string& graph,
               const Report& report) {
    const auto [first, end] = subject.document.Scanned().KeysOf(subject.At(object));
    std::map<std::string, size_t> lines;
    for (auto key = first; key != end; ++key) {
        const std::string name = KeyText(*key);
        const bool isRoot = &object == &subject.document.Root();
        if (isRoot && name[0] == '$') {
            continue;
        }
        const auto [place, isNew] = lines.try_emplace(name, subject.LineOf(key->at));
        if (!isNew) {
            report(key->at, isRoot ? name : graph,
                   (isRoot ? "this graph" : Quoted(name)) + " is in line " + std::to_string(place->second) +
                       " too; the last one wins, the other is lost");
        }
    }
}

void FindDuplicates(const Subject& subject, const Report& report) {
    if (!subject.document.Root().isObject()) {
        return;
    }
    FindTwins(subject, subject.document.Root(), "", report);
    for (const Graph& graph : subject.model.Graphs()) {
        if (graph.value->isObject()) {
            FindTwins(subject, *graph.value, graph.name, report);
        }
        for (const Node& node : graph.nodes) {
            FindTwins(subject, *node.object, graph.name, report);
            if (node.info != nullptr && node.info->isObject()) {
                FindTwins(subject, *node.info, graph.name, report);
            }
        }
        for (const Edge& edge : graph.edges) {
            FindTwins(subject, *edge.object, graph.name, report);
        }
    }
}

void FindTrailingText(const Subject& subject, const Report& report) {
    const auto& trailing = subject.document.Scanned().trailing;
    if (trailing && !subject.document.Refused()) {
        report(*trailing, "", "text behind the end of the configuration is not read");
    }
}

void FindByteOrderMark(const Subject& subject, const Report& report) {
    if (subject.document.HasByteOrderMark()) {
        report(0, "", "the file begins with a byte order mark, which other readers of JSON refuse");
    }
}

void FindLeniencies(const Subject& subject, const Report& report) {
    if (subject.document.Refused()) {
        return;
    }
    for (const Leniency& each : subject.document.Scanned().leniencies) {
        report(each.at, subject.model.GraphAt(each.at),
               std::string(each.what) + " is not JSON: the plug-in reads it, other programs do not");
    }
}

}  // namespace

std::vector<Rule> TextRules() {
    return {
        {"json-syntax", Severity::ERROR, "What the plug-in's reader refuses leaves it without any graph.",
         FindSyntax},
        {"too-deep", Severity::ERROR,
         "A value in more than 200 others is refused, and the plug-in is without any graph.", FindTooDeep},
        {"not-an-object", Severity::ERROR,
         "The configuration, a graph, a node and an edge are objects; what is none ends the command.",
         FindNoObjects},
        {"duplicate-graph", Severity::ERROR,
         "Of a graph, or another member, that stands twice the last one wins, and the other is lost.",
         FindDuplicates},
        {"trailing-text", Severity::WARNING, "What stands behind the configuration's end is not read.",
         FindTrailingText},
        {"byte-order-mark", Severity::WARNING, "The plug-in skips the mark, other programs stumble over it.",
         FindByteOrderMark},
        {"not-strict-json", Severity::WARNING,
         "Comments, trailing commas and the like are read by the plug-in, but not by other programs.",
         FindLeniencies},
    };
}

}  // namespace check
