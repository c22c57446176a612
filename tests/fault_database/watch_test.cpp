#include <filesystem>
#include <fstream>

#include "support/database_test.h"

namespace {

// Whether some inotify descriptor of this process watches something.
bool IsWatching() {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fdinfo")) {
        std::ifstream information(entry.path());
        for (std::string line; std::getline(information, line);) {
            if (line.rfind("inotify wd:", 0) == 0) {
                return true;
            }
        }
    }
    return false;
}

class Watch : public DatabaseTest {
protected:
    static void Start() { EXPECT_EQ(FaultDataBaseInotifyHandleInit(), 0U); }

    // Waits until the databases were opened, and could not be opened, so many times; more is a failure.
    static void ExpectOpenings(size_t opened, size_t failed) {
        const auto count = [](const AgentRecord& record) {
            return std::pair(record.Count("g_zorvHealDataBase is 0x"), record.Count("sqlite3_open faild:14"));
        };
        Agent::WaitUntil(
            [&](const AgentRecord& record) { return count(record) >= std::pair(opened, failed); });
        EXPECT_EQ(count(Agent::Record()), std::pair(opened, failed));
    }
    static void ExpectEarliest(const std::string& expected) {
        EXPECT_TRUE(Eventually([&] {
            std::string earliest;
            return FaultGetDataTimeRange(earliest) == 0 && earliest == expected;
        })) << expected;
    }
};

TEST_F(Watch, OpensAnewOnEachEventOfTheStatisticsFileAlone) {
    Open({{"lumo_data_1"}});
    Start();
    ASSERT_TRUE(Eventually(IsWatching));
    world.Remove(LUMO_DATABASE_FILE);
    ExpectOpenings(0, 1);
    world.Statistics({{"lumo_data_2"}});
    ExpectOpenings(1, 1);
    world.StatisticsByRename({{"lumo_data_3"}});
    ExpectOpenings(2, 1);
    // Events come in order: the one that follows these proves that they changed nothing.
    for (const char* name :
         {"other.db", "lumo_diagnose_data.db2", "umo_diagnose_data.db", "folder/" LUMO_DATABASE_NAME}) {
        world.Write(std::string(LUMO_DATA_DIRECTORY) + name, "x");
        world.Remove(std::string(LUMO_DATA_DIRECTORY) + name);
    }
    world.StatisticsByRename({{"lumo_data_4"}});
    ExpectOpenings(3, 1);
    ExpectEarliest("4");
}

TEST_F(Watch, ComesBackWithTheFolder) {
    world.Remove("/VRA/data/lumo");
    Start();
    world.Heal();
    for (const char* generation : {"1", "2", "3"}) {
        world.MakeFolder(LUMO_DATA_DIRECTORY);
        world.Statistics({{std::string("lumo_data_") + generation}});
        ExpectEarliest(generation);
        world.Remove("/VRA/data/lumo");
    }
}

TEST_F(Watch, FollowsAReplacedFolder) {
    Open({{"lumo_data_1"}});
    Start();
    ASSERT_TRUE(Eventually(IsWatching));
    world.Rename("/VRA/data/lumo", "/VRA/data/old");
    world.MakeFolder(LUMO_DATA_DIRECTORY);
    std::string earliest;
    EXPECT_EQ(FaultGetDataTimeRange(earliest), 1U);  // the former file has moved, and there is no other
    world.Statistics({{"lumo_data_2"}});
    ExpectEarliest("2");
}

TEST_F(Watch, AThreadThatDoesNotStartIsOnlyLogged) {
    Agent::Fail("create_thread_nopreempt_raw");
    Start();
    EXPECT_EQ(Agent::TakeLines(),
              Lines{"3 fault_database.cpp FaultDataBaseInotifyHandleInit: Create inotify thread failed."});
}

}  // namespace
