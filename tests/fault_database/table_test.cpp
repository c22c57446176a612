#include <gmock/gmock.h>

#include <stdexcept>

#include "fault_spectrum_graph/fault_detect_object.h"
#include "support/database_test.h"

namespace {

using testing::ElementsAre;

TEST(QueryText, NamesColumnsTablePointAndBounds) {
    const std::string rest =
        " from T where locateid = (select locateid from version_nmaps where locatename = 'P')"
        " and curtime >= 10 and curtime <= 20;";
    const std::tuple<const char*, const char*, std::string> cases[] = {
        {"curtime", "avgdelay", "curtime, avgdelay"},
        {"curtime", "", "curtime"},
        {"", "avgdelay", "avgdelay"},
        {"", "", ""}};
    for (const auto& [column, extra, selected] : cases) {
        std::string sql = "replaced";
        EXPECT_EQ(FaultConstructSql({column, extra, "T", "P", "10", "20"}, sql), 0U);
        EXPECT_EQ(sql, "select " + selected + rest);
        EXPECT_EQ(FaultConstructFullSql({column, extra, "T", "P", "10", "20"}, sql), 0U);
        EXPECT_EQ(sql,
                  "select curtime, acceptnum, successnum, failednum, retrynum, avgdelay, maxdelay, mindelay, "
                  " errCode0, errCode1, errCode2, errCode3, errCode4 " +
                      rest);
    }
}

using TableCover = DatabaseTest;

TEST_F(TableCover, IsTheSameForBothCallers) {
    const Lines names = {"lumo_data_100", "lumo_data_200", "lumo_data_300"};
    Open({{names[0]}, {names[1]}, {names[2]}});
    const struct {
        int64_t begin, end;
        Lines tables;
        std::string logged;
    } cases[] = {
        {150, 250, {names[0], names[1]}, ""},
        {50, 250, {names[0], names[1]}, ""},
        {350, 400, {names[2]}, ""},
        {50, 150, {names[0]}, ""},
        {100, 300, names, ""},
        {200, 200, {names[1]}, ""},
        {50, 100, {names[0]}, ""},
        {250, 210, {names[1]}, ""},
        {INT64_MIN, INT64_MAX, names, ""},
        {50, 60, {}, "left:-1, right:-1."},
        {99, 99, {}, "left:-1, right:-1."},
        {250, 199, {}, "left:1, right:0."},
        {400, 50, {}, "left:2, right:-1."},
    };
    for (const auto& test : cases) {
        const std::string begin = std::to_string(test.begin);
        const std::string end = std::to_string(test.end);
        SCOPED_TRACE(begin + ".." + end);
        const auto expectLog = [&](const std::string& file) {
            EXPECT_EQ(Agent::TakeLines(),
                      test.logged.empty()
                          ? Lines()
                          : Lines{"4 " + file + " GetCoveredTime: GetCoveredTime index " + test.logged});
        };
        Lines tables;
        EXPECT_EQ(FaultGetQueryTable(begin, end, tables), 0U);
        EXPECT_EQ(tables, test.tables);
        expectLog("fault_database.cpp");
        FaultDetectObject detector;
        EXPECT_EQ(detector.SelectTable(begin, end), 0U);
        EXPECT_EQ(detector.tables, test.tables);
        expectLog("fault_detect_object.cpp");
    }
}

TEST_F(TableCover, GoesByTheCatalogueOrderAndTheLastOfEqualTimes) {
    Open({{"lumo_data_100"}, {"aaaa_data_200"}, {"bbbb_data_200"}, {"lumo_data_150"}});
    Lines tables = {"kept"};
    EXPECT_EQ(FaultGetQueryTable("200", "200", tables), 0U);
    EXPECT_THAT(tables, ElementsAre("kept", "lumo_data_150"));
    std::vector<int32_t> indexes = {7};
    FaultDetectObject().GetCoveredTime({100, 200, 200, 300}, 200, 250, indexes);
    FaultDetectObject().GetCoveredTime({}, 200, 250, indexes);
    EXPECT_THAT(indexes, ElementsAre(7, 2));
}

TEST_F(TableCover, RefusesWhatIsNoTime) {
    Lines tables;
    EXPECT_THROW(FaultGetQueryTable("x", "1", tables), std::invalid_argument);
    EXPECT_THROW(FaultGetQueryTable("1", "9223372036854775808", tables), std::out_of_range);
    EXPECT_EQ(Agent::TakeLines(), Lines());  // no query was made
    const std::string invalid = "5 fault_database.cpp FaultGetQueryTable: invalid lumodata table.";
    EXPECT_EQ(FaultGetQueryTable("1", "2", tables), 1U);
    EXPECT_EQ(Agent::TakeLines().back(), invalid);
    Open({});
    EXPECT_EQ(FaultGetQueryTable("1", "2", tables), 1U);
    EXPECT_EQ(Agent::TakeLines(), Lines{invalid});
    Open({{"lumo_data"}});
    EXPECT_THROW(FaultGetQueryTable("1", "2", tables), std::out_of_range);
    EXPECT_THROW(FaultDetectObject().SelectTable("1", "2"), std::out_of_range);
    for (const char* name : {"lumo_data_", "lumo_data_x1"}) {
        Open({{name}});
        EXPECT_THROW(FaultGetQueryTable("1", "2", tables), std::invalid_argument) << name;
    }
    world.Exec(LUMO_DATABASE_FILE, "UPDATE table_flag SET tablename = NULL");
    EXPECT_THROW(FaultGetQueryTable("1", "2", tables), std::invalid_argument);
    EXPECT_EQ(tables, Lines());
}

TEST(TableCallBack, CollectsEveryCell) {
    const std::pair<FaultRowsCallBack, std::string> callBacks[] = {
        {FaultGetQueryTableCallBack, "3 fault_database.cpp FaultGetQueryTableCallBack"},
        {FaultDetectObject::FaultSelectTableCallBack, "3 fault_detect_object.cpp FaultSelectTableCallBack"}};
    for (const auto& [callBack, site] : callBacks) {
        std::vector<int64_t> unused;
        Lines names;
        EXPECT_EQ(callBack(nullptr, 1, 1, unused, unused, names), 1U);
        EXPECT_EQ(Agent::TakeLines(), Lines{site + ": DB pointer pResult is null."});
        char a[] = "a";
        char b[] = "b";
        char* result[] = {nullptr, nullptr, a, b, b, a};
        EXPECT_EQ(callBack(result, 0, 2, unused, unused, names), 0U);
        EXPECT_EQ(callBack(result, 2, 2, unused, unused, names), 0U);
        EXPECT_THAT(names, ElementsAre("a", "b", "b", "a"));
    }
}

}  // namespace
