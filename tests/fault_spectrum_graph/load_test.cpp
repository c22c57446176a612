#include <gmock/gmock.h>

#include "fault_spectrum_graph/fault_causality_graph.h"
#include "support/database_test.h"

namespace {

using testing::ElementsAre, testing::IsEmpty, testing::IsSupersetOf, testing::Pair, testing::SizeIs;
constexpr int64_t TIME = 1627920000;  // 20210803000000, eight hours east

class Load : public DatabaseTest {
protected:
    // Points A and B with a sample in each table, the later one in the first, and what `sql` makes of them.
    void Plant(const std::string& sql) {
        Open({{"lumo_data_20210803000000", {{"A", TIME + 9, 1}, {"B", TIME + 9, 2}}},
              {"lumo_data_20210803000001", {{"A", TIME + 5, 3}, {"B", TIME + 5, 4}}}});
        world.Exec(LUMO_DATABASE_FILE, sql);
    }

    uint32_t Get(const Lines& points, const Lines& obPoints, const std::string& day = "20210803") {
        graph = {};
        graph.vecLumoLocName = points;
        graph.vecObName = obPoints;
        return graph.GetData(day + "000000", day + "000010");
    }

    FaultCausalityGraph graph;
    std::map<std::string, FaultSeries> columns;
};

TEST_F(Load, EachColumnTableByTable) {
    std::string sql;
    for (const std::string column :
         {"acceptnum", "successnum", "failednum", "retrynum", "avgdelay", "maxdelay", "mindelay", "errCode0",
          "errCode1", "errCode2", "errCode3", "errCode4"}) {
        const auto value = static_cast<int64_t>(columns.size());
        columns[column] = {{TIME + 9, value}, {TIME + 5, -value}};
        sql += "UPDATE lumo_data_20210803000000 SET " + column + " = " + std::to_string(value) +
               "; UPDATE lumo_data_20210803000001 SET " + column + " = -" + std::to_string(value) + ";";
    }
    Plant(sql);
    EXPECT_EQ(Get({"A", "unknown", "A"}, {"B"}), 0U);
    EXPECT_THAT(graph.mapLumoData, ElementsAre(Pair("A", columns), Pair("unknown", IsEmpty())));
    EXPECT_THAT(graph.mapObserveData, ElementsAre(Pair("B", columns["avgdelay"])));
    EXPECT_EQ(Get({"A"}, {"B"}, "20210801"), 0U);  // before all data
    EXPECT_THAT(graph.mapLumoData, ElementsAre(Pair("A", IsEmpty())));
    EXPECT_THAT(graph.mapObserveData, ElementsAre(Pair("B", IsEmpty())));
}

TEST_F(Load, FailedQueries) {
    const std::string noData = "3 fault_causality_graph.cpp GetData: get data failed.";
    const std::string noLumo = "3 fault_causality_graph.cpp GetLumoData: get lumodata from database failed.";
    const std::string noOb = "3 fault_causality_graph.cpp GetObData: get obdata from database failed.";
    const std::tuple<const char*, Lines, Lines, std::tuple<uint32_t, size_t, size_t>, Lines> cases[] = {
        {"SELECT 1", {"A", "'", "B"}, {"B"}, {1, 1, 0}, {noLumo, noData}},  // a syntax error
        {"DROP TABLE lumo_data_20210803000001", {"A"}, {"B"}, {1, 0, 0}, {noLumo, noData}},
        {"DELETE FROM table_flag", {"A"}, {"B"}, {1, 1, 0}, {noData}},
        {"SELECT 1", {"A", "B"}, {"B", "'", "A"}, {0, 2, 1}, {noOb}},
    };
    for (const auto& [sql, points, obPoints, expected, logged] : cases) {
        Plant(sql);
        const uint32_t result = Get(points, obPoints);
        EXPECT_EQ(std::tuple(result, graph.mapLumoData.size(), graph.mapObserveData.size()), expected) << sql;
        EXPECT_THAT(Agent::TakeLines(), IsSupersetOf(logged)) << sql;
    }
}

TEST_F(Load, RowsThatLackNumbers) {
    for (const std::string cell : {"acceptnum = NULL", "errCode4 = NULL", "avgdelay = 'x'"}) {
        Plant("UPDATE lumo_data_20210803000001 SET " + cell + " WHERE locateid = 2");
        EXPECT_THROW(Get({"A", "B", "C"}, {}), std::invalid_argument) << cell;
        EXPECT_THAT(graph.mapLumoData, ElementsAre(Pair("A", SizeIs(12))));
    }
    char cell[] = "1";
    std::vector<char*> cells(26, cell);
    EXPECT_THROW(FaultCausalityGraph::QueryFullDataCb(cells.data(), 1, 12, columns), std::invalid_argument);
    EXPECT_EQ(FaultCausalityGraph::QueryFullDataCb(nullptr, 1, 13, columns), 1U);
}

}  // namespace
