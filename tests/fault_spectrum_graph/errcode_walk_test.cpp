#include <gmock/gmock.h>

#include <optional>
#include <random>
#include <set>

#include "fault_common/fault_vocabulary.h"
#include "fault_spectrum_graph/fault_causality_errcode_graph.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "support/recording_agent.h"

namespace {

using Counts = std::map<std::string, int64_t>;  // by column

// A node as a configuration may have it.
struct PlainNode {
    int32_t id = 0;
    std::string label, attr, advice, subGraph;
    std::optional<int32_t> erridx;
    bool isModule = false;
};

// A small graph with whatever a configuration and a database may hold: names twice, ids twice, nodes of
// modules, unknown indexes, missing columns, edges that lead back or nowhere.
struct PlainGraph {
    std::vector<PlainNode> nodes;
    std::vector<std::pair<int32_t, int32_t>> edges;
    std::map<std::string, Counts> counts;

    explicit PlainGraph(uint32_t seed) : random(seed) {
        const uint32_t size = 1 + Below(9);
        for (uint32_t i = 1; i <= size; ++i) {
            nodes.push_back(AnyNode(static_cast<int32_t>(Below(15) == 0 ? 1 + Below(size) : i)));
            for (uint32_t edge = Below(4); edge > 0; --edge) {
                edges.emplace_back(i, 1 + Below(size + 2));
            }
        }
        for (const PlainNode& node : nodes) {
            if (Below(12) != 0) {
                counts[node.label] = Below(8) != 0 ? AnyCounts() : Counts();
            }
        }
    }

    // The last node with the id; null for none.
    const PlainNode* Find(int32_t id) const {
        const auto found =
            std::find_if(nodes.rbegin(), nodes.rend(), [&](const PlainNode& one) { return one.id == id; });
        return found != nodes.rend() ? &*found : nullptr;
    }

    // The node whose attributes count for a name; null when only modules have it.
    const PlainNode* Counting(const std::string& label) const {
        const auto found = std::find_if(nodes.rbegin(), nodes.rend(), [&](const PlainNode& one) {
            return one.label == label && !one.isModule;
        });
        return found != nodes.rend() ? &*found : nullptr;
    }

    int64_t Sum(const std::string& label, const std::string& column) const {
        const auto point = counts.find(label);
        const auto sum = point != counts.end() ? point->second.find(column) : Counts::const_iterator();
        return point != counts.end() && sum != point->second.end() ? sum->second : 0;
    }

    int64_t Count(const PlainNode& node, int32_t type) const {
        const auto column = [](int32_t index) { return "errCode" + std::to_string(-1 - index); };
        std::vector<int32_t> types = {type};
        if (std::count(g_vecPointNameList.begin(), g_vecPointNameList.end(), node.label) > 0) {
            types.insert(types.end(), {-5, -4, -3, -2, -1});
        }
        for (size_t i = 0; i < types.size() && Counting(node.label) != nullptr; ++i) {
            const int64_t sum = Sum(node.label, column(types[i]));
            if (i == 0 ? sum != 0 : sum > 0) {
                return sum;
            }
        }
        return 0;
    }

private:
    uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random() % limit); }

    PlainNode AnyNode(int32_t id) {
        static const char* const attrs[] = {"",        "whole",   "automic",       "follow",
                                            "automic", "follow,", "whole,automic", "automicfollow"};
        PlainNode node;
        node.id = id;
        node.label = Below(3) == 0 ? g_vecPointNameList[Below(4)] : "P" + std::to_string(Below(9));
        node.attr = attrs[Below(8)];
        node.advice = Below(2) == 0 ? "advice " + std::to_string(id) : "";
        node.subGraph = Below(2) == 0 ? "SUB" + std::to_string(id) : "";
        if (Below(3) != 0) {
            node.erridx = static_cast<int32_t>(Below(8)) - 7;
        }
        node.isModule = Below(9) == 0;
        return node;
    }

    Counts AnyCounts() {
        Counts found;
        for (const char* column : {"acceptnum", "errCode0", "errCode1", "errCode2", "errCode3", "errCode4"}) {
            if (Below(6) != 0) {
                found[column] = Below(2) == 0 ? 0 : static_cast<int64_t>(Below(5)) - 1;
            }
        }
        return found;
    }

    std::mt19937 random;
};

FaultCausalityErrCodeGraph Build(const PlainGraph& plain) {
    Json::Value nodes(Json::arrayValue);
    Json::Value edges(Json::arrayValue);
    for (const PlainNode& node : plain.nodes) {
        Json::Value json;
        json["id"] = node.id;
        json["label"] = node.label;
        json["name"] = "N" + std::to_string(node.id);
        json["description"] = node.isModule ? "a MODULE" : "a point";
        const std::pair<const char*, std::string> texts[] = {
            {"attr", node.attr}, {"suggestion", node.advice}, {"subGraph", node.subGraph}};
        for (const auto& [key, text] : texts) {
            if (!text.empty()) {
                json["info"][key] = text;
            }
        }
        if (node.erridx) {
            json["info"]["erridx"] = " " + std::to_string(*node.erridx) + "x";
        }
        nodes.append(json);
    }
    for (const auto& [source, target] : plain.edges) {
        Json::Value json;
        json["source"] = std::to_string(source);
        json["target"] = std::to_string(target);
        edges.append(json);
    }
    FaultCausalityErrCodeGraph graph;
    graph.InitGraph(edges);
    graph.ExtracNodeInfo(nodes);
    for (const auto& [label, counts] : plain.counts) {
        auto& columns = graph.mapLumoData[label];
        for (const auto& [column, sum] : counts) {
            columns[column] = {{30, sum + 7}, {60, -7}};
        }
    }
    return graph;
}

