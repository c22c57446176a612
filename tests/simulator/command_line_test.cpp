// lumo-sim as its users run it.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include "tests/simulator/written_world.h"

namespace {

using ::testing::HasSubstr;

struct Outcome {
    int status;
    std::string output, errors;
};

Outcome RunTool(const TemporaryFolder& folder, const std::string& arguments) {
    const std::string command =
        "cd " + folder.path.string() + " && " LUMO_SIM " " + arguments + " >out 2>err";
    const int result = std::system(command.c_str());
    return {WEXITSTATUS(result), FileText(folder.path / "out"), FileText(folder.path / "err")};
}

TEST(CommandLineTest, AnswersWithoutWritingAWorld) {
    struct Case {
        const char* arguments;
        int status;
        const char* answer;
    };
    const Case cases[] = {
        {"--help", 0, "lumo-sim --root /tmp/world --scenario nas-slow"},
        {"--list", 0, "error-burst   A data disk has unreadable sectors"},
        {"", 2, "--root DIR is missing"},
        {"--root w surplus", 2, "surplus"},
        {"--root w --scenario slow-dsk", 2, "did you mean slow-disk"},
        {"--root w --scenario quite-another-thing", 2, "no scenario \"quite-another-thing\" (--list"},
        {"--root w --scenario error-burst --error-type IORERTY", 2, "did you mean IORETRY?"},
        {"--root w --scenario error-burst --error-point BDM_DISK_ABORT", 2, "did you mean BDM_DISK_ABORTED?"},
        {"--root w --scenario error-burst --error-point MODULE_FS", 2, "no point with errors \"MODULE_FS\""},
        {"--root w --error-type IOERROR", 2, "are for scenarios with errors, not for slow-disk"},
        {"--root w --hours 0", 2, "--hours must be from 1 to 168, not 0"},
        {"--root w --step 301", 2, "--step must be from 1 to 300, not 301"},
        {"--root w --hours 1 --step 120", 2, "make 30 samples per point"},
        {"--root w --hours 168 --step 1", 2, "make 604800 samples per point"},
        {"--root w --scenario gaps --hours 3", 2, "needs at least 4 hours"},
        {"--root w --seed 18446744073709551616", 2, "--seed"},
        {"--root w --fault-start 14371", 2, "--fault-start must be from -604800 to 14370, not 14371"},
        {"--root w --fault-start -600 --fault-length 600", 2, "what is planted would lie before the range"},
        {"--root w --scenario healthy --spike 3", 2, "are for scenarios with a slow point, not for healthy"},
        {"--root w --second-fault 1", 2, "for scenarios with two faults at a time, not for slow-disk"},
        {"--root w --fault-strength nan", 2, "--fault-strength must be from 1.01 to 1000, not nan"},
        {"--root w --end 2023", 2, "--end must be"},
        {"--root w --end 2023010500000x", 2, "--end must be"},
        {"--root w --end 20230229000000", 2, "--end must be"},
        {"--root w --end 19691231000000", 2, "--end must be"},
        {"--root out", 2, "cannot create the folder out"},
        {"--root out/w", 2, "cannot create the folder out/w"},
        {"--root blocked", 1, "blocked/VRA"},
        {"--root evidence", 2, "there is no evidence/truth.json; --force replaces it"},
        {"--hours 1 --root $(printf '\\033')", 0, "the truth is in \\x1b/truth.json"},
        {"--root w --config chain --fault-point MY_C", 2, "there is no point \"MY_C\"; did you mean MY_B?"},
        {"--root w --config chain --scenario slow-disk", 2,
         "does not fit chain: it needs the point BDM_DISK_READ"},
        {"--root w --config chain --scenario shared-disk", 2, "it changes graphs of lumo-sim's own"},
        {"--root w --config chain --error-type IOERROR", 2, "needs the point BDM_DISK_MEDIUM_ERROR"},
        {"--root w --config blocked", 2, "blocked: cannot be read"},
        {"--root w --scenario two-faults --fault-point FS_INODE_GET --second-fault 1", 2, "hosts do not see"},
        {"--root 'a chain' --hours 1 --config chain --fault-point MY_B", 0,
         "slow-disk at MY_B: 2 points, 240 rows"},
        {"--root 'a chain' --hours 1 --config chain", 0, "healthy: 2 points, 240 rows"},
        {"--root w --live --for -9223372036854775808 --speed 2", 2, "--for must be from 1 to 31622400"},
    };
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path / "blocked");
    std::ofstream(folder.path / "blocked" / "VRA") << "a file where a folder must be";
    std::ofstream(folder.path / "chain") << R"({"SAN_IO_READ":{"nodes":[{"id":1,"label":"TGT_LUMO_HOST_READ"},
        {"id":2,"label":"MY_B"}],"edges":[{"source":"1","target":"2"}]}})";
    std::filesystem::create_directories(folder.path / "evidence/VRA/data/zorv");
    std::filesystem::create_symlink("kept", (folder.path / "evidence").string() + ZORV_HEAL_DATABASE_FILE);
    for (const Case& one : cases) {
        const Outcome outcome = RunTool(folder, one.arguments);
        EXPECT_EQ(one.status, outcome.status) << one.arguments;
        EXPECT_THAT(one.status == 0 ? outcome.output : outcome.errors, HasSubstr(one.answer));
        EXPECT_EQ("", one.status == 0 ? outcome.errors : outcome.output) << one.arguments;
        EXPECT_FALSE(std::filesystem::exists(folder.path / "w")) << one.arguments;
    }
}

