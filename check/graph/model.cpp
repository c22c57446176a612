#include "check/graph/model.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <stdexcept>

#include "fault_common/fault_number.h"

namespace check {
namespace {

// As the plug-in reads it: with blanks and a sign before it, and anything behind it.
std::optional<int32_t> NumberIn(const std::string& text) {
    try {
        return FaultToInt32(text);
    } catch (const std::logic_error&) {
        return std::nullopt;
    }
}

std::optional<int32_t> NumberOf(Member id) {
    if (id == nullptr || !(id->isNumeric() || id->isString())) {
        return std::nullopt;
    }
    if (id->isString()) {
        return NumberIn(id->asString());
    }
    return id->isConvertibleTo(Json::intValue) ? std::optional<int32_t>(id->asInt()) : std::nullopt;
}

EdgeEnd ReadEnd(const Json::Value& edge, const char* name) {
    EdgeEnd end;
    end.member = MemberOf(edge, name);
    if (end.member != nullptr && (end.member->isString() || end.member->isNumeric())) {
        end.text = end.member->asString();
        end.number = NumberIn(end.text);
        if (end.number < 0) {
            end.number.reset();
        }
    }
    return end;
}

Node ReadNode(const Json::Value& object) {
    Node node{};
    node.object = &object;
    node.isKept = true;
    node.id = MemberOf(object, "id");
    node.label = MemberOf(object, "label");
    node.name = MemberOf(object, "name");
    node.description = MemberOf(object, "description");
    node.info = MemberOf(object, "info");
    if (node.info != nullptr) {
        node.subGraph = MemberOf(*node.info, "subGraph");
        node.suggestion = MemberOf(*node.info, "suggestion");
        node.attr = MemberOf(*node.info, "attr");
        node.erridx = MemberOf(*node.info, "erridx");
        node.qname = MemberOf(*node.info, "qname");
    }
    node.number = NumberOf(node.id);
    return node;
}

void ReadNodes(Graph& graph) {
    if (graph.nodeList == nullptr || !graph.nodeList->isArray()) {
        return;
    }
    for (const Json::Value& object : *graph.nodeList) {
        if (!object.isObject()) {
            continue;
        }
        graph.nodes.push_back(ReadNode(object));
        const Node& node = graph.nodes.back();
        if (node.number) {
            const size_t position = graph.nodes.size() - 1;
            const auto [place, isNew] = graph.byId.try_emplace(*node.number, position);
            if (!isNew) {
                graph.nodes[place->second].isKept = false;
                place->second = position;
            }
        }
    }
}

void ReadEdges(Graph& graph) {
    if (graph.edgeList == nullptr || !graph.edgeList->isArray()) {
        return;
    }
    for (const Json::Value& object : *graph.edgeList) {
        if (!object.isObject()) {
            continue;
        }
        Edge edge{&object, ReadEnd(object, "source"), ReadEnd(object, "target")};
        for (EdgeEnd* end : {&edge.source, &edge.target}) {
            end->node = end->number ? graph.NodeOf(*end->number) : NONE;
        }
        if (edge.IsWhole()) {
            graph.nodes[edge.source.node].children.push_back(edge.target.node);
            graph.nodes[edge.source.node].childEdges.push_back(graph.edges.size());
            graph.nodes[edge.target.node].parents.push_back(edge.source.node);
        }
        graph.edges.push_back(std::move(edge));
    }
}

// What a graph that nothing reads would be.
GraphKind KindByLooks(const Graph& graph) {
    if (graph.name.rfind("FACTOR_", 0) == 0) {
        return GraphKind::FACTOR;
    }
    const bool countsErrors =
        graph.name.find("ERRCODE") != std::string::npos ||
        std::any_of(graph.nodes.begin(), graph.nodes.end(), [](const Node& node) {
            return node.attr != nullptr || node.erridx != nullptr || node.qname != nullptr;
        });
    return countsErrors ? GraphKind::ERRCODE : GraphKind::FLOW;
}

}  // namespace

Member MemberOf(const Json::Value& object, std::string_view name) {
    return object.isObject() ? object.find(name.data(), name.data() + name.size()) : nullptr;
}

std::string_view TextOf(Member member) {
    const char* begin = nullptr;
    const char* end = nullptr;
    const bool isText = member != nullptr && member->isString() && member->getString(&begin, &end);
    return isText ? std::string_view(begin, static_cast<size_t>(end - begin)) : std::string_view();
}

bool Node::IsCountedElsewhere() const {
    const std::string_view words = TextOf(attr);
    return words.find("automic") != std::string_view::npos && words.find("whole") == std::string_view::npos;
}

Member PointOf(const Node& node, GraphKind kind) {
    const bool isQname = kind == GraphKind::ERRCODE && node.IsCountedElsewhere();
    const Member point = isQname ? node.qname : node.label;
    return node.isModule || !node.isKept || TextOf(point).empty() ? nullptr : point;
}

size_t Graph::NodeOf(int32_t id) const {
    const auto place = byId.find(id);
    return place == byId.end() ? NONE : place->second;
}

Model::Model(const Document& toRead) : document(toRead) {
    ReadGraphs();
    FindHandOvers();
    FindKinds();
}

void Model::ReadGraphs() {
    const Json::Value& root = document.Root();
    if (!root.isObject()) {
        return;
    }
    for (auto member = root.begin(); member != root.end(); ++member) {
        const std::string name = member.name();
        if (!name.empty() && name[0] == '$') {
            continue;
        }
        Graph graph{};
        graph.name = name;
        graph.value = &*member;
        graph.key = document.KeyOf(root, *member);
        graph.nodeList = MemberOf(*member, "nodes");
        graph.edgeList = MemberOf(*member, "edges");
        graph.uses = UsesOf(name);
        ReadNodes(graph);
        ReadEdges(graph);
        graphs.push_back(std::move(graph));
    }
    std::sort(graphs.begin(), graphs.end(), [](const Graph& a, const Graph& b) { return a.key < b.key; });
    for (size_t i = 0; i < graphs.size(); ++i) {
        byName.emplace(graphs[i].name, i);
    }
    byName.erase("");  // no text names that graph: an empty one means none
}

void Model::FindHandOvers() {
    for (size_t i = 0; i < graphs.size(); ++i) {
        for (size_t j = 0; j < graphs[i].nodes.size(); ++j) {
            const auto next = byName.find(graphs[i].nodes[j].NextGraph());
            if (next != byName.end()) {
                graphs[next->second].handedOverBy.emplace_back(i, j);
            }
        }
    }
}

// A graph of the vocabulary is what its rows say, one that is handed over to is what hands over to it.
void Model::FindKinds() {
    std::vector<size_t> open;
    std::vector<bool> isKnown(graphs.size());
    for (size_t i = 0; i < graphs.size(); ++i) {
        if (!graphs[i].uses.empty()) {
            graphs[i].kind = graphs[i].uses.front().kind;
            isKnown[i] = true;
            open.push_back(i);
        }
    }
    for (size_t next = 0; next < open.size(); ++next) {
        const Graph& graph = graphs[open[next]];
        for (const Node& node : graph.nodes) {
            const auto below = byName.find(node.NextGraph());
            if (below != byName.end() && !isKnown[below->second]) {
                isKnown[below->second] = true;
                graphs[below->second].kind = graph.kind;
                open.push_back(below->second);
            }
        }
    }
    for (size_t i = 0; i < graphs.size(); ++i) {
        Graph& graph = graphs[i];
        graph.kind = isKnown[i] ? graph.kind : KindByLooks(graph);
        for (Node& node : graph.nodes) {
            node.isModule = graph.kind == GraphKind::ERRCODE &&
                            TextOf(node.description).find("MODULE") != std::string_view::npos;
        }
    }
}

const Graph* Model::Find(std::string_view name) const {
    const auto place = byName.find(name);
    return place == byName.end() ? nullptr : &graphs[place->second];
}

std::string Model::GraphAt(size_t offset) const {
    const auto next = std::upper_bound(graphs.begin(), graphs.end(), offset,
                                       [](size_t at, const Graph& graph) { return at < graph.key; });
    if (next == graphs.begin() || offset >= document.EndOf(*std::prev(next)->value)) {
        return {};
    }
    return std::prev(next)->name;
}

size_t Model::CountNodes() const {
    return std::accumulate(graphs.begin(), graphs.end(), size_t{0},
                           [](size_t sum, const Graph& graph) { return sum + graph.nodes.size(); });
}

}  // namespace check
