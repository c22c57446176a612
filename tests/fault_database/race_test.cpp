#include <algorithm>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "support/database_test.h"

namespace {

constexpr int64_t ROWS = 40;

// All rows of a database carry its generation.
std::vector<StatisticsTable> Generation(int64_t generation) {
    return {{"lumo_data_1", std::vector<StatisticsRow>(ROWS, {"P", 1, generation})}};
}

uint32_t KeepDelays(char** result, int32_t rowCount, int32_t /*columnCount*/, std::vector<int64_t>& delays,
                    std::vector<int64_t>& /*unused*/, Lines& /*texts*/) {
    std::transform(result + 1, result + 1 + rowCount, std::back_inserter(delays),
                   [](const char* cell) { return std::stoll(cell); });
    return 0;
}

using Race = DatabaseTest;

// Each answer is of one generation, and of none that was replaced before the question.
TEST_F(Race, NoAnswerIsStaleOrMixedBesideAProducer) {
    Open(Generation(0));
    ASSERT_EQ(FaultDataBaseInotifyHandleInit(), 0U);
    // Whoever has no answer leaves the processor to the producer; nothing below depends on how long that is.
    const auto pause = [] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); };
    Agent::OnSleep([pause](size_t) { pause(); });

    std::atomic<int64_t> published{0};
    std::atomic<bool> done{false};
    std::atomic<int> answers{0};
    std::atomic<int> wrong{0};
    const auto ask = [&] {
        const int64_t oldest = published;
        std::vector<int64_t> delays;
        std::vector<int64_t> unused;
        Lines texts;
        if (FaultDataBaseExcuteSql("select avgdelay from lumo_data_1;", KeepDelays, delays, unused, texts) !=
            0) {
            pause();
            return false;
        }
        ++answers;
        const bool whole =
            delays.size() == ROWS && std::count(delays.begin(), delays.end(), delays[0]) == ROWS;
        wrong += whole && delays[0] >= oldest ? 0 : 1;
        return true;
    };
    std::vector<std::thread> threads(4);
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
            while (!done) {
                ask();
            }
        });
    }
    for (int64_t generation = 1; generation <= 300; ++generation) {
        generation % 2 == 0 ? world.Statistics(Generation(generation))
                            : world.StatisticsByRename(Generation(generation));
        published = generation;
    }
    EXPECT_TRUE(Eventually(ask));
    done = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(answers, 50);
}

}  // namespace
