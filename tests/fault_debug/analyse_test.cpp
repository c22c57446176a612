#include <gmock/gmock.h>

#include "fault_server/fault_diagnose.h"
#include "tests/fault_debug/console.h"

namespace {

const std::string EQUALS = std::string(67, '=') + "\n";
const std::string ANALYSIS = "\n                   CausalityGraph Analysis\n";
const std::string NO_RESULT = ANALYSIS + EQUALS + "There's no abnormal check result.\n";
const std::string DAY_START = "20210803000000";
const std::string DAY_END = "20210803010000";
constexpr int64_t MIDNIGHT = 1627920000;  // DAY_START, eight hours east

std::string PathHead(const std::string& name, const std::string& graph) {
    const auto padded = [](std::string text) {
        text.resize(32, ' ');
        return text;
    };
    return EQUALS + "AnomalyNodeName                  RootGraphName\n" + padded(name) + padded(graph) + "\n" +
           std::string(69, '-') +
           "\nioPointid      locName                         coff         avgdelay(us)\n";
}

// An hour of samples of one point; the one in the middle is `factor` times as slow.
void AddHour(std::vector<StatisticsRow>& rows, const std::string& point, int64_t usual, int64_t factor) {
    for (int64_t i = 0; i < 60; ++i) {
        rows.push_back({point, MIDNIGHT + 60 * i, std::to_string(usual * (i == 30 ? factor : 1 + i % 2))});
    }
}

class Analysis : public Console {
protected:
    // The host point's delay comes from B in its own graph, and B's from D in the graph it names.
    Analysis() {
        world.Config(R"({
            "SAN_IO_READ": {"nodes": [
                {"id": 1, "label": "TGT_LUMO_HOST_READ", "name": "top", "description": ""},
                {"id": 2, "label": "A", "name": "a", "description": "", "info": {}},
                {"id": 3, "label": "B", "name": "b", "info": {"subGraph": "BELOW", "suggestion": "look at B"}},
                {"id": 4, "label": "OB_C", "name": "c"}],
              "edges": [{"source": "1", "target": "2"}, {"source": "1", "target": "3"},
                        {"source": "3", "target": "-4"}]},
            "BELOW": {"nodes": [{"id": 7, "label": "B", "name": "b2"}, {"id": 8, "label": "D", "name": "BELOW"}],
              "edges": [{"source": "7", "target": "8"}]}})");
        ZorvSmartDiagnoseJsonObjectInit();
    }

    void OpenPlanted(const std::string& hostPoint) const {
        std::vector<StatisticsRow> rows;
        AddHour(rows, hostPoint, 100, 90);
        AddHour(rows, "B", 50, 90);
        AddHour(rows, "D", 10, 90);
        Open({{"lumo_data_" + DAY_START, rows}});
    }
};

TEST_F(Analysis, FollowsThePlantedDelayOverTwoGraphs) {
    OpenPlanted("TGT_LUMO_HOST_READ");
    // 17 samples within eight minutes, each divided before it is added: 529 + 8 * 5 + 8 * 11, and so on.
    EXPECT_EQ(
        Type({"delayanal", DAY_START, DAY_END}),
        ANALYSIS + PathHead("B", "SAN_IO_READ") +
            "1           TGT_LUMO_HOST_READ              1.000000     657                           \n"
            "3           B                               1.000000     320                           \n" +
            PathHead("D", "BELOW") +
            "7           B                               1.000000     320                           \n"
            "8           D                               1.000000     60                            \n");
    const Lines lines = Agent::TakeLines();
    for (const char* line :
         {"5 fault_debug.cpp ZorvFaultCanGetHealEvent: Heal event is empty.",
          "5 fault_debug.cpp ZorvFaultMultiAnomalyProcess: Fault detect (time: 1627921800, val: 9000).",
          "5 fault_debug.cpp ZorvFaultAnalysisInner: Fault analysis (nodeName:TGT_LUMO_HOST_READ, "
          "graphName:SAN_IO_READ).",
          "5 fault_debug.cpp ZorvFaultAnalysisInner: Fault analysis timerange(20210803002200, "
          "20210803003800).",
          "4 fault_causality_graph.cpp AddEdge: illegal edge (sourceId:3, targetId:-4).",
          "4 fault_causality_graph.cpp InitGraph: Add edge (sourceId:3, targetId:-4) failed.",
          "3 fault_causality_graph.cpp SelectChildNode: rstNode.locName : B.",
          "3 fault_rootcause.cpp FlowAnalysisBFS: new root graph name :BELOW",
          "4 fault_rootcause.cpp FlowAnalysisBFS: graph BELOW has been analysed already, the analysis "
          "ends."}) {
        EXPECT_THAT(lines, testing::Contains(line));
    }
}

