#include <gmock/gmock.h>

#include <limits>
#include <random>
#include <set>

#include "fault_algorithm/fault_correlation.h"
#include "fault_spectrum_graph/fault_causality_errcode_graph.h"
#include "support/recording_agent.h"

namespace {

FaultSeries RandomSeries(std::mt19937& random, const FaultSeries& like) {
    FaultSeries series;
    const uint32_t kind = random() % 8;
    for (int64_t time = 0; kind != 0 && time < 24; ++time) {
        if (random() % 5 != 0) {
            const int64_t follow = like.empty() ? 0 : like[static_cast<size_t>(time) % like.size()][1] / 2;
            const int64_t noise = static_cast<int64_t>(random() % 200) - 100;
            series.push_back({time * 30, kind == 1 ? 77 : kind < 5 ? follow + noise : noise});
        }
    }
    return kind == 2 && !like.empty() ? like : series;
}

// A graph of up to nine nodes with whatever a configuration and a database may hold.
FaultCausalityGraph RandomGraph(uint32_t seed) {
    std::mt19937 random(seed);
    FaultCausalityGraph graph;
    FaultSeries previous;
    const auto count = static_cast<int32_t>(1 + random() % 9);
    for (int32_t id = 1; id <= count; ++id) {
        Node& node = graph.mapNodeInfo[id];
        const bool observation = id > 1 && random() % 7 == 0;
        node.ioPointid = id;
        node.locName = (observation ? "P_OB_" : "P_") + std::to_string(id);
        node.statLabel = observation ? FAULT_OB_POINT : FAULT_LUMO_POINT;
        node.nextGraph = "AFTER_" + std::to_string(id);
        previous = RandomSeries(random, previous);
        if (observation) {
            graph.mapObserveData[node.locName] = previous;
        } else if (random() % 12 != 0) {
            graph.mapLumoData[node.locName][random() % 12 == 0 ? "acceptnum" : "avgdelay"] = previous;
        }
        for (uint32_t edges = random() % 4; edges > 0; --edges) {
            // Some lead back, to the node itself, or nowhere.
            graph.AddEdge(id, static_cast<int32_t>(1 + random() % static_cast<uint32_t>(count + 2)), 0.0);
        }
    }
    return graph;
}

const FaultSeries* SeriesOf(const FaultCausalityGraph& graph, const Node& node) {
    if (node.statLabel == FAULT_OB_POINT) {
        const auto found = graph.mapObserveData.find(node.locName);
        return found == graph.mapObserveData.end() ? nullptr : &found->second;
    }
    const auto found = graph.mapLumoData.find(node.locName);
    return found == graph.mapLumoData.end() || found->second.count("avgdelay") == 0
               ? nullptr
               : &found->second.at("avgdelay");
}

// The child that the walk goes to, and the coefficient for it; 0 when it ends.
std::pair<int32_t, double> NextNode(const FaultCausalityGraph& graph, const std::set<int32_t>& visited,
                                    int32_t from) {
    const auto edges = graph.mapGraph.find(from);
    const FaultSeries* parent = SeriesOf(graph, graph.mapNodeInfo.at(from));
    std::pair<int32_t, double> best{0, -1.0};
    for (size_t i = 0; parent != nullptr && edges != graph.mapGraph.end() && i < edges->second.size(); ++i) {
        const auto node = graph.mapNodeInfo.find(edges->second[i].targetId);
        const FaultSeries* series = node != graph.mapNodeInfo.end() ? SeriesOf(graph, node->second) : nullptr;
        const double weight = series != nullptr ? WeightCompute(*parent, *series) : -1.0;
        if (weight > best.second) {
            best = {node->first, weight};
        }
    }
    const bool ends = best.first == 0 || visited.count(best.first) > 0 ||
                      graph.mapNodeInfo.at(best.first).statLabel == FAULT_OB_POINT;
    return ends ? std::pair(0, -1.0) : best;
}

TEST(Walk, AgreesWithAReferenceOnRandomGraphs) {
    size_t longest = 0;
    for (uint32_t seed = 1; seed <= 20000; ++seed) {
        const FaultCausalityGraph graph = RandomGraph(seed);
        AnomalyPathInfo info;
        const bool rooted = graph.mapLumoData.count(graph.mapNodeInfo.at(1).locName) == 1;
        ASSERT_EQ(graph.TraverseByBfs(1, info), rooted ? 0U : 1U) << seed;
        ASSERT_EQ(info.statusCode, rooted ? 0 : 1) << seed;
        if (!rooted) {
            continue;
        }
        const NodeResult* anomalous = nullptr;
        bool cut = false;
        std::set<int32_t> visited;
        std::pair<int32_t, double> next{1, 1.0};
        for (const NodeResult& result : info.path) {
            ASSERT_EQ(std::pair(result.ioPointid, result.coff), next) << seed;
            cut = cut || (result.coff != 0.0 && result.coff < 0.4);
            anomalous = !cut && result.coff != 0.0 ? &result : anomalous;
            visited.insert(next.first);
            next = NextNode(graph, visited, next.first);
        }
        ASSERT_EQ(next.first, 0) << "the walk ended early, seed " << seed;
        ASSERT_NE(anomalous, nullptr) << seed;
        EXPECT_EQ(info.anomalyNodeId, anomalous->ioPointid) << seed;
        EXPECT_EQ(info.anomalyNodeName, anomalous->locName) << seed;
        EXPECT_EQ(info.nextGraphName, "AFTER_" + std::to_string(anomalous->ioPointid)) << seed;
        longest = std::max(longest, info.path.size());
    }
    EXPECT_GE(longest, 6U);
    EXPECT_GT(Agent::Record().Count("is on the path already"), 50U);
}

TEST(Walk, CoefficientsOfKnownSeries) {
    constexpr int64_t BIG = std::numeric_limits<int64_t>::max();
    FaultSeries ones, squares;
    for (int64_t time = 0; time < 10; ++time) {
        ones.push_back({time, 1});
        squares.push_back({time, time * time});
    }
    const struct {
        const char* what;
        FaultSeries a, b;
        double expected;
    } cases[] = {
        {"equal", {{1, 5}, {2, 9}, {3, 7}}, {{1, 5}, {2, 9}, {3, 7}}, 1.0},
        {"negated", {{1, 5}, {2, 9}, {3, 7}}, {{1, -5}, {2, -9}, {3, -7}}, -1.0},
        {"empty", {}, {{1, 5}, {2, 9}}, -1.0},
        {"constant", {{1, 1000000}, {2, 1000000}, {3, 1000000}}, {{1, 5}, {2, 9}, {3, 7}}, -1.0},
        {"constant, and ten tenths of it are less", ones, squares, -1.0},
        {"one sample", {{1, 5}}, {{1, 9}}, -1.0},
        {"filled by the half-sum", {{10, 100}, {30, 300}}, {{10, 1}, {20, 2}, {30, 3}}, 1.0},
        {"half-sum towards zero", {{1, 0}, {3, -3}}, {{1, 0}, {2, -1}, {3, -3}}, 1.0},
        {"begins later", {{1, 4}, {2, 4}, {3, 8}}, {{2, 1}, {3, 2}}, 1.0},
        {"ends early", {{1, 1}, {2, 5}, {3, 5}}, {{1, 10}, {2, 50}}, 1.0},
        {"sum of 65 bits", {{1, BIG}, {3, BIG - 2}}, {{1, 2}, {2, 2}, {3, 1}}, -1.0},
    };
    for (const auto& one : cases) {
        EXPECT_NEAR(WeightCompute(one.a, one.b), one.expected, 1e-12) << one.what;
        EXPECT_NEAR(WeightCompute(one.b, one.a), one.expected, 1e-12) << one.what;
    }
    EXPECT_EQ(WeightCompute({{1, 1000000}, {2, 1000000}, {3, 1000000}}, {{1, 5}, {2, 9}, {3, 7}}), -1.0);
    // Any other order of the additions and divisions ends in another last bit.
    const FaultSeries x = {{1, 16}, {2, 7}, {3, 4}, {4, 14}, {5, 18}, {6, 14}};
    const FaultSeries y = {{1, 4}, {2, 10}, {3, 9}, {4, 8}, {5, 13}, {6, 18}};
    EXPECT_EQ(WeightCompute(x, y), 0.10522856950998233);
}

TEST(Walk, Reductions) {
    const FaultSeries series = {{1, 7}, {2, 7}, {3, 8}};
    EXPECT_EQ(FaultCausalityGraph::SumTimeSeriesArray(series), 22);
    EXPECT_EQ(FaultCausalityGraph::AvgSeriesArray(series), 6);
    EXPECT_EQ(FaultCausalityGraph::AvgSeriesArray({}), 0);
    EXPECT_EQ(FaultCausalityGraph::MaxTimeSeriesArray(series), 8);
    EXPECT_EQ(FaultCausalityGraph::MaxTimeSeriesArray({{1, -5}, {2, -2}}), 0);
}

TEST(Walk, RefusesWhatTheGraphLacks) {
    FaultCausalityGraph graph;
    graph.mapNodeInfo[1].locName = "P";
    graph.mapLumoData["P"]["avgdelay"] = {{1, 7}};
    FaultSeries series;
    EXPECT_EQ(graph.GetSeriesDataArray(1, "avgdelay", series), 0U);
    EXPECT_EQ(graph.GetSeriesDataArray(1, "maxdelay", series), 1U);
    EXPECT_EQ(graph.GetSeriesDataArray(2, "avgdelay", series), 1U);
    EXPECT_EQ(series, (FaultSeries{{1, 7}}));
    EXPECT_EQ(graph.AddEdge(1, 2, 1.5), 1U);
    EXPECT_EQ(graph.AddEdge(0, 0, -1.0), 0U);
    NodeBase observation;
    observation.locName = "P_OB_1";
    NodeResult result;
    graph.GetNodeResult(observation, {}, result);
    EXPECT_EQ(result.endFlag, 1);
    AnomalyPathInfo info;
    EXPECT_EQ(graph.GetAnomalyResult({}, info), 1U);
    std::vector<NodeResult> path(2);
    path[0].coff = 0.0;  // as nodes without errors have it
    path[1].coff = 0.4;
    path[1].ioPointid = 7;
    EXPECT_EQ(graph.GetAnomalyResult(path, info), 0U);
    EXPECT_EQ(info.anomalyNodeId, 7);
    EXPECT_EQ(FaultCausalityErrCodeGraph().GetOtherErrCodeAvgNum({}, -1), 0);
}

}  // namespace
