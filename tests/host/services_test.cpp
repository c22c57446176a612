#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <stdexcept>

#include "agent/agent_alarm.h"
#include "agent/agent_memory.h"
#include "agent/agent_startup.h"
#include "agent/agent_thread.h"
#include "agent/agent_timer.h"
#include "host/services/console.h"
#include "host/services/log.h"
#include "host/services/settings.h"
#include "host/services/text.h"
#include "host/services/timer.h"
#include "tests/host/temp_root.h"

namespace {
TEST(MemoryTest, PrintsWithinBounds) {
    const struct {
        size_t destMax, count;
        const char* text;
        int32_t result;
        const char* content;
    } cases[] = {
        {8, 7, "abc", 3, "abc"},   {8, 7, "", 0, ""},          {8, 7, "1234567", 7, "1234567"},
        {8, 3, "abcd", -1, "abc"}, {8, 0, "a", -1, ""},        {8, 8, "a", -1, ""},
        {1, 0, "", 0, ""},         {8, SIZE_MAX, "a", -1, ""},
    };
    for (const auto& row : cases) {
        char buffer[9] = "########";
        EXPECT_EQ(snprintf_s(buffer, row.destMax, row.count, "%s", row.text), row.result) << row.text;
        EXPECT_STREQ(buffer, row.content);
        EXPECT_EQ(buffer[row.destMax], row.destMax == 8 ? '\0' : '#');
    }
    char untouched = '#';
    EXPECT_LT(snprintf_s(&untouched, 0, 0, "x"), 0);
    EXPECT_EQ(untouched, '#');
    EXPECT_LT(snprintf_s(nullptr, 8, 7, "x"), 0);
}

TEST(MemoryTest, SetsWithinBounds) {
    char buffer[] = "####";
    EXPECT_NE(memset_s(buffer, 3, 'x', 4), 0);
    EXPECT_NE(memset_s(nullptr, 3, 'x', 1), 0);
    EXPECT_STREQ(buffer, "####");
    EXPECT_EQ(memset_s(buffer, 4, 'x', 2), 0);
    EXPECT_STREQ(buffer, "xx##");
}

TEST(TextTest, NearestName) {
    const std::vector<std::string> names = {"simudetect",     "delaydetect", "delayanal", "errcodeshow",
                                            "errcodeshowall", "help",        "quit"};
    const std::pair<const char*, const char*> cases[] = {{"delaydetct", "delaydetect"},
                                                         {"simudetct", "simudetect"},
                                                         {"errcodshow", "errcodeshow"},
                                                         {"errcodeshowal", "errcodeshowall"},
                                                         {"delay", "delaydetect"},
                                                         {"hlep", "help"},
                                                         {"QUIT", ""},
                                                         {"xyzzy", ""},
                                                         {"", ""},
                                                         {"a", ""}};
    for (const auto& [word, expected] : cases) {
        EXPECT_EQ(NearestName(word, names), expected) << word;
    }
    EXPECT_EQ(NearestName(std::string(1 << 20, 'q'), names), "");
}

TEST(TextTest, Printable) {
    EXPECT_EQ(Printable(std::string("a\n\t\x1b[2J\0\x7f", 9)), "a\\n\\t\\x1b[2J\\x00\\x7f");
    EXPECT_EQ(Printable("abcdef", 6), "abcdef");
    EXPECT_EQ(Printable("abcdef", 5), "abcde...");
    EXPECT_EQ(Printable("r\xc3\xb6hre"), "r\xc3\xb6hre");
}

TEST(LogTest, LinesAndLevels) {
    const TempRoot root;
    ConfigureLog(root.Path("/log"), VPLOG_LEVEL_INFO);
    for (const uint32_t level : {3U, 4U, 5U, 7U}) {
        vplog(422, level, "unit.cpp", 36, "Work", 0, "%s\n%d", "text", 5);
    }
    std::string expected;
    for (const char* level : {"error", "warning", "info"}) {
        expected += R"([0-9]{4}(-[0-9]{2}){2} [0-9]{2}(:[0-9]{2}){2}\.[0-9]{3} \[)" + std::string(level) +
                    R"(\] \[422\] unit\.cpp:36 Work: text\\n5)" + "\n";
    }
    EXPECT_THAT(root.Read("/log"), testing::MatchesRegex(expected));
    EXPECT_ANY_THROW(ConfigureLog(root.Path("/log/below/a/file"), VPLOG_LEVEL_ERROR));
}

TEST(AlarmTest, WritesOneJsonLineOrSaysSo) {
    const TempRoot root;
    HostSettings settings;
    settings.root = root.Path();
    settings.node = 3;
    SetHostSettings(settings);
    EXPECT_EQ(ALM_SendAlarm(422, 0xF00C90150, 1, "fault\nDiagnose"), 0U);
    EXPECT_EQ(ALM_SendAlarm(422, UINT64_MAX, 2, nullptr), 0U);
    EXPECT_THAT(
        root.Read("/VRA/coffer_log/log/alarm/alarms.jsonl"),
        testing::MatchesRegex(
            R"(\{"alarmId":64437682512,"module":422,"node":3,"text":"fault\\nDiagnose","time":[0-9]+,"type":1\})"
            "\n"
            R"(\{"alarmId":18446744073709551615,"module":422,"node":3,"text":"","time":[0-9]+,"type":2\})"
            "\n"));
    std::filesystem::remove_all(root.Path("/VRA"));
    root.Write("/VRA", "a file in the way");
    EXPECT_NE(ALM_SendAlarm(422, 1, 1, "lost"), 0U);
}

int g_rowsRun = 0;

TEST(StartupTest, RunsEveryRow) {
    const auto good = [] { return ++g_rowsRun, 0U; };
    const auto bad = [] { return ++g_rowsRun, 5U; };
    const auto thrower = []() -> uint32_t { throw std::runtime_error("a row's own"); };
    ZORV_MODULE_INIT_S rows[] = {
        {"good", good, 0}, {"bad", bad, 0}, {"none", nullptr, 0}, {"throw", thrower, 0}, {"good", good, 0}};
    EXPECT_NE(ZORV_ModulesStartup(rows, 5), 0U);
    EXPECT_EQ(g_rowsRun, 3);
    EXPECT_EQ(ZORV_ModulesStartup(rows, 1), 0U);
    EXPECT_NE(ZORV_ModulesStartup(rows + 2, 1), 0U);
    EXPECT_NE(ZORV_ModulesStartup(nullptr, 1), 0U);
}

// Tasks of the timers below count their runs here.
struct Runs {
    std::mutex mutex;
    std::condition_variable changed;
    int count = 0;

