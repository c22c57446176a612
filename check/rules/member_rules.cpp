#include <algorithm>

#include "check/rules/misspelt.h"
#include "check/rules/rule.h"
#include "text/nearest_name.h"

namespace check {
namespace {

// What a member has to be.
struct Type {
    bool (*fits)(const Json::Value&);
    const char* name;
};
constexpr Type TEXT = {[](const Json::Value& value) { return value.isString(); }, "a text"};
constexpr Type NUMBER = {[](const Json::Value& value) { return value.isInt(); }, "a whole number of 32 bits"};
constexpr Type OBJECT = {[](const Json::Value& value) { return value.isObject(); }, "an object"};
constexpr Type ARRAY = {[](const Json::Value& value) { return value.isArray(); }, "an array"};
constexpr Type END = {[](const Json::Value& value) { return value.isString() || value.isIntegral(); },
                      "a number as text"};

// What stands there, as far as it is short.
std::string Shown(const Json::Value& value) {
    if (value.isString()) {
        return "the text " + Quoted(TextOf(&value));
    }
    if (value.isObject() || value.isArray()) {
        return value.isObject() ? "an object" : "an array";
    }
    return value.isNull() ? "null" : value.asString();
}

struct MemberType {
    const char* name;
    Type type;
};
constexpr MemberType GRAPH_MEMBERS[] = {{"nodes", ARRAY}, {"edges", ARRAY}};
constexpr MemberType NODE_MEMBERS[] = {
    {"id", NUMBER}, {"label", TEXT}, {"name", TEXT}, {"description", TEXT}, {"info", OBJECT}};
constexpr MemberType INFO_MEMBERS[] = {
    {"subGraph", TEXT}, {"suggestion", TEXT}, {"attr", TEXT}, {"erridx", TEXT}, {"qname", TEXT}};
constexpr MemberType EDGE_MEMBERS[] = {{"source", END}, {"target", END}};

// Calls `with` for each object that the plug-in reads: the object, its graph's name, and what stands in it.
template <typename Visit>
void ForObjects(const Model& model, const Visit& with) {
    for (const Graph& graph : model.Graphs()) {
        with(*graph.value, graph, GRAPH_MEMBERS);
        for (const Node& node : graph.nodes) {
            with(*node.object, graph, NODE_MEMBERS);
            if (node.info != nullptr) {
                with(*node.info, graph, INFO_MEMBERS);
            }
        }
        for (const Edge& edge : graph.edges) {
            with(*edge.object, graph, EDGE_MEMBERS);
        }
    }
}

// Calls `with` for each node of each graph.
template <typename Visit>
void ForNodes(const Model& model, const Visit& with) {
    for (const Graph& graph : model.Graphs()) {
        for (const Node& node : graph.nodes) {
            with(node, graph);
        }
    }
}

// Names that end the plug-in's statements, in which they stand between quotes as they are.
void FindUnaskedNames(const Subject& subject, const Report& report) {
    ForNodes(subject.model, [&](const Node& node, const Graph& graph) {
        const Member point = PointOf(node, graph.kind);
        if (TextOf(point).find_first_of(std::string_view("'\0", 2)) != std::string_view::npos) {
            report(subject.At(*point), graph.name,
                   "the point " + Quoted(TextOf(point)) +
                       " cannot be asked for, with a quote or NUL in its name: analyses of the graph fail");
        }
    });
}

void FindWrongTypes(const Subject& subject, const Report& report) {
    ForObjects(subject.model, [&](const Json::Value& object, const Graph& graph, const auto& members) {
        for (const MemberType& each : members) {
            const Member member = MemberOf(object, each.name);
            if (member != nullptr && !each.type.fits(*member)) {
                report(subject.At(*member), graph.name,
                       Quoted(each.name) + " must be " + each.type.name + ", not " + Shown(*member));
            }
        }
    });
    FindUnaskedNames(subject, report);
}

template <typename Members>
bool Has(const Members& members, const std::string& name) {
    return std::any_of(std::begin(members), std::end(members),
                       [&](const MemberType& each) { return name == each.name; });
}

// A member that is not among those which are read, and whose name is nearest to `name`; null: there is none.
template <typename Members>
Member FindMisspelt(const Json::Value& object, const Members& known, const std::string& name) {
    for (auto member = object.begin(); member != object.end(); ++member) {
        const std::string key = member.name();
        if (key[0] != '$' && !Has(known, key) && NearestName(key, {name}) == name) {
            return &*member;
        }
    }
    return nullptr;
}

// Where a member that is at the wrong place belongs; empty: nowhere.
std::string PlaceFor(const std::string& name) {
    if (Has(INFO_MEMBERS, name)) {
        return "; it belongs into the node's 'info'";
    }
    if (Has(NODE_MEMBERS, name)) {
        return "; it belongs into a node";
    }
    return Has(EDGE_MEMBERS, name) ? "; it belongs into an edge" : "";
}

class UnknownMembers {
public:
    UnknownMembers(const Subject& toCheck, const Report& toFill) : subject(toCheck), report(toFill) {}