TEST_F(Analysis, OnlyTheSwitchOnRaisesTheAlarm) {
    OpenPlanted("TGT_LUMO_HOST_READ");
    for (const int32_t value : {2, 3, 1}) {
        Agent()->reply = Bytes(value);
        EXPECT_EQ(Type({"delaydetect", DAY_START, DAY_END}),
                  "\nSmartDiagnose Anomaly Point\n"
                  "lumoLocName                        anomalyTime               anomalyValue\n"
                  "TGT_LUMO_HOST_READ                 2021/8/3 0:30:0         9000                \n");
        EXPECT_EQ(Agent()->alarms.size(), value == 1 ? 1U : 0U);
    }
}

TEST_F(Analysis, EveryGraphOfAPointIsAnalysed) {
    OpenPlanted("NAS_TRANS_ALL");
    EXPECT_EQ(Type({"delayanal", DAY_START, DAY_END}), NO_RESULT + NO_RESULT + NO_RESULT);
    EXPECT_THAT(
        Agent::TakeLines(),
        testing::Contains("3 fault_rootcause.cpp GraphAnalysisBFSByRoot: the NAS_IO_SMB2 is not exsist."));
}

TEST_F(Analysis, HealEventsComeFirst) {
    OpenPlanted("TGT_LUMO_HOST_READ");
    world.Exec(ZORV_HEAL_DATABASE_FILE,
               "insert into fault_heal_event(healtime, modulename, healcause, infercause, nodeid) values"
               "(20210803000000, 'BDM', 'IOHANG', null, 2), (20210803010000, 'POOL', 'IOERR', 'DISK', 2),"
               "(20210803010001, 'LATE', 'IOERR', 'DISK', 2), (20210803000500, 'OTHER', 'IOERR', 'DISK', 1),"
               "(20210803000500, 'CAUSE', 'MEMLEAK', 'DISK', 2)");
    EXPECT_EQ(Type({"delayanal", DAY_START, DAY_END}),
              "\n                   IoAbnormal Analysis\n" + EQUALS +
                  "time             ioabnType       modulename      infercause\n"
                  "20210803000000   IOHANG          BDM                             \n"
                  "20210803010000   IOERR           POOL            DISK            \n");
    world.Exec(ZORV_HEAL_DATABASE_FILE, "DROP TABLE fault_heal_event");
    EXPECT_THAT(Type({"delayanal", DAY_START, DAY_END}), testing::StartsWith(ANALYSIS));
    Agent::Fail("snprintf_s", -1);
    EXPECT_EQ(Type({"delayanal", DAY_START, DAY_END}), "");
    EXPECT_THAT(Agent::TakeLines(),
                testing::IsSupersetOf({"4 fault_database.cpp FaultQueryHealEvent: make sql failed.",
                                       "3 fault_common.cpp TransUtcTimeToLocalTime: snprintf_s failed."}));
}

TEST_F(Analysis, SaysWhyThereIsNoResult) {
    EXPECT_EQ(Type({"delayanal"}), Error("input err"));
    EXPECT_EQ(Type({"delayanal", DAY_END, DAY_START}), Error("date input err"));
    const std::string nothing =
        "There's no detect result in this time interval(from " + DAY_START + " to " + DAY_END + ")!\n";
    EXPECT_EQ(Type({"delayanal", DAY_START, DAY_END}), nothing);
    EXPECT_THAT(Agent::TakeLines(),
                testing::IsSupersetOf(
                    {"4 fault_database.cpp FaultQueryHealEvent: g_zorvHealDataBase is nullptr.",
                     "5 fault_debug.cpp ZorvFaultCanGetHealEvent: Failed to query heal event.",
                     "5 fault_debug.cpp ZorvFaultAnalysis: Fault no detect  result and travese default!"}));
    Agent()->reply = Bytes(3);
    EXPECT_EQ(Type({"delayanal", DAY_START, DAY_END}), Error("fault diagnose switch is off"));
}

