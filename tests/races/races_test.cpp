// Eight threads query beside a producer that re-creates the files. SMARTDIAGNOSE_LONG makes the runs long,
// and SMARTDIAGNOSE_SEED another one.
#include <spawn.h>
#include <sys/wait.h>

#include <fstream>
#include <future>
#include <iostream>
#include <thread>

#include "races/published.h"
#include "support/database_test.h"

namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int64_t CYCLES = 50, LONG_CYCLES = 1000, GROWTH_KIB = 1 << 20;  // they keep memory of their own
#else
constexpr int64_t CYCLES = 300, LONG_CYCLES = 10000, GROWTH_KIB = 4096;
#endif

const char* FromEnvironment(const char* name, const char* otherwise) {
    const char* const value = getenv(name);
    return value != nullptr ? value : otherwise;
}

// What the plug-in may log beside such a producer: without addresses.
const Lines EXPECTED_LINES = {"g_lumoDataBase is ",    "g_zorvHealDataBase is ",
                              "sqlite3_open faild:14", "sqlite3 get table faild for ",
                              "messages suppressed",   "The tableName:"};

// Lines and sleeps are taken while the run goes on: kept, they would be the memory that grows.
Lines TakeUnexpectedLines() {
    Agent()->sleeps.clear();
    Lines unexpected;
    for (const std::string& line : Agent::TakeLines()) {
        const auto isIn = [&](const std::string& part) { return line.find(part) != std::string::npos; };
        if (std::none_of(EXPECTED_LINES.begin(), EXPECTED_LINES.end(), isIn)) {
            unexpected.push_back(line);
        }
    }
    return unexpected;
}

int64_t ResidentKib() {
    std::string word;
    int64_t kib = 0;
    for (std::ifstream status("/proc/self/status"); status >> word;) {
        if (word == "VmRSS:") {
            status >> kib;
        }
    }
    return kib;
}

int64_t Entries(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return std::distance(begin(entries), end(entries));
}

// The queries: state and count of each row one after the other, none when there is no answer.
Lines AskForRows() {
    std::vector<int64_t> unused;
    Lines cells;
    FaultDataBaseExcuteSql("select state, count from T;", FaultGetQueryTableCallBack, unused, unused, cells);
    return cells;
}

Lines AskForSeries() {
    std::map<std::string, FaultSeries> series;
    const auto collect = [](char** result, int32_t rows, int32_t, std::map<std::string, FaultSeries>& all) {
        for (int32_t i = 1; i <= rows; ++i) {
            all["T"].push_back({std::stoll(result[2 * i]), std::stoll(result[2 * i + 1])});
        }
        return 0U;
    };
    FaultDataBaseExcuteFullSql("select state, count from T;", collect, series);
    Lines cells;
    for (const FaultSeriesRow& row : series["T"]) {
        cells.insert(cells.end(), {std::to_string(row[0]), std::to_string(row[1])});
    }
    return cells;
}

Lines AskForEarliest() {
    std::string state;
    return FaultGetDataTimeRange(state) == 0 ? Lines{state, "1"} : Lines{};
}

Lines AskForEvents() {
    std::vector<FaultHealEvent> events;
    FaultQueryHealEvent("1", "999", events);
    Lines cells;
    for (const auto& [time, state, cause, count] : events) {
        cells.insert(cells.end(), {state, count});
    }
    return cells;
}

class Races : public DatabaseTest {
protected:
    struct Question {
        Lines (*ask)();
        PublishedStates& states;
    };

    // Asks once; true with a right answer. A wrong one is a failure of the test.
    static bool Ask(const Question& question) {
        const int64_t oldest = question.states.oldest;
        const Lines cells = question.ask();
        const int64_t newest = question.states.newest;
        if (cells.empty()) {
            std::this_thread::sleep_for(std::chrono::microseconds(100));
            return false;
        }
        bool isRight = std::stoull(cells[1]) * 2 == cells.size() && std::stoll(cells[0]) >= oldest &&
                       std::stoll(cells[0]) <= newest;
        for (size_t i = 2; i < cells.size(); ++i) {
            isRight = isRight && cells[i] == cells[i - 2];
        }
        EXPECT_TRUE(isRight) << cells.size() << " cells from " << cells[0] << ", " << cells[1] << " to "
                             << cells.end()[-2] << ", " << cells.back() << "; asked with " << oldest
                             << " as the oldest state, answered with " << newest << " as the newest";
        question.states.answers += isRight ? 1 : 0;
        return isRight;
    }

    bool AllAnswer() const {
        return Eventually([this] { return std::all_of(questions.begin(), questions.end(), Ask); });
    }

    pid_t StartProducer(const char* journal, int64_t cycles) const {
        std::string words[] = {PRODUCER, world.Path(""), journal, std::to_string(cycles),
                               FromEnvironment("SMARTDIAGNOSE_SEED", "20230105")};
        char* arguments[] = {words[0].data(), words[1].data(), words[2].data(),
                             words[3].data(), words[4].data(), nullptr};
        pid_t producer = 0;
        EXPECT_EQ(posix_spawn(&producer, PRODUCER, nullptr, nullptr, arguments, environ), 0);
        return producer;
    }

    void Run(const char* journal) const {
        const int64_t cycles = getenv("SMARTDIAGNOSE_LONG") != nullptr ? LONG_CYCLES : CYCLES;
        Agent()->onSleep = [](size_t) { std::this_thread::sleep_for(std::chrono::microseconds(100)); };
        const pid_t producer = StartProducer(journal, cycles);
        ASSERT_TRUE(Eventually([this] { return published.heal.oldest > 0; }));
        FaultDataBaseInotifyHandleInit();
        ASSERT_TRUE(AllAnswer());
        const int64_t descriptors = Entries("/proc/self/fd"), tasks = Entries("/proc/self/task");
        published.go = true;

        std::atomic<bool> isOver{false};
        std::vector<std::future<void>> threads(8);
        for (size_t i = 0; i < threads.size(); ++i) {
            threads[i] = std::async(std::launch::async, [&, i] {
                while (!isOver) {
                    Ask(questions[i % questions.size()]);
                }
            });
        }
        int status = 0;
        int64_t resident = 0;
        while (waitpid(producer, &status, WNOHANG) == 0) {
            EXPECT_EQ(TakeUnexpectedLines(), Lines{});
            if (resident == 0 && published.cycles > cycles / 5) {
                resident = ResidentKib();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        isOver = true;
        threads.clear();
        EXPECT_EQ(status, 0);
        EXPECT_EQ(published.cycles, cycles);
        EXPECT_TRUE(AllAnswer());
        EXPECT_TRUE(Eventually([&] { return Entries("/proc/self/fd") == descriptors; }));
        EXPECT_EQ(Entries("/proc/self/task"), tasks);
        EXPECT_LT(ResidentKib() - resident, GROWTH_KIB);
        std::cout << cycles << " cycles, " << published.statistics.answers + published.heal.answers
                  << " right answers, " << resident << " to " << ResidentKib() << " KiB\n";
    }

    Published& published = Published::Map(world.Path("/published"));
    const std::vector<Question> questions = {{AskForRows, published.statistics},
                                             {AskForSeries, published.statistics},
                                             {AskForEarliest, published.statistics},
                                             {AskForEvents, published.heal}};
};

TEST_F(Races, RollbackJournal) {
    Run("delete");
}

TEST_F(Races, WriteAheadLog) {
    Run("wal");
}

}  // namespace
