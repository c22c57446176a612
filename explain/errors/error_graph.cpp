#include "explain/errors/error_graph.h"

#include <algorithm>
#include <map>

#include "fault_common/fault_vocabulary.h"
#include "fault_spectrum_graph/fault_causality_errcode_graph.h"
#include "fault_spectrum_graph/fault_json_object.h"

namespace explain {
namespace {

// The graphs that the commands start at, each once, in the order in which they are asked for.
std::vector<std::string> FirstGraphs() {
    std::vector<std::string> graphs;
    const auto add = [&](const auto& table) {
        for (const auto& [key, graph] : table) {
            if (std::find(graphs.begin(), graphs.end(), graph) == graphs.end()) {
                graphs.push_back(graph);
            }
        }
    };
    add(g_mapPointErrCodeGraph);
    add(g_mapPointErrCodeRelated);
    add(g_mapModuleErrCodeGraph);
    return graphs;
}

class WholeReader {
public:
    explicit WholeReader(ErrorGraph& toFill) : whole(toFill) {}

    void Read(const std::vector<std::string>& first) {
        for (const std::string& name : first) {
            ReadGraph(name);
        }
        for (size_t next = 0; next < handedOver.size(); ++next) {
            const HandOver handOver = handedOver[next];  // reading may add others
            ReadGraph(handOver.graph);
            const auto root = roots.find(handOver.graph);
            if (root != roots.end() && root->second != handOver.node) {
                whole.handOvers[handOver.node] = root->second;
            }
        }
    }

private:
    struct HandOver {
        size_t node;
        std::string graph;
    };

    void ReadGraph(const std::string& name) {
        FaultJsonObject& config = FaultJsonObject::GetInstance();
        Json::Value nodes;
        Json::Value edges;
        if (!read.insert(name).second || !config.IsMember(name) ||
            config.GetGraphValueByKeyTag(name, "nodes", nodes) != 0 ||
            config.GetGraphValueByKeyTag(name, "edges", edges) != 0) {
            return;
        }
        FaultCausalityErrCodeGraph graph;
        graph.InitGraph(edges);
        graph.ExtracNodeInfo(nodes);
        for (const auto& [id, node] : graph.mapNodeInfo) {
            AddNode(name, node, graph);
        }
        for (const auto& [source, targets] : graph.mapGraph) {
            for (const Edge& edge : targets) {
                AddEdge(graph, source, edge.targetId);
            }
        }
        int32_t root = 0;
        graph.FindRootBySelf(edges, root);
        if (const auto node = graph.mapNodeInfo.find(root); node != graph.mapNodeInfo.end()) {
            roots[name] = positions.at(node->second.locName);
        }
    }

    void AddNode(const std::string& graphName, const Node& node, const FaultCausalityErrCodeGraph& graph) {
        const auto [entry, isNew] = positions.try_emplace(node.locName, whole.nodes.size());
        if (isNew) {
            ErrorNode& added = whole.nodes.emplace_back();
            added.point = node.locName;
            added.graph = graphName;
            added.changesType = FaultReturnsDiffErrCode(node.locName);
        }
        ErrorNode& known = whole.nodes[entry->second];
        known.advice = known.advice.empty() ? node.suggestion : known.advice;
        if (const auto attr = graph.mapErrCodeAttr.find(node.locName); attr != graph.mapErrCodeAttr.end()) {
            known.counted = known.counted.empty() ? FaultCountedPoint(attr->second) : known.counted;
            known.followsParent = known.followsParent || FaultFollowsParent(attr->second.attr);
        }
        if (node.nextGraph != graphName) {
            handedOver.push_back({entry->second, node.nextGraph});
        }
    }

    void AddEdge(const FaultCausalityErrCodeGraph& graph, int32_t source, int32_t target) {
        const auto from = graph.mapNodeInfo.find(source);
        const auto to = graph.mapNodeInfo.find(target);
        if (from == graph.mapNodeInfo.end() || to == graph.mapNodeInfo.end()) {
            return;
        }
        std::vector<size_t>& children = whole.nodes[positions.at(from->second.locName)].children;
        const size_t child = positions.at(to->second.locName);
        if (std::find(children.begin(), children.end(), child) == children.end()) {
            children.push_back(child);
        }
    }

    ErrorGraph& whole;
    std::set<std::string> read;
    std::map<std::string, size_t> positions;  // by point
    std::map<std::string, size_t> roots;      // by graph
    std::vector<HandOver> handedOver;
};

}  // namespace

std::set<std::string> ErrorGraph::CountedPoints() const {
    std::set<std::string> points;
    for (const ErrorNode& node : nodes) {
        if (!node.counted.empty()) {
            points.insert(node.counted);
        }
    }
    return points;
}

std::vector<bool> ErrorGraph::Below(size_t node) const {
    std::vector<bool> below(nodes.size(), false);
    std::vector<size_t> open{node};
    const auto reach = [&](size_t next) {
        if (!below[next]) {
            below[next] = true;
            open.push_back(next);
        }
    };
    while (!open.empty()) {
        const size_t at = open.back();
        open.pop_back();
        std::for_each(nodes[at].children.begin(), nodes[at].children.end(), reach);
        if (const auto next = handOvers.find(at); next != handOvers.end()) {
            reach(next->second);
        }
    }
    return below;
}

ErrorGraph ReadErrorGraph() {
    ErrorGraph graph;
    WholeReader(graph).Read(FirstGraphs());
    return graph;
}

}  // namespace explain
