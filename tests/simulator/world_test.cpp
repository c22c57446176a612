// The files of a world: same for the same options, laid out as readers expect, replaced as a whole.
#include <gmock/gmock.h>

#include "tests/simulator/written_world.h"

namespace {

using ::testing::ElementsAre;

// Everything that a diagnosis can get to know of a world.
std::string Contents(const WrittenWorld& world) {
    std::string text = FileText(world.folder->path.string() + ZORV_ROUTE_CONFIG_FILE);
    const auto append = [&](const Reader& reader, const std::string& table) {
        for (const Row& row : reader.Query("select * from " + table)) {
            for (const std::string& cell : row) {
                text += cell + "|";
            }
        }
    };
    append(world.heals, "fault_heal_event");
    append(world.statistics, "table_flag");
    append(world.statistics, "version_nmaps");
    for (const std::string& table : world.statistics.Tables()) {
        append(world.statistics, table);
    }
    return text;
}

TEST(WorldTest, SameOptionsSameWorld) {
    for (const char* scenario : {"healed", "gaps", "error-burst"}) {
        const WrittenWorld first(Options(scenario, 7));
        const WrittenWorld again(Options(scenario, 7));
        EXPECT_TRUE(Contents(first) == Contents(again)) << scenario;
        EXPECT_EQ(FileText(first.folder->path / "truth.json"), FileText(again.folder->path / "truth.json"));
        EXPECT_FALSE(Contents(first) == Contents(WrittenWorld(Options(scenario, 8)))) << scenario;
    }
}

TEST(WorldTest, SchemaIsTheOneThatReadersKnow) {
    const WrittenWorld world(Options("healthy"));
    const Reader& data = world.statistics;
    const auto columns = [](const Reader& reader, const std::string& table) {
        return reader.Value("select group_concat(name, ' ') from pragma_table_info('" + table + "')");
    };
    EXPECT_EQ("tablename reporttime", columns(data, "table_flag"));
    EXPECT_EQ("locateid locatename", columns(data, "version_nmaps"));
    EXPECT_EQ("healtime modulename healcause infercause nodeid", columns(world.heals, "fault_heal_event"));
    for (const std::string& table : data.Tables()) {
        EXPECT_EQ(
            "locateid curtime acceptnum successnum failednum retrynum avgdelay maxdelay mindelay "
            "errCode0 errCode1 errCode2 errCode3 errCode4",
            columns(data, table));
        EXPECT_EQ("locateid curtime",
                  data.Value("select group_concat(info.name, ' ') from pragma_index_list('" + table +
                             "') as list, pragma_index_info(list.name) as info"));
    }
    EXPECT_EQ("delete", data.Value("pragma journal_mode"));
    EXPECT_EQ("ok", data.Value("pragma integrity_check"));
}

TEST(WorldTest, TablesAreNamedByLocalTimeAndHoldTheirHour) {
    for (const int64_t zone : {int64_t{0}, int64_t{28800}, int64_t{-10800}}) {
        lumosim::WorldOptions options = Options("slow-disk");
        options.hours = 2;
        options.zoneOffset = zone;
        const WrittenWorld world(options);
        const std::string hour = zone == 0 ? "12" : zone > 0 ? "20" : "09";
        const auto tables = world.statistics.Tables();
        ASSERT_EQ(3U, tables.size());
        EXPECT_EQ("lumo_data_20230105" + hour + "3000", tables[0]);
        EXPECT_EQ("20230105" + hour + "3000", world.truth["start"].asString());
        const auto range = [&](const std::string& table) {
            return world.statistics.Query("select min(curtime), max(curtime) from " + table).at(0);
        };
        const int64_t start = WORLD_END - 7200;
        EXPECT_THAT(range(tables[0]), ElementsAre(std::to_string(start), std::to_string(start + 1770)));
        EXPECT_THAT(range(tables[1]),
                    ElementsAre(std::to_string(start + 1800), std::to_string(start + 5370)));
        EXPECT_THAT(range(tables[2]),
                    ElementsAre(std::to_string(start + 5400), std::to_string(WORLD_END - 30)));
    }
}

TEST(WorldTest, RowsMakeSense) {
    for (const char* scenario : {"slow-disk", "error-burst", "constant"}) {
        const WrittenWorld world(Options(scenario));
        const std::string rows = "select count(*) from " + world.statistics.AllRows();
        for (const char* impossible :
             {"mindelay > avgdelay or avgdelay > maxdelay or mindelay < 1",
              "successnum + failednum != acceptnum", "failednum != errCode0 + errCode2 + errCode3 + errCode4",
              "retrynum != errCode1", "successnum < 0",
              "instr(locatename, 'OB_') > 0 and acceptnum + successnum > 0",
              "instr(locatename, 'OB_') = 0 and acceptnum < 1"}) {
            EXPECT_EQ("0", world.statistics.Value(rows + " where " + impossible))
                << scenario << ": " << impossible;
        }
        EXPECT_NE("0", world.statistics.Value(rows + " where retrynum > 0"));
        EXPECT_EQ("0", world.statistics.Value(
                           "select count(*) - count(distinct locateid * 10000000000 + curtime) from " +
                           world.statistics.AllRows()));
    }
}

TEST(WorldTest, LoadFollowsTheDay) {
    lumosim::WorldOptions options = Options("healthy");
    options.hours = 24;
    options.step = 300;
    const WrittenWorld world(options);
    const auto accepted = [&](const std::string& hour) {
        return std::stoll(world.statistics.Value("select sum(acceptnum) from " + world.statistics.AllRows() +
                                                 " where locatename = 'TGT_LUMO_HOST_READ'"
                                                 " and strftime('%H', curtime, 'unixepoch') = '" +
                                                 hour + "'"));
    };
    EXPECT_GT(accepted("13"), accepted("01") * 3 / 2);
    EXPECT_GT(accepted("10"), accepted("06"));
}

TEST(WorldTest, ReplacesAWorldUnderARunningReader) {
    WrittenWorld world(Options("slow-disk"));
    const std::string path = world.folder->path.string() + LUMO_DATABASE_FILE;
    std::ofstream(path + "-journal") << "left by a killed producer";
    std::ofstream(path + ".new") << "left by a killed simulator";

    lumosim::WorldOptions options = Options("healthy", 3);
    options.root = world.folder->path;
    lumosim::WriteWorld(options, [](double) {});

    EXPECT_FALSE(std::filesystem::exists(path + "-journal"));
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
    const std::string heldOpen =
        world.statistics.Value("select sum(avgdelay) from " + world.statistics.AllRows());
    const Reader again(path);
    EXPECT_NE(heldOpen, again.Value("select sum(avgdelay) from " + again.AllRows()));
    EXPECT_EQ("healthy", ReadJson(world.folder->path / "truth.json")["scenario"].asString());
}

TEST(WorldTest, FailureLeavesTheOldWorld) {
    const WrittenWorld world(Options("slow-disk"));
    const std::string before = Contents(world);
    const std::string truth = FileText(world.folder->path / "truth.json");
    lumosim::WorldOptions options = Options("healthy", 3);
    options.root = world.folder->path;
    const auto fail = [](double) { throw std::runtime_error("the disk is full"); };
    EXPECT_THROW(lumosim::WriteWorld(options, fail), std::runtime_error);
    EXPECT_TRUE(before == Contents(world));
    EXPECT_EQ(truth, FileText(world.folder->path / "truth.json"));
    for (const auto& entry : std::filesystem::recursive_directory_iterator(world.folder->path)) {
        EXPECT_NE(".new", entry.path().extension()) << entry.path();
    }
}

}  // namespace
