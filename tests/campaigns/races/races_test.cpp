// Eight threads query beside a producer that re-creates the files. SMARTDIAGNOSE_LONG makes the runs long,
// and SMARTDIAGNOSE_SEED another one.
#include <future>
#include <iostream>
#include <thread>

#include "campaigns/races/published.h"
#include "support/database_test.h"

namespace {

#ifdef __SANITIZE_THREAD__
constexpr int64_t CYCLES = 50, LONG_CYCLES = 1000;
#else
constexpr int64_t CYCLES = 200, LONG_CYCLES = 10000;
#endif

int64_t Entries(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return std::distance(begin(entries), end(entries));
}

// The queries: state and count of each row, none when there is no answer.
FaultSeries AskForTexts() {
    std::vector<int64_t> unused;
    Lines cells;
    FaultDataBaseExcuteSql("select state, count from T;", FaultGetQueryTableCallBack, unused, unused, cells);
    FaultSeries rows;
    for (size_t i = 0; i < cells.size(); i += 2) {
        rows.push_back({std::stoll(cells[i]), std::stoll(cells[i + 1])});
    }
    return rows;
}

FaultSeries AskForEarliest() {
    std::string state;
    return FaultGetDataTimeRange(state) == 0 ? FaultSeries{{std::stoll(state), 1}} : FaultSeries{};
}

FaultSeries AskForEvents() {
    std::vector<FaultHealEvent> events;
    FaultQueryHealEvent("1", "999", events);
    FaultSeries rows;
    for (const auto& [time, state, cause, count] : events) {
        rows.push_back({std::stoll(state), std::stoll(count)});
    }
    return rows;
}

struct Question {
    FaultSeries (*ask)();
    PublishedStates& states;
};

// Asks once; true with a right answer. A wrong one is a failure of the test.
bool Ask(const Question& question) {
    const int64_t oldest = question.states.oldest;
    const FaultSeries rows = question.ask();
    const int64_t newest = question.states.newest;
    if (rows.empty()) {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        return false;
    }
    const auto [state, count] = rows[0];
    const bool isRight =
        state >= oldest && state <= newest && rows == FaultSeries(static_cast<size_t>(count), rows[0]);
    EXPECT_TRUE(isRight) << rows.size() << " rows of " << count << ", of states " << state << " to "
                         << rows.back()[0] << "; possible: " << oldest << " to " << newest;
    question.states.answers += 1;
    return isRight;
}

class Races : public DatabaseTest {
protected:
    bool AllAnswer() const {
        return Eventually([this] { return std::all_of(questions.begin(), questions.end(), Ask); });
    }

    // Lines and sleeps are taken while the run goes on: a long one has very many.
    static void CheckLines() {
        static const Lines expected = {"DataBase is ", "faild", "suppressed", "The tableName:"};
        Agent()->sleeps.clear();
        for (const std::string& line : Agent::TakeLines()) {
            const auto isIn = [&](const std::string& part) { return line.find(part) != std::string::npos; };
            EXPECT_TRUE(std::any_of(expected.begin(), expected.end(), isIn)) << line;
        }
    }

    void Run(const std::string& journal) const {
        const int64_t cycles = getenv("SMARTDIAGNOSE_LONG") != nullptr ? LONG_CYCLES : CYCLES;
        const char* const seed = getenv("SMARTDIAGNOSE_SEED");
        const std::string producer = PRODUCER " " + world.Path(" ") + journal + " " + std::to_string(cycles) +
                                     " " + (seed != nullptr ? seed : "20230105");
        Agent()->onSleep = [](size_t) { std::this_thread::sleep_for(std::chrono::microseconds(100)); };
        const auto status = std::async(std::launch::async, [&] { return system(producer.c_str()); });
        ASSERT_TRUE(Eventually([this] { return published.cycles < 0; }));
        FaultDataBaseInotifyHandleInit();
        ASSERT_TRUE(AllAnswer());
        const int64_t descriptors = Entries("/proc/self/fd"), tasks = Entries("/proc/self/task");
        published.cycles = 0;
        {
            std::atomic<bool> isOver{false};
            std::vector<std::future<void>> threads(8);
            for (size_t i = 0; i < threads.size(); ++i) {
                threads[i] = std::async(std::launch::async, [&, i] {
                    while (!isOver) {
                        Ask(questions[i % questions.size()]);
                    }
                });
            }
            while (status.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready) {
                CheckLines();
            }
            isOver = true;
        }
        EXPECT_EQ(published.cycles, cycles) << producer;
        EXPECT_TRUE(AllAnswer());
        const int64_t answers = published.statistics.answers + published.heal.answers;
        EXPECT_TRUE(Eventually([&] { return Entries("/proc/self/fd") <= descriptors; }));
        // Without the one that waited for the producer; a thread that was joined may still be listed.
        EXPECT_TRUE(Eventually([&] { return Entries("/proc/self/task") == tasks - 1; }));
        std::cout << producer << ": " << answers << " answers, " << descriptors << " descriptors\n";
    }

    Published& published = Published::Map(world.Path("/published"));
    const std::vector<Question> questions = {{AskForTexts, published.statistics},
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
