#include "fault_spectrum_graph/fault_detect_object.h"

#include <gmock/gmock.h>

#include <climits>
#include <numeric>
#include <stdexcept>

#include "fault_algorithm/fault_anomalydetect.h"
#include "support/database_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Series = std::vector<int64_t>;

const std::string LOG = " fault_detect_object.cpp ";
const std::string READ = "TGT_LUMO_HOST_READ";
const std::string WRITE = "TGT_LUMO_HOST_WRITE";
const std::string CMD = "TGT_LUMO_HOST_CMD";
const std::string NAS = "NAS_TRANS_ALL";

// "point value@time" for each anomaly.
Lines Shown(const std::vector<AnomalyDetectResult>& results) {
    Lines texts;
    for (const AnomalyDetectResult& result : results) {
        texts.push_back(result.extraInfo + result.lumoLocName + " " + std::to_string(result.anomalyValue) +
                        "@" + std::to_string(result.anomalyTime));
    }
    return texts;
}

FaultDetectObject Ready() {
    FaultDetectObject detector;
    detector.InitObject();
    return detector;
}

// `count` tens at times `first`, first + 1, ... with some values replaced.
std::map<std::string, Series> Columns(int64_t first, size_t count,
                                      const std::map<size_t, int64_t>& replaced) {
    Series times(count);
    std::iota(times.begin(), times.end(), first);
    Series delays(count, 10);
    for (const auto& [position, value] : replaced) {
        delays[position] = value;
    }
    return {{"curtime", times}, {"avgdelay", delays}};
}

TEST(DetectObject, ReportsTheWorstOfASeries) {
    const struct {
        const char* what;
        size_t count;
        std::map<size_t, int64_t> replaced;
        const char* expected;
    } cases[] = {
        {"none", 0, {}, ""},
        {"one sample", 1, {{0, 5000}}, ""},
        {"constant", 50, {}, ""},
        {"largest of three", 100, {{20, 500}, {50, 900}, {80, 700}}, "900@1050"},
        {"the earliest of equal ones", 100, {{30, 900}, {70, 900}}, "900@1030"},
        {"a low outlier alone", 100, {{40, -900}}, "-900@1040"},
        {"a low outlier beside a high one", 100, {{40, -900}, {60, 800}}, "800@1060"},
        {"extreme values", 100, {{5, INT64_MAX}}, "9223372036854775807@1005"},
    };
    for (const auto& test : cases) {
        FaultDetectObject detector = Ready();
        detector.data[READ] = Columns(1000, test.count, test.replaced);
        const std::string expected = test.expected;
        EXPECT_EQ(Shown(detector.DoDetect("", "")), expected.empty() ? Lines() : Lines{READ + " " + expected})
            << test.what;
    }
}

TEST(DetectObject, KeepsThePointOrderAndDropsSamplesWithoutATime) {
    FaultDetectObject detector = Ready();
    detector.data[NAS] = Columns(1000, 100, {{99, 900}});
    detector.data[WRITE] = Columns(1000, 100, {{10, 500}, {50, 900}});
    detector.data[WRITE]["curtime"].resize(50);
    detector.data[READ] = {{"avgdelay", Columns(1000, 100, {{10, 500}})["avgdelay"]}};
    EXPECT_THAT(Shown(detector.DoDetect("", "")), ElementsAre(WRITE + " 500@1010", NAS + " 900@1099"));
    detector.DisplayData("unknown", 5);
    EXPECT_EQ(detector.data.size(), 4U);
    detector.data["known"];
    detector.DisplayData("known", 5);
    EXPECT_EQ(detector.data["known"].count("avgdelay"), 1U);
    EXPECT_EQ(Agent::TakeConsole(), "");
    detector.tables = {"t"};
    detector.auxMap["x"] = {"y"};
    detector.InitObject();
    EXPECT_THAT(detector.points, ElementsAre(READ, WRITE, CMD, NAS));
    EXPECT_TRUE(detector.data.empty() && detector.tables.empty() && detector.auxMap.empty());
    detector.ClearData();
    EXPECT_THAT(detector.points, IsEmpty());
}

TEST(DetectObject, SyntheticSeriesHasTwoSpikes) {
    const struct {
        int64_t seconds;
        std::map<size_t, int64_t> spikes;
        bool flagged;
    } cases[] = {
        {-1, {}, false},
        {0, {}, false},
        {1, {{0, 20010}}, false},
        {8, {{2, 20010}, {4, 20010}}, false},
        {20, {{5, 20010}, {10, 20010}}, false},
        {21, {{5, 20010}, {10, 20010}}, true},
        {30, {{7, 20010}, {15, 20010}}, true},
        {2000000, {{500000, 20010}, {1000000, 20010}}, true},
    };
    constexpr int64_t FIRST = 100000 - 28800;  // the zone's offset is taken away
    for (const auto& test : cases) {
        FaultDetectObject detector = Ready();
        detector.TestSqlData("100000", std::to_string(100000 + test.seconds));
        const auto expected =
            Columns(FIRST, static_cast<size_t>(std::max(test.seconds, int64_t{0})), test.spikes);
        Lines anomalies;
        for (const std::string& point : detector.points) {
            EXPECT_TRUE(detector.data[point] == expected) << point << test.seconds;
            anomalies.push_back(point + " 20010@" + std::to_string(FIRST + test.seconds / 4));
        }
        EXPECT_EQ(Shown(detector.DoDetect("", "")), test.flagged ? anomalies : Lines()) << test.seconds;
    }
    EXPECT_THROW(Ready().TestSqlData("0", "2000001"), std::exception);
    EXPECT_THROW(Ready().TestSqlData("-9223372036854700000", "9223372036854775807"), std::exception);
}

