// What is planted is what an independent look at the database finds, and nothing else.
#include "simulator/plan/scenario.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <tuple>

#include "tests/simulator/written_world.h"

namespace {

using ::testing::IsEmpty;

// Of each point that hosts see, the first largest of the samples beyond three deviations off the mean, and of
// all failures the most.
constexpr char ANOMALIES[] = R"(
    with centred as (
        select *, avgdelay - avg(avgdelay) over point as distance, count(*) over point as number from samples
        where locatename in
            ('TGT_LUMO_HOST_READ', 'TGT_LUMO_HOST_WRITE', 'TGT_LUMO_HOST_CMD', 'NAS_TRANS_ALL')
        window point as (partition by locatename)),
    spread as (
        select *, sum(distance * distance) over (partition by locatename) / (number - 1) as variance
        from centred),
    ranked as (
        select *, row_number() over (partition by locatename order by avgdelay desc, curtime) as place
        from spread where distance * distance > 9 * variance)
    select locatename, curtime, avgdelay from ranked where place = 1
    union all select * from (
        select locatename, curtime, errCode0 from samples where errCode0 > 0 order by 3 desc, 2 limit 1))";

constexpr char IMPOSSIBLE_ROWS[] = R"(
    select * from samples where mindelay > avgdelay or avgdelay > maxdelay or mindelay < 1
        or successnum + failednum != acceptnum or successnum < 0
        or failednum != errCode0 + errCode2 + errCode3 + errCode4 or retrynum != errCode1
        or (instr(locatename, 'OB_') > 0) != (acceptnum = 0)
    union all select * from samples group by locateid, curtime having count(*) > 1)";

// Samples in which the planted point is slow though the truth does not say so, or is not though it does:
// after the first quarter of a fault, which may grow.
constexpr char WRONG_TIMES[] = R"(
    with planted as materialized (
        select fault->>'point' as locatename, fault->>'ongoing' as ongoing, truth->>'scenario' = 'ramp' as grows,
            fault->>'start_epoch' * 0.75 + fault->>'end_epoch' * 0.25 as grown
        from json where fault->>'kind' = 'delay'),
    times as materialized (
        select value->>'start_epoch' as first, value->>'end_epoch' as last from json, json_each(fault, '$.times')),
    point as (
        select curtime, avgdelay > 3 * min(avgdelay) over () as isBad, grows and curtime < grown as mayBeGood, ongoing,
            exists(select * from times where curtime between first and last) as isTold
        from planted join samples using (locatename))
    select curtime from point where isBad > isTold or isBad < isTold and not mayBeGood
    union all select max(curtime) from point
        group by ongoing having (max(curtime * isTold) = max(curtime)) != ongoing)";

TEST(ScenarioTest, TruthIsWhatAnIndependentLookFinds) {
    const std::tuple<uint64_t, int64_t, int64_t> ranges[] = {{1, 1, 30}, {2, 4, 240}, {3, 24, 300}};
    for (const lumosim::Scenario& scenario : lumosim::Scenarios()) {
        for (const auto& [seed, hours, step] : ranges) {
            const std::string name(scenario.name);
            SCOPED_TRACE(name + ", seed " + std::to_string(seed));
            const WrittenWorld world(Options(name, seed, std::max(hours, scenario.minimumHours),
                                             std::clamp(10 * scenario.minimumHours, step, int64_t{300})));
            EXPECT_EQ(world.Query("select ifnull(fault->>'detector_point', fault->>'point'),"
                                  " fault->>'peak_epoch', fault->>'peak_value' from json"
                                  " where fault != 'null' and fault->>'flagged' is not 0"),
                      world.Query(ANOMALIES));
            // The path, and the point that the atomic node on it is counted by.
            EXPECT_EQ(world.Query(
                          "select value from json, json_each(fault, '$.path') where fault->>'kind' = 'error'"
                          " union select 'TGT_LUMO_HOST_READ' from json where fault->>'kind' = 'error'"),
                      world.Query("select distinct locatename from samples where errCode0 > 0 order by 1"));
            EXPECT_EQ(world.Query("select value->>'healtime', value->>'modulename', value->>'healcause',"
                                  " value->>'infercause', value->>'nodeid'"
                                  " from json, json_each(truth, '$.heal_events')"),
                      world.Query("select event.* from fault_heal_event as event, json where nodeid = 1"
                                  " and healcause in ('IOHANG', 'IOERR') and healtime between"
                                  " cast(truth->>'start' as integer) and cast(truth->>'end' as integer)"));
            EXPECT_THAT(world.Query(IMPOSSIBLE_ROWS), IsEmpty());
            EXPECT_THAT(world.Query(WRONG_TIMES), IsEmpty());
        }
    }
}