    template <typename Members>
    void Find(const Json::Value& object, const Graph& graph, const Members& members) const {
        if (!object.isObject()) {
            return;
        }
        for (auto member = object.begin(); member != object.end(); ++member) {
            const std::string name = member.name();
            if (name[0] == '$' || Has(members, name)) {
                continue;
            }
            std::vector<std::string> known;
            for (const MemberType& each : members) {
                known.emplace_back(each.name);
            }
            const bool isOfGraph = &object == graph.value;  // which may have others
            const std::string place = isOfGraph ? "" : PlaceFor(name);
            const std::string hint = place.empty() ? subject.suggester.DidYouMean(name, known) : place;
            if (!isOfGraph || !hint.empty()) {
                report(subject.document.KeyOf(object, *member), graph.name,
                       "nothing reads the member " + Quoted(name) + hint);
            }
        }
    }

private:
    const Subject& subject;
    const Report& report;
};

void FindUnknownMembers(const Subject& subject, const Report& report) {
    const UnknownMembers unknown(subject, report);
    ForObjects(subject.model, [&](const Json::Value& object, const Graph& graph, const auto& members) {
        unknown.Find(object, graph, members);
    });
}

bool IsEmptyText(Member member) {
    return member != nullptr && member->isString() && TextOf(member).empty();
}

void FindMissingLabels(const Subject& subject, const Report& report) {
    ForNodes(subject.model, [&](const Node& node, const Graph& graph) {
        if (!node.isModule && (node.label == nullptr || IsEmptyText(node.label))) {
            report(subject.At(node.label == nullptr ? *node.object : *node.label), graph.name,
                   "the node has no label, the name of the point whose statistics it shows");
        }
    });
}

void FindMissingIds(const Subject& subject, const Report& report) {
    ForNodes(subject.model, [&](const Node& node, const Graph& graph) {
        if (node.id == nullptr) {
            report(
                subject.At(*node.object), graph.name,
                "the node " + Quoted(node.Label()) + " has no id; it is read as 0, which no edge leads to");
        }
    });
}

void FindIdsNotPositive(const Subject& subject, const Report& report) {
    ForNodes(subject.model, [&](const Node& node, const Graph& graph) {
        if (node.number && *node.number <= 0) {
            report(subject.At(*node.id), graph.name,
                   "the id " + std::to_string(*node.number) + " is not above 0" +
                       (*node.number == 0 ? ": 0 means that there is no node" : ""));
        }
    });
}

void FindDuplicateIds(const Subject& subject, const Report& report) {
    for (const Graph& graph : subject.model.Graphs()) {
        std::unordered_map<int32_t, const Node*> known;
        for (const Node& node : graph.nodes) {
            if (!node.number) {
                continue;
            }
            const auto [place, isNew] = known.try_emplace(*node.number, &node);
            if (!isNew) {
                report(subject.At(*node.id), graph.name,
                       "the id " + std::to_string(*node.number) + " is that of " +
                           Quoted(place->second->Label()) + " in line " +
                           std::to_string(subject.LineOf(subject.At(*place->second->id))) +
                           " too, which is lost");
            }
        }
    }
}

void FindDuplicateLabels(const Subject& subject, const Report& report) {
    for (const Graph& graph : subject.model.Graphs()) {
        std::unordered_map<std::string_view, const Node*> known;
        for (const Node& node : graph.nodes) {
            if (node.isModule || !node.isKept || node.Label().empty()) {
                continue;
            }
            const auto [place, isNew] = known.try_emplace(node.Label(), &node);
            if (!isNew) {
                report(subject.At(*node.label), graph.name,
                       Quoted(node.Label()) + " is the label in line " +
                           std::to_string(subject.LineOf(subject.At(*place->second->label))) +
                           " too; one node with two parents is enough");
            }
        }
    }
}

void FindMissingNodes(const Subject& subject, const Report& report) {
    for (const Graph& graph : subject.model.Graphs()) {
        const bool isEmpty =
            graph.nodeList != nullptr && graph.nodeList->isArray() && graph.nodeList->empty();
        if (graph.value->isObject() && (graph.nodeList == nullptr || isEmpty)) {
            report(subject.At(isEmpty ? *graph.nodeList : *graph.value), graph.name,
                   isEmpty ? "the graph's list of nodes is empty" : "the graph has no 'nodes'");
        }
    }
}

}  // namespace

Member MisspeltMember(const Node& node, const std::string& name) {
    const Member inNode = FindMisspelt(*node.object, NODE_MEMBERS, name);
    const bool hasInfo = node.info != nullptr && node.info->isObject();
    return inNode != nullptr || !hasInfo ? inNode : FindMisspelt(*node.info, INFO_MEMBERS, name);
}

std::vector<Rule> MemberRules() {
    return {
        {"wrong-type", Severity::ERROR,
         "A member of another type ends the command that reads it, or is read as something else.",
         FindWrongTypes},
        {"missing-label", Severity::ERROR,
         "Without a label a node has no statistics, and walks end above it.", FindMissingLabels},
        {"missing-id", Severity::ERROR,
         "A node without an id is read as node 0, which means that there is none.", FindMissingIds},
        {"duplicate-id", Severity::ERROR,
         "Of two nodes with one id the last one wins, and the other is lost.", FindDuplicateIds},
        {"id-not-positive", Severity::ERROR,
         "Edges from and to an id below 0 are left out, and 0 means that there is no node.",
         FindIdsNotPositive},
        {"missing-nodes", Severity::ERROR, "A graph without nodes fails whoever reads it.", FindMissingNodes},
        {"duplicate-label", Severity::WARNING,
         "A point that stands twice in a graph is counted once; a node may have several parents.",
         FindDuplicateLabels},
        {"unknown-member", Severity::WARNING,
         "What nothing reads is a slip of the keyboard, or stands at the wrong place.", FindUnknownMembers},
    };
}

}  // namespace check
