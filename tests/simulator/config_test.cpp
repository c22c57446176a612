// Worlds of graphs that somebody else wrote.
#include "simulator/graphs/config_graphs.h"
#include "tests/simulator/written_world.h"

namespace {

using Edges = std::vector<std::pair<int, int>>;

// A graph of nodes with the ids 10, 20 .. in the order of their labels; "LABEL>GRAPH" hands over.
std::string Graph(const std::string& name, const std::vector<std::string>& labels, const Edges& edges) {
    std::string text = '"' + name + R"(":{"nodes":[)";
    for (size_t i = 0; i < labels.size(); ++i) {
        const size_t mark = labels[i].find('>');
        text += (i > 0 ? "," : "") + (R"({"id":)" + std::to_string(10 * (i + 1))) + R"(,"label":")" +
                labels[i].substr(0, mark) + '"' +
                (mark < labels[i].size() ? R"(,"info":{"subGraph":")" + labels[i].substr(mark + 1) + "\"}}"
                                         : "}");
    }
    text += R"(],"edges":[)";
    for (size_t i = 0; i < edges.size(); ++i) {
        text += (i > 0 ? "," : "") + (R"({"source":")" + std::to_string(10 * edges[i].first)) +
                R"(","target":")" + std::to_string(10 * edges[i].second) + "\"}";
    }
    return text + "]}";
}

std::string ChainOf(int length, const Edges& shortcuts) {
    std::vector<std::string> labels{"TGT_LUMO_HOST_READ"};
    Edges edges = shortcuts;
    for (int i = 2; i <= length; ++i) {
        labels.push_back("P" + std::to_string(i));
        edges.emplace_back(i - 1, i);
    }
    return '{' + Graph("SAN_IO_READ", labels, edges) + '}';
}

// How many times as slow each point is during the fault as else.
constexpr char SLOWER[] = R"(
    create temp view changes as select locatename as point, max(avgdelay) as most,
        max(avgdelay) filter (where curtime between first and last + 30) / avg(avgdelay) filter (where curtime < first)
            as slower, sum(acceptnum) as requests
    from samples, (select fault->>'start_epoch' as first, fault->>'end_epoch' as last from json) group by 1)";

TEST(ConfigTest, FaultsReachAllWhoWaitForThePoint) {
    const std::string host = "TGT_LUMO_HOST_READ";
    Edges ladder;
    for (int i = 1; i <= 118; i += 3) {
        ladder.emplace_back(i, i + 2);
    }
    const std::tuple<std::string, const char*, std::string> cases[] = {
        {'{' +
             Graph("SAN_IO_READ", {"A", host, "B", "LEFT", "RIGHT", "SHARED"},
                   {{2, 4}, {2, 5}, {4, 6}, {5, 6}, {2, 3}, {1, 3}}) +
             '}',
         "SHARED", "LEFT,RIGHT,SHARED," + host},
        {'{' + Graph("BELOW", {"LOW", "TOP", "X_OB_Y"}, {{2, 3}, {3, 1}, {2, 99}, {-1, 1}}) + ',' +
             Graph("NAS_IO_SMB2", {"NAS_TRANS_ALL", "VIA>BELOW", "ALSO>GONE"}, {{1, 2}, {1, 3}}) + '}',
         "LOW", "LOW,NAS_TRANS_ALL,TOP,VIA,X_OB_Y"},
        {'{' + Graph("SAN_IO_READ", {"A", "B", host}, {{1, 2}, {2, 3}, {3, 1}}) + ',' +
             Graph("SELF", {"S>SELF", "T"}, {{1, 2}, {2, 2}}) + '}',
         "B", "A,B," + host},
        {'{' + Graph("MY_OWN", {"TOP", "LOW", "CUT_OFF"}, {{1, 2}}) + '}', "LOW", "LOW,TOP"},
        {'{' + Graph("MY_OWN", {"TOP", "LOW", "CUT_OFF"}, {{1, 2}}) + '}', "CUT_OFF", "CUT_OFF"},
        {ChainOf(120, {}), "P120", ""},
        {ChainOf(121, ladder), "P119", ""},
    };
    const TemporaryFolder folder;
    for (const auto& [text, point, slow] : cases) {
        std::ofstream(folder.path / "config") << text;
        lumosim::WorldOptions options = Options("slow-disk");
        options.config = folder.path / "config";
        options.faultPoint = point;
        const WrittenWorld world(options);
        EXPECT_EQ(text, FileText(world.path.string() + ZORV_ROUTE_CONFIG_FILE));
        world.Query(SLOWER);
        const std::string names =
            "(select group_concat(point) from (select point from changes where slower > 1.5 order by 1))";
        // Who is at the top sees it three times as slow, at whatever depth it is; nothing grows out of
        // bounds.
        EXPECT_EQ(Row({slow.empty() ? world.Value("select " + names) : slow, "1", "1"}),
                  world
                      .Query("select " + names + R"(, (select slower between 2.2 and 3.5 from changes, json
                      where point = fault->>'$.path[0]'), (select max(most) < 1e9 and min(requests) filter
                      (where point not like '%OB%') > 500 and ifnull(sum(requests) filter (where point like '%OB%'), 0) = 0
                      from changes))")
                      .at(0))
            << point;
        EXPECT_EQ(point, world.Value("select fault->>'$.path[#-1]' from json"));
    }
}

TEST(ConfigTest, WhatNoWalkCanReadIsRefusedWithItsPlace) {
    const auto node = [](const std::string& members) {
        return R"({"G":{"nodes":[{"id":1,"label":"A"},)" + members + "]}}";
    };
    const auto edge = [](const std::string& members) {
        return R"({"G":{"nodes":[{"id":1,"label":"A"}],"edges":[)" + members + "]}}";
    };
    const std::pair<std::string, std::string> cases[] = {
        {"", "is no JSON: Line 1, Column 1: Syntax error: value, object or array expected."},
        {"{\"G\":", "is no JSON: Line 1, Column 6: Syntax error: value, object or array expected."},
        {"[]", "is no JSON object of graphs"},
        {std::string(300, '['), "is nested too deep"},
        {R"({"G":{},"$schema":"x"})", "has no graph with a point"},
        {R"({"G":7})", "graph \"G\": it is no object"},
        {R"({"G":{"nodes":{}}})", "graph \"G\": nodes is no list"},
        {node("8"), "graph \"G\": nodes[1]: it is no object"},
        {node(R"({"id":"2"})"), "graph \"G\": nodes[1]: id is no number of 32 bits"},
        {node(R"({"id":2,"label":[]})"), "graph \"G\": nodes[1]: label is no text"},
        {node(R"({"id":2,"label":"A'B"})"),
         "graph \"G\": nodes[1]: label has a quote or NUL in it, and no statement can ask for it"},
        {node(R"({"id":2,"info":"x"})"), "graph \"G\": nodes[1]: info is no object"},
        {node(R"({"id":2,"info":{"erridx":"x"}})"), "graph \"G\": nodes[1]: erridx is no number: \"x\""},
        {edge(R"({"source":"1"})"), "graph \"G\": edges[0]: target is missing"},
        {edge(R"({"source":"1","target":"99999999999"})"),
         "graph \"G\": edges[0]: target is no number: \"99999999999\""},
    };
    for (const auto& [text, error] : cases) {
        try {
            lumosim::ReadConfigGraphs(text);
            ADD_FAILURE() << text;
        } catch (const lumosim::ConfigError& thrown) {
            EXPECT_EQ(error, thrown.what()) << text;
        }
    }
}

}  // namespace