// Where the fault does not stand out, is not weaker than below, or does not outlast what is below.
constexpr char WRONG_ANCESTORS[] = R"(
    with path as (
        select key as depth, value as point, fault->>'start_epoch' as first, fault->>'end_epoch' as last,
            fault->>'kind' as kind from json, json_each(fault, '$.path')),
    reading as (
        select *, case kind when 'delay' then avgdelay else errCode0 end as value
        from path join samples on locatename = point),
    level as (
        select depth, point, avg(value) filter (where curtime < first) as usual,
            avg(value) filter (where curtime between first and last) as bad,
            avg(value) filter (where curtime = last + 30) as after
        from reading group by depth)
    select * from level left join level as below on below.depth = level.depth + 1
    where level.bad <= 1.5 * level.usual or level.bad - level.usual >= below.bad - below.usual
        or (level.after > 1.2 * level.usual) != (below.depth is not null))";

// Points outside of the path that the fault has reached.
constexpr char OTHERS[] = R"(
    select group_concat(locatename) from (
        select locatename, case fault->>'kind' when 'delay' then avgdelay else errCode0 end as value,
            curtime between fault->>'start_epoch' and fault->>'end_epoch' as isBad
        from samples, json where locatename not in (select value from json_each(fault, '$.path'))
        group by 1 having avg(value) filter (where isBad) > 1.5 * avg(value) filter (where not isBad)))";

constexpr char PLANTED[] = R"(
    select fault->>'kind', fault->>'graph', fault->>'detector_point', fault->>'$.path[#-1]' from json
    where fault->>'point' = fault->>'$.path[#-1]' and json_array_length(fault, '$.path') > 2
        and (fault->>'advice' != '' or fault->>'answer' != fault->>'point')
        and fault->>'peak_compact' = strftime('%Y%m%d%H%M%S', fault->>'peak_epoch', 'unixepoch'))";

TEST(ScenarioTest, FaultsReachEveryAncestorWeakerAndLater) {
    const std::tuple<const char*, Row, const char*> cases[] = {
        {"slow-disk", {"delay", "SAN_IO_READ", "TGT_LUMO_HOST_READ", "BDM_DISK_READ"}, "NULL"},
        {"slow-network",
         {"delay", "SAN_IO_WRITE", "TGT_LUMO_HOST_WRITE", "SPACE_IOTUNNEL_UC_ACK_WRITE"},
         "NULL"},
        {"nas-slow", {"delay", "NAS_IO_NFSV3", "NAS_TRANS_ALL", "FS_NFSV3_LOG_COMMIT"}, "NULL"},
        {"locked-volume", {"delay", "SAN_IO_CMD", "TGT_LUMO_HOST_CMD", "SPACE_BLOCK_LUN_ALL_LOCK"}, "NULL"},
        {"slow-pool", {"delay", "POOL_READ", "TGT_LUMO_HOST_READ", "BDM_POOL_DISK_READ"}, "NULL"},
        {"long-queue", {"delay", "SAN_IO_READ", "TGT_LUMO_HOST_READ", "BDM_OB_DISK_QUEUE_READ"}, "NULL"},
        {"equal-points",
         {"delay", "SAN_IO_READ", "TGT_LUMO_HOST_READ", "SPACE_IOTUNNEL_UC_RSP_READ"},
         "SPACE_IOTUNNEL_UC_ACK_READ"},
        {"error-burst",
         {"error", "ERRCODE_SAN_PROTO", "NULL", "BDM_DISK_MEDIUM_ERROR"},
         "TGT_LUMO_HOST_READ"},
    };
    for (const auto& [scenario, planted, others] : cases) {
        const WrittenWorld world(Options(scenario));
        EXPECT_EQ(planted, world.Query(PLANTED).at(0));
        EXPECT_THAT(world.Query(WRONG_ANCESTORS), IsEmpty()) << scenario;
        EXPECT_EQ(others, world.Value(OTHERS)) << scenario;
    }
}

