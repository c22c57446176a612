// The files of a world: same for the same options, laid out as readers expect, replaced as a whole.
#include <algorithm>
#include <map>

#include "tests/simulator/written_world.h"

namespace {

// Every file below a folder, by its path there.
std::map<std::string, std::string> Files(const TemporaryFolder& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path)) {
        if (entry.is_regular_file()) {
            files[entry.path().string().substr(folder.path.string().size())] = FileText(entry.path());
        }
    }
    return files;
}

TEST(WorldTest, SameOptionsSameWorld) {
    for (const char* scenario : {"healed", "error-burst"}) {
        const auto files = Files(WrittenWorld(Options(scenario, 7)));
        EXPECT_EQ(4U, files.size());
        EXPECT_TRUE(files == Files(WrittenWorld(Options(scenario, 7)))) << scenario;
        const auto others = Files(WrittenWorld(Options(scenario, 8)));
        EXPECT_FALSE(files.at(LUMO_DATABASE_FILE) == others.at(LUMO_DATABASE_FILE)) << scenario;
    }
}

TEST(WorldTest, CirclesInAGraphChangeNoStatistics) {
    const auto files = Files(WrittenWorld(Options("slow-disk")));
    for (const char* scenario : {"graph-circle", "self-handover"}) {
        const auto others = Files(WrittenWorld(Options(scenario)));
        EXPECT_TRUE(files.at(LUMO_DATABASE_FILE) == others.at(LUMO_DATABASE_FILE)) << scenario;
        EXPECT_FALSE(files.at(ZORV_ROUTE_CONFIG_FILE) == others.at(ZORV_ROUTE_CONFIG_FILE)) << scenario;
    }
}

TEST(WorldTest, IsLaidOutAsReadersExpect) {
    lumosim::WorldOptions options = Options("healthy", 42, 2, 60);
    options.zoneOffset = 28800;
    const WrittenWorld world(options);
    const auto columns = [&](const std::string& table) {
        return world.Value("select group_concat(name, ' ') from pragma_table_info('" + table + "')");
    };
    EXPECT_EQ("delete", world.Value("pragma journal_mode"));
    EXPECT_NE("0", world.Value("select sum(retrynum) from samples"));
    EXPECT_EQ("tablename reporttime", columns("table_flag"));
    EXPECT_EQ("locateid locatename", columns("version_nmaps"));
    EXPECT_EQ("healtime modulename healcause infercause nodeid", columns("fault_heal_event"));

    // A table is named by the local time of its first row.
    EXPECT_EQ(Row({"lumo_data_20230105203000", "lumo_data_20230105210000", "lumo_data_20230105220000"}),
              world.tables);
    int64_t start = WORLD_END - 7200;
    for (const std::string& table : world.tables) {
        EXPECT_EQ(
            "locateid curtime acceptnum successnum failednum retrynum avgdelay maxdelay mindelay "
            "errCode0 errCode1 errCode2 errCode3 errCode4",
            columns(table));
        EXPECT_EQ("locateid curtime",
                  world.Value("select group_concat(info.name, ' ') from pragma_index_list('" + table +
                              "') as list, pragma_index_info(list.name) as info"));
        const int64_t end = std::min((start / 3600 + 1) * 3600, WORLD_END);
        EXPECT_EQ(Row({std::to_string(start), std::to_string(end - 60)}),
                  world.Query("select min(curtime), max(curtime) from " + table).at(0));
        start = end;
    }
}

TEST(WorldTest, IsReplacedAsAWholeUnderARunningReader) {
    const WrittenWorld world(Options("slow-disk"));
    const lumosim::WorldOptions options = Options("healthy", 3);
    const char* const sum = "select sum(avgdelay) from samples";
    const std::string usual = world.Value(sum);
    const auto before = Files(world);
    const auto fail = [](double) { throw std::runtime_error("the disk is full"); };
    EXPECT_THROW(Write(world.path, options, fail), std::runtime_error);
    EXPECT_TRUE(before == Files(world));

    const std::string database = world.path.string() + LUMO_DATABASE_FILE;
    std::ofstream(database + "-journal") << "left by a killed producer";
    std::ofstream(database + ".lumo-sim-a1B2c3") << "left by a killed simulator";
    Write(world.path, options);
    EXPECT_TRUE(Files(WrittenWorld(options)) == Files(world));
    EXPECT_EQ(usual, world.Value(sum));
}

}  // namespace
