#include <gmock/gmock.h>

#include "fault_debug/fault_debug_command.h"
#include "fault_server/fault_diagnose.h"
#include "tests/fault_debug/console.h"

namespace {

const std::string FROM = "20210803000000";
const std::string TO = "20210803010000";
constexpr int64_t MIDNIGHT = 1627920000;  // FROM, eight hours east
const std::string SEPARATOR = std::string(100, '-') + "\n";
const std::string SEARCH_FAILED = Error("inner err, and please try it again.");
const std::string ANALYSIS = "\n                   ErrCode Analysis\n" + std::string(67, '=') + "\n";
const std::string COLUMNS =
    "LocalPointName                                      ErrCodeCount        FixAdvice\n";
// A walk that finds no root begins at node 0.
const std::string IDLE = R"({"nodes": [{"id": 0, "label": "IDLE"}], "edges": []})";

// The hosts' errors come from SPACE_B by way of a point that is counted as TGT_READ, and there from the pool.
const std::string SAN_GRAPH = R"({"nodes": [
    {"id": 1, "label": "TGT_IO_ERRCODE_COMMON", "name": "n1", "info": {"suggestion": "ask the hosts"}},
    {"id": 2, "label": "TGT_SPACE_", "name": "n2", "info": {"attr": "automic", "qname": "TGT_READ", "erridx": "-1"}},
    {"id": 3, "label": "SPACE_A", "name": "n3", "info": {"attr": "whole"}},
    {"id": 4, "label": "SPACE_B", "name": "n4", "info": {"attr": "follow,whole,automic", "qname": "TGT_READ",
     "subGraph": "POOL_ERRCODE_READ"}},
    {"id": 5, "label": "MODULE_SPACE", "name": "n5", "description": "MODULE", "info": {"attr": "whole"}},
    {"id": 6, "label": "SPACE_A", "name": "n6"}],
  "edges": [{"source": "1", "target": "2"}, {"source": "2", "target": "3"}, {"source": "2", "target": "4"},
    {"source": "6", "target": "1"}]})";
const std::string POOL_GRAPH = R"({"nodes": [
    {"id": 3, "label": "POOL_DEEP", "name": "p3", "info": {"suggestion": "look at the pool"}},
    {"id": 9, "label": "POOL_ROOT", "name": "p9"}],
  "edges": [{"source": "9", "target": "3"}]})";
const std::string FACTOR_GRAPH = R"({"nodes": [
    {"id": 1, "label": "HIGH", "info": {"suggestion": "first"}}, {"id": 2, "label": "LOW"},
    {"id": 3, "label": "FLAT_B"}, {"id": 4, "label": "FLAT_A"}, {"id": 5, "label": "NEGATIVE"},
    {"id": 6, "label": "MISSING_OB_POINT"}, {"id": 7, "label": "HIGH", "info": {"suggestion": "second"}}]})";

class ErrorCodes : public Console {
protected:
    // `changes`: graphs that differ, by name; without a text they are missing.
    void Configure(const std::map<std::string, std::string>& changes = {}) const {
        std::map<std::string, std::string> graphs = {{"ERRCODE_SAN_PROTO", SAN_GRAPH},
                                                     {"POOL_ERRCODE_READ", POOL_GRAPH},
                                                     {"FACTOR_BDM", FACTOR_GRAPH},
                                                     {"ERRCODE_NAS_PROTO", IDLE},
                                                     {"ERRCODE_SMB", IDLE},
                                                     {"POOL_ERRCODE_WRITE", IDLE},
                                                     {"MKV_IO_READ", IDLE},
                                                     {"MKV_IO_WRITE", IDLE}};
        std::string json;
        for (const auto& [name, text] : changes) {
            graphs[name] = text;
        }
        for (const auto& [name, text] : graphs) {
            json += text.empty() ? "" : (json.empty() ? "{\"" : ",\"") + name + "\":" + text;
        }
        world.Config(json + "}");
        ZorvSmartDiagnoseJsonObjectInit();
        Agent::TakeLines();
    }

    void OpenErrors() const {
        std::vector<StatisticsRow> rows;
        for (const int64_t time : {MIDNIGHT, MIDNIGHT + 30}) {
            const std::pair<const char*, std::array<int64_t, 5>> points[] = {
                {"TGT_IO_ERRCODE_COMMON", {20, 0, 0, 0, 0}},
                {"TGT_READ", {15, 1, 0, 0, 0}},
                {"SPACE_A", {12, 0, 3, 0, 0}},
                {"SPACE_B", {5, 0, 0, 0, 0}},
                {"POOL_ROOT", {5, 0, 0, 0, 0}},
                {"POOL_DEEP", {4, 0, 0, 0, 9}}};
            for (const auto& [point, errors] : points) {
                rows.push_back({point, time, 1, errors});
            }
        }
        Open({{"lumo_data_" + FROM, rows}});
        Configure();
    }
};