// 15:00:00 of 3 August 2021, eight hours east.
constexpr int64_t AT_15 = 1627974000;
constexpr int64_t AT_17 = AT_15 + 7200;

class DetectFromDatabase : public DatabaseTest {
protected:
    FaultDetectObject detector = Ready();
};

TEST_F(DetectFromDatabase, LoadsAllPointsFromTheTablesOfTheRange) {
    const std::string names[] = {"lumo_data_20210803150000", "lumo_data_20210803160000",
                                 "lumo_data_20210803170000"};
    Open({{names[0],
           {{READ, AT_15, 1}, {READ, AT_15 + 60, 2}, {NAS, AT_15 + 61, "'3us'"}, {"OTHER", AT_15, 4}}},
          {names[1], {{READ, AT_15 + 30, "5.9"}, {READ, AT_17, 6}, {NAS, AT_17 + 1, "NULL"}}},
          {names[2], {{READ, AT_17, 7}, {CMD, AT_17 + 2, "'many'"}}},
          {"lumo_data_20210803180000", {{READ, AT_17, 8}}}});
    detector.GetData("20210803150030", "20210803170000");
    EXPECT_THAT(detector.tables, ElementsAre(names[0], names[1], names[2]));
    EXPECT_EQ(detector.data.size(), 4U);
    EXPECT_THAT(detector.data[READ]["curtime"], ElementsAre(AT_15 + 60, AT_15 + 30, AT_17, AT_17));
    EXPECT_THAT(detector.data[READ]["avgdelay"], ElementsAre(2, 5, 6, 7));
    EXPECT_THAT(detector.data[NAS]["avgdelay"], ElementsAre(3));
    EXPECT_THAT(detector.data[WRITE]["curtime"], IsEmpty());
    EXPECT_THAT(Agent::TakeLines(), IsEmpty());
    EXPECT_THROW(detector.GetData("20210803150030", "20210803170001"), std::invalid_argument);
    EXPECT_THROW(detector.GetData("20210803170002", "20210803170002"), std::invalid_argument);
}

TEST_F(DetectFromDatabase, SaysWhyThereIsNoData) {
    Open({{"lumo_data_20210803150000"}});
    detector.GetData("20210803140000", "20210803145959");
    EXPECT_THAT(Agent::TakeLines(),
                ElementsAre("4" + LOG + "GetCoveredTime: GetCoveredTime index left:-1, right:-1."));
    EXPECT_EQ(detector.data.size(), 4U);
    detector = Ready();
    detector.GetData("20210803150000", "202108031500001");
    EXPECT_THAT(Agent::TakeLines(), ElementsAre("5" + LOG + "GetData: TransDateToTime failed."));
    Open({});
    detector.GetData("20210803150000", "20210803160000");
    EXPECT_THAT(Agent::TakeLines(), ElementsAre("5" + LOG + "SelectTable: invalid lumodata table.",
                                                "5" + LOG + "GetData: select table name failed."));
    EXPECT_TRUE(detector.data.empty());
    Series unused;
    Lines texts;
    EXPECT_EQ(FaultDetectObject::FaultDetectQueryCallBack(nullptr, 1, 2, unused, unused, texts), 1U);
    EXPECT_EQ(Agent::TakeLines(),
              Lines{"3" + LOG + "FaultDetectQueryCallBack: invalid input which pResult is null."});
    char cell[] = "1";
    char* oneColumn[] = {cell, cell};
    EXPECT_THROW(FaultDetectObject::FaultDetectQueryCallBack(oneColumn, 1, 1, unused, unused, texts),
                 std::invalid_argument);
}

TEST_F(DetectFromDatabase, OneCompleteRun) {
    std::vector<StatisticsRow> rows;
    for (int i = 0; i < 60; ++i) {
        rows.push_back({CMD, AT_15 + i, i == 31 ? 4000 : 100 + i % 7});
    }
    Open({{"lumo_data_20210803150000", rows}});
    EXPECT_EQ(Shown(anomalyDetect("20210803150000", "20210803160000")), Lines{CMD + " 4000@1627974031"});
    EXPECT_EQ(Shown(anomalyDetect("20210803150000", "20210803150030")), Lines());
    EXPECT_EQ(Shown(anomalyDetect("20210803150000", "2021")), Lines());
    EXPECT_EQ(Agent::TakeLines(),
              Lines{"3 fault_anomalydetect.cpp anomalyDetect: failed to trans date to time"});
}

}  // namespace
