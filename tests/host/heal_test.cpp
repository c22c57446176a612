#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <new>
#include <random>
#include <thread>
#include <vector>

#include "agent/agent_heal.h"
#include "host/services/log.h"
#include "host/services/settings.h"
#include "tests/host/temp_root.h"

namespace {
constexpr const char* FILE_NAME = "/VRA/coffer_log/log/heal/data/test.ini";
constexpr int32_t UNTOUCHED = -77;

class HealTest : public testing::Test {
protected:
    HealTest() {
        HostSettings settings;
        settings.root = root.Path();
        SetHostSettings(settings);
        ConfigureLog(root.Path("/log"), VPLOG_LEVEL_ERROR);
    }

    static int32_t ReadBack() {
        int32_t value = UNTOUCHED;
        const uint32_t result = HealReadZorvModePrivateIni(FILE_NAME, &value, 0);
        EXPECT_EQ(result != 0, value == UNTOUCHED);
        return value;
    }

    const TempRoot root;
};

TEST_F(HealTest, KeepsNumbersBelowTheRoot) {
    EXPECT_EQ(ReadBack(), UNTOUCHED);
    for (const int32_t value : {3, 0, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(HealWriteZorvModePrivateIni(FILE_NAME, value, 0), 0U);
        EXPECT_EQ(ReadBack(), value);
    }
    EXPECT_EQ(root.Read(FILE_NAME), "[heal]\nvalue=-2147483648\n");
}

TEST_F(HealTest, TakesNothingButOneNumber) {
    const std::string key = "[heal]\nvalue=";
    const std::vector<std::pair<std::string, int32_t>> cases = {
        {key + "2", 2},
        {"; written by hand\r\n[heal]\r\nvalue = 3 ; off\r\n", 3},
        {"", UNTOUCHED},
        {key, UNTOUCHED},
        {key + "2x", UNTOUCHED},
        {key + "0x2", UNTOUCHED},
        {key + "2147483648", UNTOUCHED},
        {key + "2\nvalue=2\n", UNTOUCHED},
        {key + "2\n  3\n", UNTOUCHED},
        {key + "2\nother=3\n", UNTOUCHED},
        {key + "2\njunk\n", UNTOUCHED},
        {"[other]\nvalue=2\n", UNTOUCHED},
        {"value=2\n", UNTOUCHED},
        {key + "2" + std::string(192, ' ') + "[cut]\n", UNTOUCHED},
        {key + "2" + std::string(1, '\0') + "9\n", UNTOUCHED},
        {key + std::string(1 << 20, '2'), UNTOUCHED},
    };
    for (const auto& [content, expected] : cases) {
        root.Write(FILE_NAME, content);
        EXPECT_EQ(ReadBack(), expected) << content.substr(0, 60);
    }
}

TEST_F(HealTest, FailsWhereNoFileCanBe) {
    root.Write("/VRA", "a file in the way");
    EXPECT_NE(HealWriteZorvModePrivateIni(FILE_NAME, 1, 0), 0U);
    EXPECT_EQ(ReadBack(), UNTOUCHED);
    EXPECT_NE(HealWriteZorvModePrivateIni(nullptr, 1, 0), 0U);
    EXPECT_NE(HealReadZorvModePrivateIni(FILE_NAME, nullptr, 0), 0U);
}

// Two numbers of very different length, so that a torn file cannot pass for either.
int32_t NumberOf(uint32_t write) {
    return write % 2 == 0 ? 2 : INT32_MIN;
}

// Writes one number after the other, until killed; `done` counts the writes that returned.
[[noreturn]] void WriteForEver(std::atomic<uint32_t>& done) {
    for (uint32_t write = done + 1;; ++write) {
        if (HealWriteZorvModePrivateIni(FILE_NAME, NumberOf(write), 0) != 0) {
            _exit(1);
        }
        done = write;
    }
}

TEST_F(HealTest, KilledWriterLeavesTheOldNumberOrTheNew) {
    void* const shared = mmap(nullptr, sizeof(std::atomic<uint32_t>), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto& done = *new (shared) std::atomic<uint32_t>(0);
    std::mt19937 random(20230105);
    const auto below = [&](uint32_t limit) { return static_cast<uint32_t>(random() % limit); };
    ASSERT_EQ(HealWriteZorvModePrivateIni(FILE_NAME, NumberOf(0), 0), 0U);
    for (int kills = 0; done < 1000 && !HasFailure(); ++kills) {
        const uint32_t target = done + below(15);
        const pid_t writer = fork();
        if (writer == 0) {
            WriteForEver(done);
        }
        while (done < target && waitpid(writer, nullptr, WNOHANG) == 0) {
            sched_yield();
        }
        usleep(below(500));  // any moment within a write; nothing is expected to happen meanwhile
        ASSERT_EQ(kill(writer, SIGKILL), 0);
        waitpid(writer, nullptr, 0);
        const int32_t value = ReadBack();
        EXPECT_TRUE(value == NumberOf(done) || value == NumberOf(done + 1))
            << value << " after " << done << " writes, kill " << kills;
        done += value == NumberOf(done) ? 0 : 1;
    }
    munmap(shared, sizeof(std::atomic<uint32_t>));
}

TEST_F(HealTest, WritersTakeTurns) {
    std::vector<std::thread> writers;
    for (int32_t writer = 1; writer <= 4; ++writer) {
        writers.emplace_back([writer] {
            for (int i = 0; i < 25; ++i) {
                EXPECT_EQ(HealWriteZorvModePrivateIni(FILE_NAME, writer * 111111111, 0), 0U);
                EXPECT_EQ(ReadBack() % 111111111, 0);
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
}
}  // namespace