// The child that the walk goes to; null when it ends.
const PlainNode* NextNode(const PlainGraph& plain, const std::set<int32_t>& visited, int32_t from,
                          int32_t type) {
    std::tuple<bool, int64_t, int> best{false, 0, 0};
    const PlainNode* next = nullptr;
    int position = 0;
    for (const auto& [source, target] : plain.edges) {
        const PlainNode* child = plain.Find(target);
        if (source != from || child == nullptr) {
            continue;
        }
        const int64_t count = plain.Count(*child, type);
        const bool follows = !child->isModule && child->attr.find("follow") != std::string::npos;
        const std::tuple<bool, int64_t, int> rank{follows, count, --position};
        if (count > 0 && rank > best) {
            best = rank;
            next = child;
        }
    }
    const bool hasData = next != nullptr && plain.counts.count(next->label) > 0 &&
                         !plain.counts.at(next->label).empty() && visited.count(next->id) == 0;
    return hasData ? next : nullptr;
}

// What is wrong with a node of the path; empty when nothing is.
std::string WrongResult(const PlainGraph& plain, const PlainNode& node, const NodeResult& result,
                        int32_t type) {
    const PlainNode* counting = plain.Counting(node.label);
    const std::string attr = counting != nullptr ? counting->attr : "";
    const bool atomic = attr.find("automic") != std::string::npos;
    const int32_t erridx = atomic ? counting->erridx.value_or(-1) : -1;
    const std::string column = "errCode" + std::to_string(-1 - erridx);
    const std::array<int64_t, 5> sums = {plain.Sum(node.label, "errCode0"), plain.Sum(node.label, "errCode1"),
                                         plain.Sum(node.label, "errCode2")};
    const bool empty = plain.counts.at(node.label).empty();
    return result.ioPointid != node.id || result.locName != node.label ? "point"
           : result.errCount != plain.Count(node, type) || result.coff != static_cast<double>(result.errCount)
               ? "count"
           : (result.endFlag != 0) != empty                                           ? "data mark"
           : empty                                                                    ? ""
           : result.erridx != erridx                                                  ? "index"
           : result.acceptnum != plain.Sum(node.label, atomic ? column : "acceptnum") ? "own count"
           : result.isFollow != (attr.find("follow") != std::string::npos)            ? "follow"
           : result.fixAdvice != node.advice                                          ? "advice"
           : result.errorSums != sums                                                 ? "sums"
                                                                                      : "";
}

TEST(ErrCodeWalk, AgreesWithAReferenceOnRandomGraphs) {
    size_t steps = 0;
    size_t longest = 0;
    for (uint32_t seed = 1; seed <= 20000; ++seed) {
        SCOPED_TRACE(seed);
        const PlainGraph plain(seed);
        const FaultCausalityErrCodeGraph graph = Build(plain);
        const auto type = -1 - static_cast<int32_t>(seed % 3);
        AnomalyPathInfo info;
        const PlainNode* node = plain.Find(1);
        ASSERT_EQ(graph.TraverseByBfs(1, info, type), node == nullptr ? 1U : 0U);
        if (node == nullptr || plain.counts.count(node->label) == 0) {
            ASSERT_EQ(info.statusCode, 1);
            continue;
        }
        std::set<int32_t> visited;
        for (const NodeResult& result : info.path) {
            ASSERT_TRUE(node != nullptr) << "the walk went too far";
            ASSERT_EQ(WrongResult(plain, *node, result, type), "");
            visited.insert(node->id);
            node = NextNode(plain, visited, node->id, type);
        }
        ASSERT_TRUE(node == nullptr) << "the walk ended early";
        const PlainNode* last = plain.Find(info.path.back().ioPointid);
        ASSERT_NE(last, nullptr);
        const std::string name = last->subGraph.empty() ? "N" + std::to_string(last->id) : last->subGraph;
        ASSERT_EQ(std::tuple(info.statusCode, info.anomalyNodeId, info.anomalyNodeName, info.nextGraphName),
                  std::tuple(0, last->id, name, name));
        steps += info.path.size();
        longest = std::max(longest, info.path.size());
    }
    EXPECT_GT(steps, 20000U);
    EXPECT_GE(longest, 5U);
    EXPECT_GT(Agent::Record().Count("is on the path already"), 50U);
    EXPECT_EQ(g_mapErrCodeColumn.count(-7), 1U);
    EXPECT_EQ(g_mapErrCodeColumn.at(-7), "");
}

TEST(ErrCodeWalk, AFrameHasNodesOnly) {
    FaultCausalityErrCodeGraph graph;
    graph.SetFrameGraphFlag(false);
    EXPECT_TRUE(graph.frameGraphFlag);
    Json::Value nodes(Json::arrayValue);
    nodes[0]["label"] = "P1";
    graph.ExtracNodeInfo(nodes);
    EXPECT_EQ(graph.mapNodeInfo.size(), 1U);
    EXPECT_EQ(graph.mapErrCodeAttr.size(), 0U);
    EXPECT_EQ(graph.GetData("no date", "no date"), 0U);
}

}  // namespace
