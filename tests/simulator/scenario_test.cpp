// What is planted is what an independent look at the database finds, and nothing else.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "simulator/scenario.h"
#include "tests/simulator/written_world.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Anomaly {
    std::string point;
    int64_t time, value;
};

bool operator==(const Anomaly& left, const Anomaly& right) {
    return left.point == right.point && left.time == right.time && left.value == right.value;
}

std::ostream& operator<<(std::ostream& stream, const Anomaly& anomaly) {
    return stream << anomaly.point << " " << anomaly.time << " " << anomaly.value;
}

// The samples of a point, largest first, earlier before later.
std::vector<Anomaly> SamplesByValue(const Reader& statistics, const std::string& point) {
    std::vector<Anomaly> samples;
    for (const std::string& table : statistics.Tables()) {
        for (const Row& row : statistics.Query("select curtime, avgdelay from " + table +
                                               " where locateid ="
                                               " (select locateid from version_nmaps where locatename = '" +
                                               point + "') order by curtime")) {
            samples.push_back({point, std::stoll(row[0]), std::stoll(row[1])});
        }
    }
    std::stable_sort(samples.begin(), samples.end(),
                     [](const Anomaly& left, const Anomaly& right) { return left.value > right.value; });
    return samples;
}

// The largest sample of each point that hosts see, where it lies more than three deviations off the mean.
std::vector<Anomaly> Anomalies(const Reader& statistics) {
    std::vector<Anomaly> found;
    for (const char* point :
         {"TGT_LUMO_HOST_READ", "TGT_LUMO_HOST_WRITE", "TGT_LUMO_HOST_CMD", "NAS_TRANS_ALL"}) {
        const std::vector<Anomaly> samples = SamplesByValue(statistics, point);
        const auto count = static_cast<long double>(samples.size());
        long double mean = 0;
        for (const Anomaly& sample : samples) {
            mean += static_cast<long double>(sample.value) / count;
        }
        const auto distance = [mean](const Anomaly& sample) {
            return std::fabs(static_cast<long double>(sample.value) - mean);
        };
        long double squares = 0;
        for (const Anomaly& sample : samples) {
            squares += distance(sample) * distance(sample);
        }
        const long double limit = 3 * std::sqrt(squares / (count - 1));
        const auto first = std::find_if(samples.begin(), samples.end(),
                                        [&](const Anomaly& sample) { return distance(sample) > limit; });
        if (first != samples.end()) {
            found.push_back(*first);
        }
    }
    return found;
}

// What the truth says they are.
std::vector<Anomaly> Planted(const Json::Value& truth) {
    const Json::Value& fault = truth["fault"];
    if (fault.isNull() || fault["detector_point"].isNull()) {
        return {};
    }
    return {
        {fault["detector_point"].asString(), fault["peak_epoch"].asInt64(), fault["peak_value"].asInt64()}};
}

class DetectionTest : public ::testing::TestWithParam<std::string> {};

TEST_P(DetectionTest, FindsThePlantedFaultAndNothingElse) {
    const std::pair<int64_t, int64_t> ranges[] = {{1, 10}, {4, 30}, {4, 240}, {24, 120}};  // hours, step
    for (const auto& [hours, step] : ranges) {
        for (uint64_t seed = 1; seed <= 4; ++seed) {
            lumosim::WorldOptions options = Options(GetParam(), seed);
            options.hours = std::max(hours, lumosim::FindScenario(GetParam())->minimumHours);
            options.step = step;
            const WrittenWorld world(options);
            EXPECT_EQ(Planted(world.truth), Anomalies(world.statistics))
                << hours << " h, " << step << " s, seed " << seed;
        }
    }
}

std::vector<std::string> ScenarioNames() {
    std::vector<std::string> names;
    for (const lumosim::Scenario& scenario : lumosim::Scenarios()) {
        names.emplace_back(scenario.name);
    }
    return names;
}

INSTANTIATE_TEST_SUITE_P(EveryScenario, DetectionTest, ::testing::ValuesIn(ScenarioNames()));

TEST(ScenarioTest, TruthNamesWhatWasPlanted) {
    struct Case {
        const char *scenario, *kind, *graph, *point, *detectorPoint;
    };
    const Case cases[] = {
        {"slow-disk", "delay", "SAN_IO_READ", "BDM_DISK_READ", "TGT_LUMO_HOST_READ"},
        {"slow-network", "delay", "SAN_IO_WRITE", "SPACE_IOTUNNEL_UC_ACK_WRITE", "TGT_LUMO_HOST_WRITE"},
        {"nas-slow", "delay", "NAS_IO_NFSV3", "FS_NFSV3_LOG_COMMIT", "NAS_TRANS_ALL"},
        {"error-burst", "error", "ERRCODE_SAN_PROTO", "BDM_DISK_MEDIUM_ERROR", ""},
    };
    for (const Case& one : cases) {
        const WrittenWorld world(Options(one.scenario));
        const Json::Value& fault = world.truth["fault"];
        EXPECT_EQ(one.kind, fault["kind"].asString());
        EXPECT_EQ(one.graph, fault["graph"].asString());
        EXPECT_EQ(one.point, fault["point"].asString());
        EXPECT_EQ(one.detectorPoint, fault["detector_point"].asString());
        EXPECT_EQ(one.point, fault["path"][fault["path"].size() - 1].asString());
        EXPECT_GT(fault["path"].size(), 3U);
        EXPECT_FALSE(fault["advice"].asString().empty());
        EXPECT_LE(fault["start_epoch"].asInt64(), fault["peak_epoch"].asInt64());
        EXPECT_LE(fault["peak_epoch"].asInt64(), fault["end_epoch"].asInt64() + 60);
        EXPECT_THAT(world.statistics.Query("select strftime('%Y%m%d%H%M%S', " +
                                           fault["peak_epoch"].asString() + ", 'unixepoch')"),
                    ElementsAre(ElementsAre(fault["peak_compact"].asString())));
    }
    EXPECT_TRUE(WrittenWorld(Options("healthy")).truth["fault"].isNull());
    // 12:59 on 5 January, without leading zeros.
    EXPECT_EQ("2023/1/5 12:59:0", WrittenWorld(Options("slow-disk")).truth["fault"]["peak_local"].asString());
}