TEST_F(ErrorCodes, ListsThePointsOfAllGraphs) {
    OpenErrors();
    const auto type = [](const std::string& name, const std::string& total) {
        return "Error Code Type:" + name + std::string(20 - name.size(), ' ') + " total:" + total + "\n";
    };
    EXPECT_EQ(
        Type({"showallerr", FROM, TO}),
        type("IOERROR", "6") + "No.  " + COLUMNS +
            "1    TGT_IO_ERRCODE_COMMON                               40                  ask the hosts\n"
            "2    TGT_SPACE_                                          30                  ---\n"
            "3    SPACE_A                                             24                  ---\n"
            "4    POOL_ROOT                                           10                  ---\n"
            "5    SPACE_B                                             10                  ---\n"
            "6    POOL_DEEP                                           8                   look at the "
            "pool\n" +
            SEPARATOR + type("IORETRY", "1") + "No.  " + COLUMNS +
            "1    TGT_SPACE_                                          2                   ---\n" + SEPARATOR +
            type("IOACCESSDENY", "1") + "No.  " + COLUMNS +
            "1    SPACE_A                                             6                   ---\n" + SEPARATOR);
    EXPECT_THAT(Agent::TakeLines(),
                testing::IsSupersetOf(
                    {"3 fault_rootcause.cpp SearchErrCodeUpdDataIntoMap: Node already exists, err(IOERROR) "
                     "errNum(24) node(SPACE_A).",
                     "5 fault_rootcause.cpp SearchErrCodeUpdDataIntoMap: Insert data into map, err(IORETRY) "
                     "errNum(2) node(TGT_SPACE_).",
                     "4 fault_rootcause.cpp SearchErrCodeDataByLumo: There's not data finded about "
                     "MODULE_SPACE."}));
    std::string nothing;
    for (const std::string name : {"IOERROR", "IORETRY", "IOACCESSDENY"}) {
        nothing +=
            type(name, "0") + "There're no data in this time interval about " + name + ".\n" + SEPARATOR;
    }
    EXPECT_EQ(Type({"showallerr", "20200101000000", "20200101010000"}), nothing);  // before all data
}

TEST_F(ErrorCodes, ShowsTheStateOfEachModule) {
    OpenErrors();
    const std::string head =
        "Module          Points    IOERROR           Points    IORETRY           Points    IOACCESSDENY      "
        "\n";
    const auto idle = [](const std::string& module) {
        std::string row = module + std::string(16 - module.size(), ' ');
        for (int type = 0; type < 3; ++type) {
            row += "0         0                 ";
        }
        return row + "\n";
    };
    EXPECT_EQ(Type({"errcodeshowall", FROM, TO}),
              "ErrCode Graph:ERRCODE_NAS_PROTO       \n" + head + idle("CACHE") + idle("FS") +
                  idle("NASPROTOL") + idle("POOL") + SEPARATOR + "ErrCode Graph:ERRCODE_SAN_PROTO       \n" +
                  head + idle("CACHE") + idle("POOL") +
                  "SANPROTOL       2         70                1         2                 0         0       "
                  "          \n"
                  "SPACE           2         34                0         0                 1         6       "
                  "          \n" +
                  SEPARATOR + "ErrCode Graph:ERRCODE_SMB             \n" + head + idle("NASPROTOL") +
                  SEPARATOR);
}

