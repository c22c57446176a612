#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <future>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "agent/agent_memory.h"
#include "agent/agent_message.h"
#include "agent/agent_startup.h"
#include "agent/agent_time.h"
#include "agent/agent_timer.h"
#include "host/process/settings.h"
#include "host/services/timer.h"
#include "text/local_time.h"
#include "text/nearest_name.h"
#include "text/zone.h"

namespace {
using std::chrono::steady_clock;
using namespace std::chrono_literals;
using zorv::SetHostSettings;

TEST(MemoryTest, StaysWithinBounds) {
    const struct {
        size_t destMax, count;
        const char* text;
        int32_t result;
        const char* content;
    } cases[] = {
        {8, 7, "abc", 3, "abc"},   {8, 7, "", 0, ""},          {8, 7, "1234567", 7, "1234567"},
        {8, 3, "abcd", -1, "abc"}, {8, 0, "a", -1, ""},        {8, 8, "a", -1, ""},
        {1, 0, "", 0, ""},         {0, 0, "", -1, "########"},
    };
    for (const auto& row : cases) {
        char buffer[9] = "########";
        EXPECT_EQ(snprintf_s(buffer, row.destMax, row.count, "%s", row.text), row.result) << row.text;
        EXPECT_STREQ(buffer, row.content);
    }

    char buffer[] = "####";
    EXPECT_NE(memset_s(buffer, 3, 'x', 4), 0);
    EXPECT_STREQ(buffer, "####");
    EXPECT_EQ(memset_s(buffer, 4, 'x', 2), 0);
    EXPECT_STREQ(buffer, "xx##");
}

TEST(NearestNameTest, MendsTypingErrors) {
    const std::vector<std::string> names = {"delaydetect", "delayanal", "errcodeshow", "help"};
    const std::pair<const char*, const char*> cases[] = {
        {"delaydetct", "delaydetect"},
        {"errcodshow", "errcodeshow"},
        {"delay", "delaydetect"},
        {"hlep", "help"},
        {"HELP", ""},
        {"", ""},
    };
    for (const auto& [word, expected] : cases) {
        EXPECT_EQ(NearestName(word, names), expected) << word;
    }
}

// Counts a run of the row or task, which then goes wrong.
void CountAndThrow(void* runs) {
    ++*static_cast<std::atomic<int>*>(runs);
    throw std::runtime_error("its own");
}

bool Reaches(const std::atomic<int>& runs, int target) {
    for (int milliseconds = 0; runs < target && milliseconds < 30000; ++milliseconds) {
        usleep(1000);
    }
    return runs >= target;
}

std::atomic<int> g_rowsRun{0};

TEST(StartupTest, RunsEveryRow) {
    const auto good = [] { return ++g_rowsRun, 0U; };
    const auto thrower = [] { return CountAndThrow(&g_rowsRun), 0U; };
    ZORV_MODULE_INIT_S rows[] = {
        {"good", good, 0}, {"none", nullptr, 0}, {"throw", thrower, 0}, {"good", good, 0}};
    EXPECT_NE(ZORV_ModulesStartup(rows, 4), 0U);
    EXPECT_EQ(g_rowsRun, 3);
}

uint32_t AddTimer(uint64_t period, uint8_t periodic, std::atomic<int>& runs) {
    ZORV_TIMER_TASK_S task = {"task", period, periodic, CountAndThrow, &runs};
    return ZORV_ThreadPoolAddTimerTaskSub(&task, 422, "Test", 1);
}

TEST(TimerTest, RunsAfterEachPeriodUntilStopped) {
    std::atomic<int> repeated{0}, once{0}, never{0};
    const auto start = steady_clock::now();
    EXPECT_EQ(AddTimer(20, 1, repeated), 0U);
    EXPECT_EQ(AddTimer(1, 0, once), 0U);
    EXPECT_EQ(AddTimer(3600000, 1, never), 0U);
    EXPECT_EQ(AddTimer(UINT64_MAX, 1, never), 0U);
    EXPECT_NE(AddTimer(0, 1, never), 0U);
    EXPECT_TRUE(Reaches(repeated, 3));
    EXPECT_GE(steady_clock::now() - start, 60ms);
    EXPECT_TRUE(Reaches(once, 1));
    zorv::StopTimers();
    EXPECT_EQ(once, 1);
    EXPECT_EQ(never, 0);
}

TEST(TimeTest, Calendar) {
    const std::pair<int64_t, VOPX_TIME_S> cases[] = {
        {0, {0, 0, 0, 1, 1, 1970}},
        {-1, {59, 59, 23, 31, 12, 1969}},
        {1709164800, {0, 0, 0, 29, 2, 2024}},
        {1677715200, {0, 0, 0, 30, 2, 2023}},
        {946684799, {-1, 0, 24, 0, 1, 2000}},
        {1640995200, {0, 0, 0, 1, -11, 2023}},
        {-62167219201, {59, 59, 23, 31, 12, -1}},
        {67767976233532799, {59, 59, 23, 31, 12, INT32_MAX}},
        {-67768040609740800, {0, 0, 0, 1, 1, INT32_MIN + 1900}},
    };
    VOPX_TIME_S out;
    for (const auto& [seconds, time] : cases) {
        EXPECT_EQ(vopx_time_mktime(&time), seconds);
        vopx_time_gmtime(seconds, &out);
        EXPECT_EQ(vopx_time_mktime(&out), seconds);
    }
    vopx_time_gmtime(INT64_MAX, &out);
    EXPECT_EQ(out.day, 0);
}

TEST(TimeTest, ZoneCountsInWholeHoursAndIsKept) {
    const std::pair<const char*, int64_t> cases[] = {
        {"UTC0", 0}, {"XXX-8", 28800}, {"XXX-5:30", 18000}, {"XXX+3:30", -10800}, {"XXX+0:30", 0}};
    for (const auto& [zone, offset] : cases) {
        setenv("TZ", zone, 1);
        tzset();
        const int64_t before = std::time(nullptr) + offset;
        int64_t local = 0;
        EXPECT_EQ(vopx_time_getlocaltime(&local), local);
        EXPECT_TRUE(before <= local && local <= std::time(nullptr) + offset) << zone << local;
    }
    const struct {
        const char* tz;
        std::optional<std::string> zone;
        std::string note;
    } kept[] = {
        {"CET-1CEST,M3.5.0,M10.5.0/3", {}, ""},
        {"XXX+3:30", {}, "the zone is -03:30, but times count in whole hours, as the plug-in's: -03:00"},
        {"Nowhere/City", {}, "TZ is 'Nowhere/City', which is no zone that this machine knows: times are UTC"},
        {"Nowhere/City", "Europe/Berlin", ""},
        {"UTC", "+08:45", "the zone is +08:45, but times count in whole hours, as the plug-in's: +08:00"},
    };
    for (const auto& [tz, zone, note] : kept) {
        setenv("TZ", zone ? zone->c_str() : tz, 1);
        tzset();
        const int64_t now = zone == "+08:45" ? 28800 : ZoneOffsetAt(std::time(nullptr));
        setenv("TZ", tz, 1);
        EXPECT_EQ(KeepZone(zone), note);
        for (int64_t month = 0; month < 12; ++month) {
            EXPECT_EQ(ZoneOffsetAt(1672531200 + month * 30 * 86400), now) << tz;
        }
    }
    const std::pair<const char*, std::optional<int64_t>> offsets[] = {
        {"+0800", 28800}, {"+08:00", 28800}, {"+8", 28800}, {"-03:30", -12600}, {"Z", 0},  {"+1500", {}},
        {"+0860", {}},    {"+080", {}},      {"+8:00", {}}, {"8", {}},          {"+", {}}, {"+08:", {}}};
    for (const auto& [text, offset] : offsets) {
        EXPECT_EQ(OffsetOf(text), offset) << text;
    }
}

TEST(TimeTest, SignalsDoNotShortenASleep) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    std::atomic<bool> awake{false};
    std::thread disturber([&awake, sleeper = pthread_self()] {
        while (!awake) {
            pthread_kill(sleeper, SIGUSR1);
            usleep(1000);  // between two signals
        }
    });
    const auto start = steady_clock::now();
    vopx_10msleep(6);
    EXPECT_GE(steady_clock::now() - start, 60ms);
    awake = true;
    disturber.join();