// How many times as slow and as busy each point is during the fault as else.
constexpr char CHANGES[] = R"(
    create temp view changes as select locatename as point, avg(avgdelay) filter (where curtime between first and last) as delay,
        avg(avgdelay) filter (where curtime between first and last) / avg(avgdelay) as slower,
        avg(acceptnum) filter (where curtime between first and last) / avg(acceptnum) as busier
    from samples, (select fault->>'start_epoch' as first, fault->>'end_epoch' as last from json) group by 1)";

TEST(ScenarioTest, ExplanationsAreWhatTheStatisticsSay) {
    const std::pair<const char*, const char*> cases[] = {
        {"flat-parent", R"(sum(slower = 1 and busier = 1) = 1 and sum(slower > 1.5) = 3
            from json, json_each(fault, '$.path') join changes on value = point)"},
        {"two-faults", R"(sum(slower > 5) = 2 and min(delay) filter (where key = 0) > 1.5 * max(delay)
            filter (where key = 1) from json, json_each(truth, '$.explain.points') join changes on value = point)"},
        {"load-surge", R"(sum(slower > 1.5) = 22 and sum(busier > 2) = 19 and max(slower) filter
            (where slower < 1.5) < 1.1 and max(busier) filter (where busier < 2) < 1.1 from changes)"},
        {"flapping", "json_array_length(fault, '$.times') = 3 from json"},
        {"begun-before",
         "truth->>'start_epoch' between fault->>'start_epoch' + 1 and fault->>'end_epoch' from json"},
        {"outlier", "fault->>'peak_epoch' = truth->>'$.other_faults[0].start_epoch' from json"},
        {"daily-curve",
         "max(avgdelay) > 1.6 * min(avgdelay) from samples where locatename = 'TGT_LUMO_HOST_WRITE'"},
        {"old-spike", R"(fault->>'peak_epoch' < fault->>'start_epoch' - 6 * 3600
            and fault->>'peak_value' > 2 * delay from json, changes where point = 'TGT_LUMO_HOST_READ')"},
    };
    for (const auto& [scenario, isRight] : cases) {
        const WrittenWorld world(Options(scenario, 42, lumosim::FindScenario(scenario)->minimumHours, 60));
        world.Query(CHANGES);
        EXPECT_EQ("1", world.Value(std::string("select ") + isRight)) << scenario;
    }
}

TEST(ScenarioTest, HealEventsHaveDecoys) {
    const WrittenWorld world(Options("healed"));
    EXPECT_EQ("2", world.Value("select json_array_length(truth, '$.heal_events') from json"));
    EXPECT_EQ("1",
              world.Value("select sum(nodeid != 1) = 1 and sum(healcause not in ('IOHANG', 'IOERR')) = 1"
                          " and sum(healtime < 20230105000000) = 1 and sum(healtime > 20230106000000) = 1"
                          " from fault_heal_event"));
    // Eight minutes past two, as people read it.
    EXPECT_EQ("2023/1/5 14:8:0", world.Value("select truth->>'$.fault.peak_local' from json"));
}

constexpr char CONSTANT_POINTS[] = R"(
    select locatename from samples group by 1 having min(avgdelay) = max(avgdelay)
        and min(maxdelay) = max(maxdelay) and min(acceptnum) = max(acceptnum))";

TEST(ScenarioTest, GapsConstantsAndTwinsAreThere) {
    const WrittenWorld gaps(Options("gaps", 42, 4, 60));
    EXPECT_EQ("0", gaps.Value("select count(*) from " + gaps.tables.at(1)));
    gaps.Query(
        "create temp view instants as select curtime,"
        " count(*) = (select count(*) from version_nmaps) as whole from samples group by 1");
    // More than the hour is missing, and single rows; nothing within eight minutes of the fault.
    EXPECT_EQ("1", gaps.Value("select count(*) < 240 - 60 and sum(not whole) > 50 from instants"));
    EXPECT_EQ("18", gaps.Value("select sum(whole) from instants, json where curtime between"
                               " fault->>'start_epoch' - 480 and fault->>'end_epoch' + 480"));

    const auto constant = WrittenWorld(Options("constant")).Query(CONSTANT_POINTS);
    EXPECT_EQ(6U, constant.size());
    EXPECT_THAT(constant, ::testing::Contains(Row({"TGT_LUMO_HOST_CMD"})));

    const WrittenWorld twins(Options("equal-points"));
    EXPECT_EQ("120",
              twins.Value("select count(distinct avgdelay || ' ' || maxdelay || ' ' || acceptnum || curtime)"
                          " from samples where locatename like 'SPACE_IOTUNNEL_UC_%_READ'"));
}

}  // namespace