TEST(ScenarioTest, DelayReachesEveryAncestorWeakerAndLastsLonger) {
    for (const char* scenario : {"slow-disk", "slow-network", "nas-slow"}) {
        const WrittenWorld world(Options(scenario));
        const Json::Value& fault = world.truth["fault"];
        const std::string start = fault["start_epoch"].asString();
        const std::string end = fault["end_epoch"].asString();
        const auto average = [&](const std::string& point, const std::string& when) {
            return std::stod(world.statistics.Value("select avg(avgdelay) from " +
                                                    world.statistics.AllRows() + " where locatename = '" +
                                                    point + "' and curtime " + when));
        };
        double below = 0;
        for (Json::ArrayIndex i = fault["path"].size(); i-- > 0;) {
            const std::string point = fault["path"][i].asString();
            const double usual = average(point, "< " + start);
            const double excess = average(point, "between " + start + " and " + end) - usual;
            EXPECT_GT(excess, usual / 2) << point;
            EXPECT_TRUE(below == 0 || excess < below) << point;
            EXPECT_EQ(below != 0, average(point, "= " + end + " + 30") > usual * 1.2) << point;
            below = excess;
        }
    }
}

TEST(ScenarioTest, ErrorsStandAtThePathAndNowhereElse) {
    const WrittenWorld world(Options("error-burst"));
    const Json::Value& fault = world.truth["fault"];
    const auto errors = [&](const std::string& point) {
        return std::stoll(world.statistics.Value("select sum(errCode0) from " + world.statistics.AllRows() +
                                                 " where locatename = '" + point + "'"));
    };
    int64_t above = 0;
    for (const Json::Value& point : fault["path"]) {
        EXPECT_GT(errors(point.asString()), above) << point;
        above = errors(point.asString());
    }
    EXPECT_EQ(errors("TGT_ERRCODE_READ"), errors("TGT_LUMO_HOST_READ"));
    // The path, and the point that the atomic node on it is counted by.
    EXPECT_EQ(std::to_string(fault["path"].size() + 1),
              world.statistics.Value("select count(distinct locateid) from " + world.statistics.AllRows() +
                                     " where errCode0 > 0"));
    EXPECT_EQ(fault["peak_value"].asString(),
              world.statistics.Value("select max(errCode0) from " + world.statistics.AllRows()));
    const WrittenWorld healthy(Options("healthy"));
    EXPECT_EQ("0", healthy.statistics.Value("select sum(errCode0) from " + healthy.statistics.AllRows()));
}

TEST(ScenarioTest, HealEventsOfTheTruthAreThoseThatANodeFinds) {
    const WrittenWorld world(Options("healed"));
    std::vector<Row> reported;
    for (const Json::Value& event : world.truth["heal_events"]) {
        reported.push_back({event["healtime"].asString(), event["modulename"].asString(),
                            event["healcause"].asString(), event["infercause"].asString()});
    }
    EXPECT_EQ(2U, reported.size());
    EXPECT_EQ(reported,
              world.heals.Query("select healtime, modulename, healcause, infercause from fault_heal_event"
                                " where healtime >= " +
                                world.truth["start"].asString() +
                                " and healtime <= " + world.truth["end"].asString() +
                                " and nodeid = 1 and (healcause == 'IOHANG' or healcause == 'IOERR')"));
    for (const char* decoy :
         {"nodeid != 1", "healcause not in ('IOHANG', 'IOERR')", "healtime < 20230105000000"}) {
        EXPECT_EQ("1",
                  world.heals.Value(std::string("select count(*) from fault_heal_event where ") + decoy));
    }
    EXPECT_EQ("0", WrittenWorld(Options("slow-disk")).heals.Value("select count(*) from fault_heal_event"));
}

TEST(ScenarioTest, GapsAndConstantsAreThere) {
    const WrittenWorld gaps(Options("gaps"));
    const auto count = [](const WrittenWorld& world, const std::string& table) {
        return std::stoll(world.statistics.Value("select count(*) from " + table));
    };
    const WrittenWorld whole(Options("slow-disk"));
    const auto tables = whole.statistics.Tables();
    EXPECT_EQ(tables, gaps.statistics.Tables());
    EXPECT_EQ(0, count(gaps, tables[1]));
    EXPECT_LT(count(gaps, gaps.statistics.AllRows()), count(whole, whole.statistics.AllRows()) * 3 / 4);

    const WrittenWorld constant(Options("constant"));
    const auto changing = [&](const char* condition) {
        return constant.statistics.Query("select locatename from " + constant.statistics.AllRows() +
                                         " group by locateid having " + condition);
    };
    EXPECT_THAT(changing("locatename = 'TGT_LUMO_HOST_CMD' and (min(avgdelay) < max(avgdelay)"
                         " or min(acceptnum) < max(acceptnum) or min(maxdelay) < max(maxdelay))"),
                IsEmpty());
    EXPECT_EQ(6U, changing("min(avgdelay) = max(avgdelay)").size());
}

}  // namespace