    EXPECT_GE(vopx_get_jiffies(), static_cast<uint64_t>((start.time_since_epoch() + 60ms) / 4ms));
    EXPECT_LE(vopx_get_jiffies(), static_cast<uint64_t>(steady_clock::now().time_since_epoch() / 4ms));
}

enum : uint32_t { NODE = 7, ECHO = 1, SILENT, NEXT, UNKNOWN };

std::promise<ZORV_COMM_INFO_S> g_unanswered;

uint32_t Handle(ZORV_COMM_INFO_S* info, char* msg, void* /*context*/) {
    EXPECT_EQ(info->srcNid, NODE);
    if (info->msgOPCode == SILENT) {
        g_unanswered.set_value(*info);
        return 0;
    }
    if (info->msgOPCode == NEXT) {
        ZORV_COMM_INFO_S late = g_unanswered.get_future().get();
        EXPECT_NE(ZORV_CommSendAckMsg(&late, msg, 1), 0U);
    }
    return ZORV_CommSendAckMsg(info, msg, info->msgLen);
}

// The answer's text; nothing when the request failed.
std::optional<std::string> Ask(uint32_t node, uint32_t opcode, std::string text) {
    ZORV_COMM_INFO_S info;
    ZORV_CommFillinCommInfoInner(&info, node, 422, opcode, static_cast<uint32_t>(text.size()), 1);
    ZORV_COMM_RET_S reply = {};
    if (ZORV_CommSendRequestMsg(&info, text.data(), &reply) != 0) {
        return std::nullopt;
    }
    const std::string answer(static_cast<char*>(reply.data), reply.length);
    ZORV_CommFreeRetData(&reply);
    return answer;
}

TEST(MessageTest, AnswersAndDeadlines) {
    SetHostSettings({"", NODE, NODE, 30s});
    for (const uint32_t opcode : {ECHO, SILENT, NEXT}) {
        EXPECT_EQ(ZORV_CommRegMsgHandle(opcode, Handle), 0U);
        EXPECT_NE(ZORV_CommRegMsgHandle(opcode, Handle), 0U);
    }
    EXPECT_EQ(Ask(NODE, ECHO, "one"), "one");
    EXPECT_EQ(Ask(NODE, ECHO, ""), "");
    testing::internal::CaptureStderr();
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(Ask(NODE, UNKNOWN, "x"), std::nullopt);
    }
    EXPECT_LT(testing::internal::GetCapturedStderr().size(), 2000U) << "ten lines";
    EXPECT_EQ(Ask(NODE + 1, ECHO, "x"), std::nullopt);

    SetHostSettings({"", NODE, NODE, 20ms});
    EXPECT_EQ(Ask(NODE, SILENT, "late"), std::nullopt);
    SetHostSettings({"", NODE, NODE, 30s});
    EXPECT_EQ(Ask(NODE, NEXT, "right"), "right");
}
}  // namespace