TEST_F(ErrorCodes, NamesTheRootCauseOverTwoGraphs) {
    OpenErrors();
    const auto head = [](const std::string& cause, const std::string& graph) {
        return std::string(67, '=') + "\nRootCauseName                   RootGraphName\n" + cause +
               std::string(32 - cause.size(), ' ') + graph + std::string(32 - graph.size(), ' ') + "\n" +
               std::string(69, '-') + "\nioPointid   " + COLUMNS;
    };
    const std::string first =
        "\n                   ErrCode Analysis\n" + head("POOL_ERRCODE_READ", "ERRCODE_SAN_PROTO");
    const std::string space =
        "4           SPACE_B                                             10                  ---\n";
    const std::string none = ANALYSIS + "There's no abnormal check result.\n";
    EXPECT_EQ(
        Type({"errcodeshow", "IOERROR", "ALL", FROM, TO}),
        none + none + first +
            "1           TGT_IO_ERRCODE_COMMON                               40                  ask the "
            "hosts\n"
            "2           TGT_SPACE_                                          30                  ---\n" +
            space + head("p3", "POOL_ERRCODE_READ") +
            "9           POOL_ROOT                                           10                  ---\n"
            "3           POOL_DEEP                                           8                   look at the "
            "pool\n");
    EXPECT_THAT(
        Agent::TakeLines(),
        testing::IsSupersetOf(
            {"5 fault_rootcause.cpp AnalysisErrCodeBFSByRoot: FindRootBySpecificLabel rootId: 1.",
             "5 fault_rootcause.cpp AnalysisErrCodeBFSByRoot: FindRootBySelf rootId: 9.",
             "3 fault_rootcause.cpp AnalysisErrCodeBFS: new root graph name :POOL_ERRCODE_READ",
             "3 fault_rootcause.cpp AnalysisErrCodeBFSByRoot: the p3 is not exsist.",
             "3 fault_rootcause.cpp AnalysisErrCodeBFS: Graph anlaysis failed.retCode: 1, statusCode: 1",
             "3 fault_causality_errcode_graph.cpp SelectChildNode: rstNode.locName(SPACE_B), "
             "nodeRst.locName(SPACE_B), acceptnum(10), erridx(-1), isFollow(1)."}));
    EXPECT_EQ(Type({"errcodeshow", "IOERROR", "SPACE", FROM, TO}),
              first + space + head("p3", "POOL_ERRCODE_READ"));
    EXPECT_EQ(Type({"errcodeshow", "IOACCESSDENY", "ALL", FROM, TO}), none + none + none);
    EXPECT_EQ(Type({"errcodeshow", "IOERROR", "FS", FROM, TO}), none);
    // A graph after the first one may fail.
    Configure({{"POOL_ERRCODE_READ", R"({"nodes": [{"info": {"erridx": "x"}}], "edges": []})"}});
    EXPECT_EQ(Type({"errcodeshow", "IOERROR", "SPACE", FROM, TO}), first + space);
}

TEST_F(ErrorCodes, ShowsTheFactorsOfAModule) {
    std::vector<StatisticsRow> rows;
    for (int64_t i = 0; i < 40; ++i) {
        const int64_t time = MIDNIGHT + 30 * i;
        rows.push_back({"HIGH", time, i == 5 || i == 7 ? 90000 : 100 + i % 2});
        rows.push_back({"LOW", time, i == 9 ? 2 : 50000 + i % 2});
        rows.push_back({"FLAT_A", time, 70});
        rows.push_back({"FLAT_B", time, 70 - i % 2});
        rows.push_back({"NEGATIVE", time, -7 - i});
    }
    Open({{"lumo_data_" + FROM, rows}});
    Configure();
    EXPECT_EQ(Type({"showfaultfactor", "BDM", FROM, TO}),
              "\nSmartDiagnose Fault Factor\n"
              "No.  LocalPointName                                      Kind        Value(us)           Time"
              "                  FixAdvice\n"
              "1    HIGH                                                abnormal    90000               "
              "2021/8/3 0:2:30       first\n"
              "2    LOW                                                 abnormal    2                   "
              "2021/8/3 0:4:30       ---\n"
              "3    FLAT_A                                              max         70                  "
              "2021/8/3 0:0:0        ---\n"
              "4    FLAT_B                                              max         70                  "
              "2021/8/3 0:0:0        ---\n"
              "5    NEGATIVE                                            max         -7                  "
              "2021/8/3 0:0:0        ---\n"
              "6    MISSING_OB_POINT                                    no data     ---                 ---  "
              "                 ---\n");
}

