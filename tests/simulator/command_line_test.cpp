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
    const std::string output = folder.path / "out";
    const std::string errors = folder.path / "err";
    const std::string command =
        "cd " + folder.path.string() + " && " LUMO_SIM " " + arguments + " >" + output + " 2>" + errors;
    const int result = std::system(command.c_str());
    return {WEXITSTATUS(result), FileText(output), FileText(errors)};
}

TEST(CommandLineTest, BadInputIsRefusedWithItsReason) {
    struct Case {
        const char* arguments;
        int status;
        const char* reason;
    };
    const Case cases[] = {
        {"", 2, "--root DIR is missing"},
        {"--bogus", 2, "--bogus"},
        {"--root w surplus", 2, "surplus"},
        {"--root w --scenario slow-dsk", 2, "did you mean slow-disk"},
        {"--root w --scenario quite-another-thing", 2, "no scenario \"quite-another-thing\" (--list"},
        {"--root w --hours 0", 2, "--hours must be from 1 to 168, not 0"},
        {"--root w --hours 169", 2, "--hours must be from 1 to 168, not 169"},
        {"--root w --hours two", 2, "--hours"},
        {"--root w --step -30", 2, "--step must be from 1 to 300, not -30"},
        {"--root w --step 301", 2, "--step must be from 1 to 300, not 301"},
        {"--root w --hours 1 --step 120", 2, "make 30 samples per point"},
        {"--root w --hours 168 --step 1", 2, "make 604800 samples per point"},
        {"--root w --scenario gaps --hours 3", 2, "needs at least 4 hours"},
        {"--root w --seed -1", 2, "--seed"},
        {"--root w --seed 18446744073709551616", 2, "--seed"},
        {"--root w --end 2023", 2, "--end must be"},
        {"--root w --end 20230229000000", 2, "--end must be"},
        {"--root w --end 20231301000000", 2, "--end must be"},
        {"--root w --end 19691231000000", 2, "--end must be"},
        {"--root w --end 2023010500000x", 2, "--end must be"},
        {"--root out", 2, "cannot create the folder out"},
        {"--root out/w", 2, "cannot create the folder out/w"},
        {"--root blocked", 1, "blocked/VRA"},
    };
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path / "blocked");
    std::ofstream(folder.path / "blocked" / "VRA") << "a file where a folder must be";
    for (const Case& one : cases) {
        const Outcome outcome = RunTool(folder, one.arguments);
        EXPECT_EQ(one.status, outcome.status) << one.arguments;
        EXPECT_THAT(outcome.errors, HasSubstr(one.reason)) << one.arguments;
        EXPECT_EQ("", outcome.output) << one.arguments;
        EXPECT_FALSE(std::filesystem::exists(folder.path / "w")) << one.arguments;
    }
}

TEST(CommandLineTest, WritesAWorldInTheLocalZone) {
    // The readers take whole hours only: half an hour of India's zone is dropped.
    const std::pair<const char*, int64_t> zones[] = {{"UTC", 0}, {"XXX-05:30", 18000}, {"XXX+03:30", -10800}};
    for (const auto& [zone, offset] : zones) {
        const TemporaryFolder folder;
        setenv("TZ", zone, 1);
        const Outcome run = RunTool(folder, "--root w --scenario healthy --end 20230105143000");
        unsetenv("TZ");
        EXPECT_EQ(0, run.status);
        EXPECT_EQ("", run.errors);
        EXPECT_THAT(run.output, HasSubstr("truth.json"));
        const Json::Value truth = ReadJson(folder.path / "w" / "truth.json");
        EXPECT_EQ(WORLD_END - offset, truth["end_epoch"].asInt64()) << zone;
        EXPECT_EQ("20230105143000", truth["end"].asString()) << zone;
        EXPECT_EQ("lumo_data_20230105103000",
                  Reader(folder.path.string() + "/w" LUMO_DATABASE_FILE).Tables().at(0));
    }
}

TEST(CommandLineTest, HelpAndListNeedNoRoot) {
    const TemporaryFolder folder;
    const Outcome help = RunTool(folder, "--help");
    EXPECT_EQ(0, help.status);
    EXPECT_THAT(help.output, HasSubstr("lumo-sim --root /tmp/world --scenario nas-slow"));
    const Outcome list = RunTool(folder, "--list");
    EXPECT_EQ(0, list.status);
    for (const char* name : {"healthy ", "slow-disk ", "slow-network ", "nas-slow ", "error-burst ",
                             "healed ", "gaps ", "constant "}) {
        EXPECT_THAT(list.output, HasSubstr(name));
    }
}

}  // namespace