    bool Reach(int target) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(30), [&] { return count >= target; });
    }
};

void CountAndThrow(void* runs) {
    auto& counted = *static_cast<Runs*>(runs);
    const std::lock_guard<std::mutex> lock(counted.mutex);
    ++counted.count;
    counted.changed.notify_all();
    throw std::runtime_error("a task's own");
}

uint32_t AddTimer(uint64_t period, uint8_t periodic, void (*callback)(void*), Runs& runs) {
    ZORV_TIMER_TASK_S task = {"task", period, periodic, callback, &runs};
    return ZORV_ThreadPoolAddTimerTaskSub(&task, 422, "Test", 1);
}

TEST(TimerTest, RunsAfterEachPeriodUntilStopped) {
    Runs repeated, once, never;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(AddTimer(20, 1, CountAndThrow, repeated), 0U);
    EXPECT_EQ(AddTimer(1, 0, CountAndThrow, once), 0U);
    EXPECT_EQ(AddTimer(3600000, 1, CountAndThrow, never), 0U);
    EXPECT_EQ(AddTimer(UINT64_MAX, 1, CountAndThrow, never), 0U);
    EXPECT_NE(AddTimer(0, 1, CountAndThrow, never), 0U);
    EXPECT_NE(AddTimer(1, 1, nullptr, never), 0U);
    EXPECT_TRUE(repeated.Reach(3));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
    EXPECT_TRUE(once.Reach(1));
    StopTimers();
    EXPECT_NE(AddTimer(1, 1, CountAndThrow, never), 0U);
    EXPECT_EQ(once.count, 1);
    EXPECT_EQ(never.count, 0);
}

TEST(ThreadTest, RunsTheEntry) {
    Runs runs;
    const VOPX_THREAD_ENTRY entry = [](void* arg) { return CountAndThrow(arg), 0; };
    EXPECT_EQ(create_thread_nopreempt_raw(entry, &runs, 0), 0);
    EXPECT_TRUE(runs.Reach(1));
    EXPECT_NE(create_thread_nopreempt_raw(nullptr, &runs, 0), 0);
}

TEST(ConsoleTest, KeepsWholeGroupsOnly) {
    const ZORV_DIAG_HANDLER handler = [](int32_t, char**) { return 0U; };
    ZORV_DIAG_CMD_S good[] = {{"one", handler, "h"}, {"two", handler, nullptr}, {nullptr, nullptr, nullptr}};
    ZORV_DIAG_CMD_S bad[] = {{"three", handler, "h"}, {"four", nullptr, "h"}, {nullptr, nullptr, nullptr}};
    EXPECT_EQ(Zorvdebug_RegDiagnose("group", good), 0U);
    EXPECT_NE(Zorvdebug_RegDiagnose("group", good), 0U);
    EXPECT_NE(Zorvdebug_RegDiagnose("other", bad), 0U);
    EXPECT_NE(Zorvdebug_RegDiagnose(nullptr, good), 0U);
    EXPECT_NE(Zorvdebug_RegDiagnose("other", nullptr), 0U);
    ASSERT_EQ(RegisteredCommands().size(), 2U);
    EXPECT_STREQ(RegisteredCommands()[1].row->name, "two");
    EXPECT_STREQ(RegisteredCommands()[1].group, "group");
}
}  // namespace
