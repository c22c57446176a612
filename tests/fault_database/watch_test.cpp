#include <atomic>
#include <future>
#include <thread>

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
    FaultDataBaseInotifyHandleInit();
    std::string earliest;
    for (const std::string number : {"1", "2", "3"}) {
        EXPECT_EQ(FaultGetDataTimeRange(earliest), 1U);  // from now on only the watcher can open anything
        world.MakeFolder(folder);
        world.Statistics({{"lumo_data_" + number}});
        EXPECT_TRUE(Eventually([&] { return FaultGetDataTimeRange(earliest) == 0 && earliest == number; }));
        number == "1" ? world.Remove(folder) : world.Rename(folder, "/VRA/data/old" + number);
    }
}

// Each answer is of one generation, and of none that was replaced before the question.
TEST_F(Watch, NoAnswerIsStaleOrMixedAndNothingLeaksBesideAProducer) {
    constexpr size_t ROWS = 40;
    const auto generation = [](int64_t number) {
        return std::vector<StatisticsTable>{{"T", std::vector<StatisticsRow>(ROWS, {"P", 1, number})}};
    };
    const auto descriptors = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    Start(generation(0));
    const auto before = descriptors();
    // Whoever has no answer leaves the processor to the producer; nothing depends on how long that is.
    Agent()->onSleep = [](size_t) { std::this_thread::yield(); };

    std::atomic<int64_t> published{0};
    std::atomic<int> answers{0};
    std::atomic<int> wrong{0};
    const auto ask = [&] {
        const int64_t oldest = published;
        std::vector<int64_t> unused;
        Lines delays;
        const char* const sql = "select avgdelay from T;";
        if (FaultDataBaseExcuteSql(sql, FaultGetQueryTableCallBack, unused, unused, delays) != 0) {
            std::this_thread::yield();
            return false;
        }
        const bool isWhole = delays.size() == ROWS && delays == Lines(ROWS, delays[0]);
        (isWhole && std::stoll(delays[0]) >= oldest ? answers : wrong)++;
        return true;
    };
    std::vector<std::future<void>> threads(4);
    for (std::future<void>& thread : threads) {
        thread = std::async(std::launch::async, [&] {
            while (published < 1000) {
                ask();
            }
        });
    }
    for (int64_t number = 1; number <= 1000; ++number) {
        number % 2 == 0 ? world.Statistics(generation(number)) : world.StatisticsByRename(generation(number));
        published = number;
    }
    threads.clear();
    EXPECT_TRUE(Eventually(ask));
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(answers, 50);
    EXPECT_TRUE(Eventually([&] { return descriptors() == before; }));
}
