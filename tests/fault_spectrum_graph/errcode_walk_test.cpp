#include <gtest/gtest.h>
#include <json/reader.h>

#include <random>
#include <set>
#include <sstream>

#include "fault_common/fault_vocabulary.h"
#include "fault_spectrum_graph/fault_causality_errcode_graph.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "support/recording_agent.h"

namespace {

// A graph of up to nine nodes with whatever a configuration and a database may hold: names twice, nodes of
// modules, unknown indexes, missing columns, edges that lead back or nowhere.
FaultCausalityErrCodeGraph RandomGraph(uint32_t seed) {
    static const char* const attrs[] = {"",        "whole",   "automic",       "follow",
                                        "automic", "follow,", "whole,automic", "automicfollow"};
    std::mt19937 random(seed);
    const auto below = [&](uint32_t limit) { return static_cast<int32_t>(random() % limit); };
    FaultCausalityErrCodeGraph graph;
    const auto size = static_cast<uint32_t>(1 + below(9));
    for (int32_t id = 1; id <= static_cast<int32_t>(size); ++id) {
        Node& node = graph.mapNodeInfo[id];
        node.ioPointid = id;
        node.locName = below(3) == 0 ? g_vecPointNameList[random() % 4] : "P" + std::to_string(below(9));
        node.nextGraph = "N" + std::to_string(id);
        node.suggestion = below(2) == 0 ? "advice " + std::to_string(id) : "";
        if (below(9) != 0) {  // no module
            node.attr = attrs[below(8)];
            graph.mapErrCodeAttr[node.locName] = {node.locName, node.attr, "", below(8) - 7};
        }
        for (int32_t edges = below(4); edges > 0; --edges) {
            graph.AddEdge(id, 1 + below(size + 2), 0.0);
        }
        if (below(12) == 0) {
            continue;
        }
        auto& columns = graph.mapLumoData[node.locName];
        const bool empty = below(8) == 0;
        for (const char* column : {"acceptnum", "errCode0", "errCode1", "errCode2", "errCode3", "errCode4"}) {
            if (!empty && below(6) != 0) {
                columns[column] = {{30, 7}, {60, (below(2) == 0 ? 0 : below(5) - 1) - 7}};
            }
        }
    }
    return graph;
}

int64_t Sum(const FaultCausalityErrCodeGraph& graph, const std::string& point, const std::string& column) {
    const auto data = graph.mapLumoData.find(point);
    if (data == graph.mapLumoData.end() || data->second.count(column) == 0) {
        return 0;
    }
    const FaultSeries& series = data->second.at(column);
    return series[0][1] + series[1][1];
}

std::string ColumnOf(int32_t type) {
    return "errCode" + std::to_string(-1 - type);
}

int64_t Count(const FaultCausalityErrCodeGraph& graph, const Node& node, int32_t type) {
    if (graph.mapErrCodeAttr.count(node.locName) == 0) {
        return 0;
    }
    const int64_t own = Sum(graph, node.locName, ColumnOf(type));
    const auto& others = g_vecPointNameList;
    if (own != 0 || std::find(others.begin(), others.end(), node.locName) == others.end()) {
        return own;
    }
    for (const int32_t other : {-5, -4, -3, -2, -1}) {
        if (const int64_t sum = Sum(graph, node.locName, ColumnOf(other)); sum > 0) {
            return sum;
        }
    }
    return 0;
}

// The child that the walk goes to; 0 when it ends.
int32_t NextNode(const FaultCausalityErrCodeGraph& graph, const std::set<int32_t>& visited, int32_t from,
                 int32_t type) {
    std::tuple<bool, int64_t, int> best{false, 0, 0};
    const Node* next = nullptr;
    int position = 0;
    const auto edges = graph.mapGraph.find(from);
    for (const Edge& edge : edges == graph.mapGraph.end() ? std::vector<Edge>() : edges->second) {
        const auto child = graph.mapNodeInfo.find(edge.targetId);
        if (child == graph.mapNodeInfo.end()) {
            continue;
        }
        const int64_t count = Count(graph, child->second, type);
        const bool follows = child->second.attr.find("follow") != std::string::npos;
        const std::tuple<bool, int64_t, int> rank{follows, count, --position};
        if (count > 0 && rank > best) {
            best = rank;
            next = &child->second;
        }
    }
    const auto data = next != nullptr ? graph.mapLumoData.find(next->locName) : graph.mapLumoData.end();
    const bool goesOn =
        data != graph.mapLumoData.end() && !data->second.empty() && visited.count(next->ioPointid) == 0;
    return goesOn ? next->ioPointid : 0;
}

// The result that a node of the path must have.
void ExpectResult(const FaultCausalityErrCodeGraph& graph, const Node& node, const NodeResult& result,
                  int32_t type) {
    const auto found = graph.mapErrCodeAttr.find(node.locName);
    const ErrCodeAttr attr = found != graph.mapErrCodeAttr.end() ? found->second : ErrCodeAttr();
    const bool atomic = attr.attr.find("automic") != std::string::npos;
    const auto sum = [&](const std::string& column) { return Sum(graph, node.locName, column); };
    EXPECT_EQ(result.locName, node.locName);
    EXPECT_EQ(result.errCount, Count(graph, node, type));
    EXPECT_EQ(result.coff, static_cast<double>(result.errCount));
    EXPECT_EQ(result.endFlag != 0, graph.mapLumoData.at(node.locName).empty());
    if (result.endFlag == 0) {
        EXPECT_EQ(result.erridx, atomic ? attr.erridx : -1);
        EXPECT_EQ(result.acceptnum, sum(atomic ? ColumnOf(attr.erridx) : "acceptnum"));
        EXPECT_EQ(result.isFollow, attr.attr.find("follow") != std::string::npos);
        EXPECT_EQ(result.fixAdvice, node.suggestion);
        EXPECT_EQ(result.errorSums,
                  (std::array<int64_t, 5>{sum("errCode0"), sum("errCode1"), sum("errCode2")}));
    }
}

TEST(ErrCodeWalk, AgreesWithAReferenceOnRandomGraphs) {
    size_t longest = 0;
    for (uint32_t seed = 1; seed <= 20000; ++seed) {
        SCOPED_TRACE(seed);
        const FaultCausalityErrCodeGraph graph = RandomGraph(seed);
        const auto type = -1 - static_cast<int32_t>(seed % 3);
        AnomalyPathInfo info;
        ASSERT_EQ(graph.TraverseByBfs(1, info, type), 0U);
        if (graph.mapLumoData.count(graph.mapNodeInfo.at(1).locName) == 0) {
            ASSERT_EQ(info.statusCode, 1);
            continue;
        }
        std::set<int32_t> visited;
        int32_t id = 1;
        for (const NodeResult& result : info.path) {
            ASSERT_EQ(result.ioPointid, id);
            ExpectResult(graph, graph.mapNodeInfo.at(id), result, type);
            ASSERT_FALSE(testing::Test::HasFailure());
            visited.insert(id);
            id = NextNode(graph, visited, id, type);
        }
        ASSERT_EQ(id, 0) << "the walk ended early";
        const std::string name = "N" + std::to_string(info.path.back().ioPointid);
        ASSERT_EQ(std::tuple(info.statusCode, info.anomalyNodeId, info.anomalyNodeName, info.nextGraphName),
                  std::tuple(0, info.path.back().ioPointid, name, name));
        longest = std::max(longest, info.path.size());
    }
    EXPECT_GE(longest, 5U);
    EXPECT_GT(Agent::Record().Count("is on the path already"), 50U);
    EXPECT_EQ(g_mapErrCodeColumn.count(-7), 1U);
    EXPECT_EQ(g_mapErrCodeColumn.at(-7), "");
}

// The last node of an id, and the last attributes of a name, are those that count; a frame has nodes only.
TEST(ErrCodeWalk, ReadsNodes) {
    Json::Value nodes;
    std::istringstream(R"([
        {"id": 1, "label": "P", "name": "N", "info": {"attr": "automic", "suggestion": "S"}},
        {"id": 2, "label": "P", "name": "N", "info": {"attr": "follow", "erridx": " -2x"}},
        {"id": 3, "label": "M", "description": "a MODULE", "info": {"attr": "whole", "erridx": "-3", "subGraph": "G"}},
        {"id": 4, "label": "Q"},
        {"id": 4, "label": "Q_OB_1", "name": "N", "info": {"attr": "whole", "erridx": "-7", "subGraph": "G"}}])") >>
        nodes;
    FaultCausalityErrCodeGraph graph, frame;
    frame.SetFrameGraphFlag(false);
    EXPECT_TRUE(frame.frameGraphFlag);
    for (FaultCausalityErrCodeGraph* one : {&graph, &frame}) {
        one->ExtracNodeInfo(nodes);
        std::string read;
        for (const auto& [id, node] : one->mapNodeInfo) {
            read += std::to_string(id) + node.locName + node.nextGraph + node.suggestion + node.attr + " ";
        }
        EXPECT_EQ(read, "1PNSautomic 2PNfollow 3MG 4Q_OB_1Gwhole ");
    }
    std::string attributes;
    for (const auto& [label, attr] : graph.mapErrCodeAttr) {
        attributes += label + attr.label + attr.attr + std::to_string(attr.erridx) + " ";
    }
    EXPECT_EQ(attributes, "PPfollow-2 QQ-1 Q_OB_1Q_OB_1whole-7 ");
    EXPECT_EQ(frame.mapErrCodeAttr.size(), 0U);
    EXPECT_EQ(frame.GetData("no date", "no date"), 0U);
}

}  // namespace
