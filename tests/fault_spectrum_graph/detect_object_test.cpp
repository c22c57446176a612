#include "fault_spectrum_graph/fault_detect_object.h"

#include <numeric>

#include "fault_algorithm/fault_anomalydetect.h"
#include "support/database_test.h"

namespace {

using Series = std::vector<int64_t>;

const std::string READ = "TGT_LUMO_HOST_READ";
const std::string WRITE = "TGT_LUMO_HOST_WRITE";
const std::string NAS = "NAS_TRANS_ALL";

// "point value@time" for each anomaly.
Lines Shown(const std::vector<AnomalyDetectResult>& results) {
    Lines texts;
    for (const auto& [extra, point, value, time] : results) {
        texts.push_back(extra + point + " " + std::to_string(value) + "@" + std::to_string(time));
    }
    return texts;
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

struct DetectObject : DatabaseTest {
    DetectObject() { detector.InitObject(); }
    FaultDetectObject detector;
};

// The largest value that lies far off on either side; of equal ones the earliest.
TEST_F(DetectObject, ReportsTheWorstOfEachSeries) {
    const std::tuple<size_t, std::map<size_t, int64_t>, std::string> cases[] = {
        {0, {}, ""},
        {1, {{0, 5000}}, ""},
        {50, {}, ""},
        {100, {{20, 500}, {50, 900}, {80, 700}}, " 900@1050"},
        {100, {{30, 900}, {70, 900}}, " 900@1030"},
        {100, {{40, -900}}, " -900@1040"},
        {100, {{40, -900}, {60, 800}}, " 800@1060"},
        {100, {{5, INT64_MAX}}, " 9223372036854775807@1005"}};
    for (const auto& [count, replaced, expected] : cases) {
        detector.InitObject();
        detector.data[READ] = Columns(1000, count, replaced);
        EXPECT_EQ(Shown(detector.DoDetect("", "")), expected.empty() ? Lines() : Lines{READ + expected});
    }
    // In the points' order; samples without a time count for the mean alone.
    detector.data[NAS] = Columns(1000, 100, {{99, 900}});
    detector.data[WRITE] = Columns(1000, 100, {{10, 500}, {50, 900}});
    detector.data[WRITE]["curtime"].resize(50);
    detector.data[READ].erase("curtime");
    EXPECT_EQ(Shown(detector.DoDetect("", "")), (Lines{WRITE + " 500@1010", NAS + " 900@1099"}));
}

TEST_F(DetectObject, SyntheticSeriesHasTwoSpikes) {
    constexpr int64_t FIRST = 100000 - 28800;  // the zone's offset is taken away
    for (const int64_t seconds : {-1, 0, 1, 20, 21, 2000000}) {
        detector.InitObject();
        detector.TestSqlData("100000", std::to_string(100000 + seconds));
        const auto count = static_cast<size_t>(std::max(seconds, int64_t{0}));
        std::map<size_t, int64_t> spikes = {{count / 2, 20010}, {count / 4, 20010}};
        spikes.erase(count);  // the empty series has none
        Lines anomalies;
        for (const std::string& point : detector.points) {
            EXPECT_TRUE(detector.data[point] == Columns(FIRST, count, spikes)) << point << seconds;
            anomalies.push_back(point + " 20010@" + std::to_string(FIRST + seconds / 4));
        }
        EXPECT_EQ(Shown(detector.DoDetect("", "")), seconds > 20 ? anomalies : Lines()) << seconds;
    }
    EXPECT_THROW(detector.TestSqlData("0", "2000001"), std::length_error);
    EXPECT_THROW(detector.TestSqlData("-9223372036854700000", "9223372036854775807"), std::length_error);
}

TEST_F(DetectObject, SaysWhyThereIsNoData) {
    const std::string log = " fault_detect_object.cpp ";
    Open({{"lumo_data_20210803150000"}});
    detector.GetData("20210803150000", "202108031500001");
    EXPECT_LOGGED("5" + log + "GetData: TransDateToTime failed.");
    EXPECT_EQ(Shown(anomalyDetect("20210803150000", "2021")), Lines());
    EXPECT_LOGGED("3 fault_anomalydetect.cpp anomalyDetect: failed to trans date to time");
    Open({});
    EXPECT_EQ(Shown(anomalyDetect("20210803150000", "20210803160000")), Lines());
    EXPECT_LOGGED("5" + log + "SelectTable: invalid lumodata table.",
                  "5" + log + "GetData: select table name failed.");
    Series unused;
    Lines texts;
    char cell[] = "1";
    char* oneColumn[] = {cell, cell};
    EXPECT_EQ(FaultDetectObject::FaultDetectQueryCallBack(nullptr, 1, 2, unused, unused, texts), 1U);
    EXPECT_THROW(FaultDetectObject::FaultDetectQueryCallBack(oneColumn, 1, 1, unused, unused, texts),
                 std::invalid_argument);
}

}  // namespace