TEST(CommandLineTest, WritesAWorldInTheLocalZone) {
    // The readers take whole hours only: half an hour of India's zone is dropped.
    for (const auto& [zone, offset] : {std::pair("XXX-05:30", 18000), std::pair("XXX+03:30", -10800)}) {
        const TemporaryFolder folder;
        setenv("TZ", zone, 1);
        const Outcome run = RunTool(folder, "--root w --hours 1 --step 60 --end 20230105143000");
        unsetenv("TZ");
        EXPECT_EQ(0, run.status) << run.errors;
        EXPECT_THAT(run.output, HasSubstr("truth.json"));
        const World world(folder.path / "w");
        EXPECT_EQ(
            std::to_string(WORLD_END - offset) + " 20230105133000 lumo_data_20230105133000",
            world.Value("select format('%d %s %s', truth->>'end_epoch', truth->>'start', min(tablename))"
                        " from json, table_flag"))
            << zone;
    }
}

TEST(CommandLineTest, PlantsTheFaultThatIsAskedFor) {
    const std::pair<const char*, const char*> cases[] = {
        {"1 --fault-start -600 --fault-length 1800 --fault-strength 3",
         "fault->>'start_epoch' = truth->>'start_epoch' - 600 and fault->>'end_epoch' = "
         "truth->>'start_epoch' + 1170"
         " and fault->>'peak_value' between 2.8 * usual and 3.2 * usual"},
        {"1 --scenario two-faults --second-fault 1 --fault-strength 3 --fault-length 1",
         "fault->>'peak_value' between 4.7 * usual and 5.3 * usual and fault->>'end_epoch' = "
         "fault->>'start_epoch'"},
        {"1 --spike 10 --spike-before 600",
         "fault->>'peak_value' between 8 * usual and 11 * usual"
         " and truth->>'$.other_faults[0].start_epoch' = fault->>'start_epoch' - 600"},
        {"1 --fault-start 60 --noise 30", "highest between 1.5 * lowest and 2.5 * lowest"},
        {"24 --step 300 --fault-start 60 --swing 50", "highest between 2.8 * lowest and 3.8 * lowest"},
    };
    const TemporaryFolder folder;
    for (const auto& [arguments, isRight] : cases) {
        const Outcome run =
            RunTool(folder, "--root w --end 20230105143000 --hours " + std::string(arguments));
        EXPECT_EQ(0, run.status) << run.errors;
        EXPECT_EQ("1", World(folder.path / "w").Value(std::string("select ") + isRight + R"(
            from json, (select avg(avgdelay) as usual, max(avgdelay) as highest, min(avgdelay) as lowest from samples, json
                where locatename = 'TGT_LUMO_HOST_READ' and curtime > fault->>'end_epoch' + 300))"))
            << arguments;
    }
}

}  // namespace
