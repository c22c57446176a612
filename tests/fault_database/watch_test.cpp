#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <fstream>

#include "agent/agent_thread.h"
#include "support/database_test.h"

class Watch : public DatabaseTest {
protected:
    // Once the watcher has opened the databases it sees every event.
    void Start(const std::vector<StatisticsTable>& tables) const {
        world.Heal();
        world.Statistics(tables);
        FaultDataBaseInotifyHandleInit();
        ExpectOpenings(1, 0);
    }
    // Waits until the databases were opened, and could not be opened, so many times; more is a failure.
    static void ExpectOpenings(size_t opened, size_t failed) {
        const std::pair expected(opened, failed);
        std::pair<size_t, size_t> found;
        Eventually([&] {
            found = {Agent()->Count("g_zorvHealDataBase is 0x"), Agent()->Count("sqlite3_open faild:14")};
            return found >= expected;
        });
        EXPECT_EQ(found, expected);
    }
};

TEST_F(Watch, OpensAnewOnEachEventOfTheStatisticsFileAlone) {
    Start({});
    world.Remove(LUMO_DATABASE_FILE);
    ExpectOpenings(1, 1);
    world.Statistics({});
    ExpectOpenings(2, 1);
    // Events come in order: the one that follows these proves that they changed nothing.
    for (const std::string name : {"lumo_diagnose_data.db2", "lumo.db", "f/" LUMO_DATABASE_NAME}) {
        world.Write(LUMO_DATA_DIRECTORY + name, "x");
        world.Remove(LUMO_DATA_DIRECTORY + name);
    }
    world.StatisticsByRename({});
    ExpectOpenings(3, 1);
}

TEST_F(Watch, ComesBackWithTheFolder) {
    const std::string folder = "/VRA/data/lumo";
    world.Heal();
    world.Remove(folder);
    // The sanitizer looks at the first thread through a pipe: not at one that has no descriptors.
    static std::atomic<bool> hasRun{false};
    create_thread_nopreempt_raw([](void*) { return hasRun.exchange(true) ? 1 : 0; }, nullptr, 0);
    ASSERT_TRUE(Eventually([] { return hasRun.load(); }));
    rlimit descriptors{};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    const rlimit none{0, descriptors.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    FaultDataBaseInotifyHandleInit();
    EXPECT_TRUE(
        Eventually([] { return Agent()->Count("Cannot watch /VRA/data/lumo/: Too many open") == 1; }));
    setrlimit(RLIMIT_NOFILE, &descriptors);
    std::string earliest;
    for (const std::string number : {"1", "2", "3"}) {
        EXPECT_EQ(FaultGetDataTimeRange(earliest), 1U);  // from now on only the watcher can open anything
        world.MakeFolder(folder);
        world.Statistics({{"lumo_data_" + number}});
        EXPECT_TRUE(Eventually([&] { return FaultGetDataTimeRange(earliest) == 0 && earliest == number; }));
        number == "1" ? world.Remove(folder) : world.Rename(folder, "/VRA/data/old" + number);
    }
    world.MakeFolder(folder);
    const size_t failed = Agent()->Count("sqlite3_open faild:14");
    EXPECT_TRUE(Eventually([&] {  // too short for anything but an event
        world.Write(LUMO_DATABASE_FILE, "");
        world.Remove(LUMO_DATABASE_FILE);
        return Agent()->Count("sqlite3_open faild:14") > failed;
    }));
}

// Neither the heal database nor the target of a link brings an event.
TEST_F(Watch, OpensWhatComesBackUnseen) {
    Start({{"lumo_data_1"}});
    std::string earliest;
    const auto comesBack = [&] { return Eventually([&] { return FaultGetDataTimeRange(earliest) == 0; }); };
    std::vector<FaultHealEvent> events;
    world.Remove(ZORV_HEAL_DATABASE_FILE);
    EXPECT_EQ(FaultQueryHealEvent("1", "2", events), 1U);
    world.Heal();
    EXPECT_TRUE(comesBack());
    world.Rename(LUMO_DATABASE_FILE, "/target");
    std::filesystem::create_symlink(world.Path("/target"), world.Path(LUMO_DATABASE_FILE));
    EXPECT_TRUE(comesBack());
    world.Remove("/target");
    EXPECT_EQ(FaultGetDataTimeRange(earliest), 1U);
    world.Exec("/target", "CREATE TABLE table_flag AS SELECT 'lumo_data_2' AS tablename, 1 AS reporttime;");
    EXPECT_TRUE(comesBack());
    EXPECT_EQ(earliest, "2");
}

// The kernel drops the events that are too many.
TEST_F(Watch, OpensAnewWhenEventsWereLost) {
    Start({});
    world.Remove(LUMO_DATABASE_FILE);
    ExpectOpenings(1, 1);
    static std::atomic<bool> isHeld{false}, mayGoOn{false};
    signal(SIGUSR1, [](int) {
        for (isHeld = true; !mayGoOn;) {
            usleep(1000);
        }
    });
    sigset_t blocked;
    sigfillset(&blocked);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    kill(getpid(), SIGUSR1);  // for the watcher, the only other thread
    ASSERT_TRUE(Eventually([] { return isHeld.load(); }));
    int most = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> most;
    for (int events = 0; events <= most; events += 2) {
        world.Write(LUMO_DATA_DIRECTORY "other", "");
        world.Remove(LUMO_DATA_DIRECTORY "other");
    }
    world.Statistics({});
    mayGoOn = true;
    ExpectOpenings(2, 1);
}