TEST_F(ErrorCodes, AnswersEveryMistakeAndLives) {
    OpenErrors();
    const std::string input = Error("input err");
    const std::string date = Error("date input err");
    const std::pair<Lines, std::string> cases[] = {
        {{"showallerr"}, input},
        {{"showallerr", TO, FROM}, date},
        {{"errcodeshowall", "x"}, input},
        {{"errcodeshowall", FROM, FROM}, date},
        {{"errcodeshow", "IOERROR", "ALL"}, input},
        {{"errcodeshow", "IOERR", "ALL", TO, FROM}, Error("type err")},
        {{"errcodeshow", "IOERROR", "all", FROM, TO}, Error("type err")},
        {{"errcodeshow", "IOERROR", "POOL", TO, FROM}, date},
        {{"showfaultfactor", "BDM", "30"}, input},
        {{"showfaultfactor", "FS2", TO, FROM}, date},
        {{"showfaultfactor", "FS2", FROM, TO}, Error("type err")},
        {{"showfaultfactor", "FS", FROM, TO}, SEARCH_FAILED},
    };
    for (const auto& [words, printed] : cases) {
        EXPECT_EQ(Type(words), printed) << testing::PrintToString(words);
    }
    // Graphs that cannot be read.
    const Lines searches[] = {
        {"showallerr", FROM, TO}, {"errcodeshowall", FROM, TO}, {"errcodeshow", "IORETRY", "ALL", FROM, TO}};
    const std::string graphs[] = {"",
                                  "7",
                                  R"({"nodes": [], "edges": []})",
                                  R"({"nodes": [{"info": {"erridx": "one"}}], "edges": []})",
                                  R"({"nodes": [{"label": []}], "edges": []})",
                                  R"({"nodes": [{"id": 5, "description": "MODULE"}], "edges": []})"};
    for (const std::string& graph : graphs) {
        for (const Lines& words : searches) {
            Configure({{"ERRCODE_SMB", graph}});
            EXPECT_EQ(Type(words), SEARCH_FAILED) << words[0] << graph;
        }
    }
    Configure({{"ERRCODE_SMB", R"({"nodes": [{}], "edges": [{"source": "x", "target": "1"}]})"}});
    EXPECT_EQ(Type(searches[2]), Error("inner err"));
    Configure({{"FACTOR_BDM", R"({"nodes": []})"}});
    EXPECT_EQ(Type({"showfaultfactor", "BDM", FROM, TO}), SEARCH_FAILED);
    Agent()->reply = Bytes(3);
    for (const Lines& words : searches) {
        EXPECT_EQ(Type(words), Error("fault diagnose switch is off"));
    }
    EXPECT_EQ(Type({"showfaultfactor"}), Error("fault diagnose switch is off"));
}

// Zeros would look like health.
TEST_F(ErrorCodes, AFailingDatabaseIsNoAnswer) {
    const std::string table = "lumo_data_" + FROM;
    Configure();
    for (const int failure : {0, 1, 2}) {
        failure == 0   ? Open({{table, {{"TGT_READ", MIDNIGHT, "'x'"}}}})
        : failure == 1 ? Open({})
                       : Open({{table}});
        if (failure == 2) {
            world.Exec(LUMO_DATABASE_FILE, "DROP TABLE " + table);
        }
        for (const Lines& words : {Lines{"showallerr", FROM, TO}, Lines{"errcodeshowall", FROM, TO},
                                   Lines{"errcodeshow", "IORETRY", "ALL", FROM, TO}}) {
            EXPECT_EQ(Type(words), SEARCH_FAILED) << words[0] << failure;
            EXPECT_EQ(Agent()->Count("get data failed.") > 0, failure != 0);
            EXPECT_EQ(Agent()->Count("get lumodata from database failed.") > 0, failure == 2);
            Agent()->logs.clear();
        }
    }
}

TEST_F(ErrorCodes, ShowsAtMost101Rows) {
    const auto rowsOf = [](size_t count) {
        std::vector<NodeResult> results(count);
        for (size_t i = 0; i < count; ++i) {
            results[i].locName = "P" + std::to_string(i);  // of equal points, the first ones are shown
        }
        ShowErrTypeResult("IORETRY", results);
        const std::string screen = Agent::TakeConsole();
        const bool cut =
            screen.find("\n101  P100 ") != std::string::npos &&
            screen.find("\n(There are too many records to show all information.)\n") != std::string::npos;
        return std::pair(std::count(screen.begin(), screen.end(), '\n'), cut);
    };
    EXPECT_EQ(rowsOf(100), std::pair(std::ptrdiff_t{102}, false));
    EXPECT_EQ(rowsOf(101), std::pair(std::ptrdiff_t{104}, true));
    EXPECT_EQ(rowsOf(150), std::pair(std::ptrdiff_t{104}, true));
}

TEST_F(ErrorCodes, APointMayShowTheErrorsOfOtherTypes) {
    std::vector<NodeResult> results(3);
    results[0].errorSums = results[1].errorSums = {0, 3, 4, 0, 0};
    results[0].locName = "POOL_DOP_KVS_WRITE";
    results[1].locName = "POOL_DOP_KVS_READ";
    results[2].errorSums = {1, 9, 9, 9, 9};
    ShowErrTypeResult("IOERROR", results);
    EXPECT_THAT(
        Agent::TakeConsole(),
        testing::EndsWith(
            COLUMNS + "1                                                        1                   ---\n"
                      "2    POOL_DOP_KVS_WRITE                                  7                   ---\n"
                      "3    POOL_DOP_KVS_READ                                   0                   ---\n"));
}

}  // namespace