TEST_F(Analysis, ShowsAGraph) {
    std::vector<StatisticsRow> rows = {{"B", MIDNIGHT, "5"}};
    Open({{"lumo_data_" + DAY_START, rows}, {"lumo_data_20210803003000", {{"B", MIDNIGHT + 1800, "6"}}}});
    const std::string title = "\t\t: ZorvFaultGraphDisplay\n";
    const std::pair<Lines, std::string> cases[] = {
        {{"mapgraph", "-"}, "\nCausalityGraph mapGraph\nnode: 1    edge: 2    3    \n"},
        {{"mapnodeinfo", "-"},
         "\nCausalityGraph mapNodeInfo\n"
         "key  ioPointid          locName                         statLabel               nextGraph\n"
         "1    1               TGT_LUMO_HOST_READ              LUMO_POINT  top            \n"
         "2    2               A                               LUMO_POINT  a              \n"
         "3    3               B                               LUMO_POINT  BELOW          \n"
         "4    4               OB_C                            OB_POINT    c              \n"},
        {{"veclumo", "-"}, "\nCausalityGraph vecLumoLocName\n\nLocName\nTGT_LUMO_HOST_READ\nA\nB\n"},
        {{"vecob", "-"}, "\nCausalityGraph vecObName\n\nObName\nOB_C\n"},
        {{"mapobdata", "-"}, ""},
        {{"maplumodata", "B"},
         "\nCausalityGraph mapLumoData\n\nlumoLocName            timestamp   avg\n"
         "\nB                             1627920000  5           \n"
         "\nB                             1627921800  6           \n"},
        {{"maplumodata", "A"}, "\nCausalityGraph mapLumoData\n\nlumoLocName            timestamp   avg\n"},
        {{"maplumodata", "X"}, "\nCausalityGraph mapLumoData\n\n LUMO Loc(X) not exist !\n"},
        {{"mapgraphs", "-"}, Error("type err")},
    };
    for (const auto& [words, screen] : cases) {
        EXPECT_EQ(Type({"showgraph", words[0], words[1], DAY_START, DAY_END}), title + screen);
    }
    EXPECT_EQ(Type({"showgraph", "mapgraph", DAY_START, DAY_END}), title + Error("type err"));
    Open({});  // no table to read: the points have entries all the same
    EXPECT_EQ(Type({"showgraph", "maplumodata", "A", DAY_START, DAY_END}), title + cases[6].second);
    world.Config("{}");
    ZorvSmartDiagnoseJsonObjectInit();
    for (const std::string word : {"mapgraph", "mapnodeinfo", "veclumo", "vecob", "maplumodata"}) {
        EXPECT_EQ(Type({"showgraph", word, "-", DAY_START, DAY_END}), title + "\ninner error\n");
    }
}

std::string Graph(const std::string& nodes, const std::string& edges) {
    return R"({"SAN_IO_READ": {"nodes": [)" + nodes + R"(], "edges": [)" + edges + "]}}";
}

TEST_F(Analysis, ConfigurationsThatMakeNoSense) {
    OpenPlanted("TGT_LUMO_HOST_READ");
    const std::string host = R"({"label": "TGT_LUMO_HOST_READ", )", one = host + "\"id\": 1}";
    const std::string row = "TGT_LUMO_HOST_READ              1.000000     657                           \n";
    const std::string path = ANALYSIS + PathHead("TGT_LUMO_HOST_READ", "SAN_IO_READ");
    const std::string inner = Error("inner err"), error = "Unexpected error: ";
    const std::string noRoot = "no root node:0";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {Graph("", R"({"source": "one", "target": "2"})"), inner, error + "not a number: 'one'"},
        {Graph("", R"({"target": "2"})"), inner, error + "not a number: ''"},
        {Graph("", R"({"source": [], "target": "2"})"), inner, error},
        {Graph("7", ""), inner, error},
        {Graph(R"({"id": "1"})", ""), inner, error},
        {Graph(R"({"label": {}})", ""), inner, error},
        {Graph(R"({"info": "x"})", ""), inner, error},
        {R"({"SAN_IO_READ": []})", inner, error},
        {R"({"SAN_IO_READ": {}})", NO_RESULT, noRoot},
        {R"({"SAN_IO_READ": {"nodes": 7, "edges": "x"}})", NO_RESULT, noRoot},
        {Graph(R"({"id": 5, "label": "A"})", ""), NO_RESULT, noRoot},
        {Graph(one + R"(, {"id": 5, "label": "'"})", ""), NO_RESULT, "get data failed."},
        {Graph("null, " + host + R"("info": null})", ""), path + "0           " + row, "rootId: 0."},
        {Graph(host + "\"id\": -7}", R"({"source": "-7", "target": "1"})"), path + "-7          " + row,
         "Add edge (sourceId:-7, targetId:1) failed."},
        {Graph(R"({"id": 1, "label": "B"}, )" + one, R"({"source": "1", "target": "9"})"),
         path + "1           " + row, "rootId: 1."},
        {Graph(one, R"({"source": " 1x", "target": "+1"})"), path + "1           " + row,
         "node 1 is on the path already, the walk ends."},
        {R"({"SAN_IO_READ": {"nodes": [)" + host + R"("id": 1, "name": "NEXT"}]},
             "NEXT": {"nodes": [)" +
             host + R"("name": "SAN_IO_READ"}]}})",
         path + "1           " + row + PathHead("TGT_LUMO_HOST_READ", "NEXT") + "0           " + row,
         "graph SAN_IO_READ has been analysed already, the analysis ends."},
    };
    for (const auto& [config, screen, line] : cases) {
        world.Config(config);
        ZorvSmartDiagnoseJsonObjectInit();
        Agent::TakeLines();
        EXPECT_EQ(Type({"delayanal", DAY_START, DAY_END}), screen) << config;
        EXPECT_GT(Agent::Record().Count(line), 0U) << config;
    }
}

}  // namespace
