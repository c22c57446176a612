#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <thread>
#include <tuple>

#include "agent/agent_time.h"

namespace {
auto Fields(const VOPX_TIME_S& time) {
    return std::make_tuple(time.year, time.month, time.day, time.hour, time.minute, time.second);
}

TEST(TimeTest, CalendarBothWays) {
    const struct {
        int64_t seconds;
        VOPX_TIME_S time;
    } cases[] = {
        {0, {0, 0, 0, 1, 1, 1970}},
        {-1, {59, 59, 23, 31, 12, 1969}},
        {1709164800, {0, 0, 0, 29, 2, 2024}},
        {2147483648, {8, 14, 3, 19, 1, 2038}},
        {-62167219201, {59, 59, 23, 31, 12, -1}},
        {67767976233532799, {59, 59, 23, 31, 12, 2147483647}},
        {-67768100567971200, {0, 0, 0, 1, 1, INT32_MIN}},
    };
    for (const auto& [seconds, time] : cases) {
        EXPECT_EQ(vopx_time_mktime(&time), seconds);
        if (time.year == INT32_MIN) {
            continue;  // the C library's calendar begins 1900 years later
        }
        VOPX_TIME_S out = {9, 9, 9, 9, 9, 9};
        vopx_time_gmtime(seconds, &out);
        EXPECT_EQ(Fields(out), Fields(time)) << seconds;
    }
    for (const int64_t beyond : {int64_t{67767976233532800}, INT64_MAX, INT64_MIN}) {
        VOPX_TIME_S out = {9, 9, 9, 9, 9, 9};
        vopx_time_gmtime(beyond, &out);
        EXPECT_EQ(Fields(out), Fields({})) << beyond;
    }
}

TEST(TimeTest, FieldsCarryOver) {
    const std::pair<VOPX_TIME_S, int64_t> cases[] = {
        {{0, 0, 0, 30, 2, 2023}, 1677715200},     {{0, 0, 0, 30, 2, 2024}, 1709251200},
        {{60, 59, 23, 31, 12, 2023}, 1704067200}, {{-1, 0, 24, 0, 1, 2000}, 946684799},
        {{0, 0, 0, 1, 13, 2023}, 1704067200},     {{0, 0, 0, 1, -11, 2023}, 1640995200}};
    for (const auto& [given, seconds] : cases) {
        EXPECT_EQ(vopx_time_mktime(&given), seconds);
    }
    const VOPX_TIME_S largest = {INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX};
    EXPECT_GT(vopx_time_mktime(&largest), 67767976233532799);
}

TEST(TimeTest, ZoneCountsInWholeHours) {
    const std::pair<const char*, int64_t> cases[] = {
        {"UTC0", 0},          {"XXX-8", 28800}, {"XXX-5:30", 18000}, {"XXX+3", -10800},
        {"XXX+3:30", -10800}, {"XXX+0:30", 0},  {"XXX-14", 50400}};
    for (const auto& [zone, offset] : cases) {
        setenv("TZ", zone, 1);
        tzset();
        int64_t stored = 0;
        const int64_t before = std::time(nullptr);
        const int64_t local = vopx_time_getlocaltime(&stored);
        EXPECT_GE(local, before + offset) << zone;
        EXPECT_LE(local, std::time(nullptr) + offset) << zone;
        EXPECT_EQ(stored, local);
    }
    EXPECT_GT(vopx_time_getlocaltime(nullptr), 0);
}

TEST(TimeTest, JiffiesAreFourMilliseconds) {
    const auto ticks = [] {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<uint64_t>(now.tv_sec * 250 + now.tv_nsec / 4000000);
    };
    const uint64_t before = ticks();
    const uint64_t jiffies = vopx_get_jiffies();
    EXPECT_LE(before, jiffies);
    EXPECT_LE(jiffies, ticks());
}

TEST(TimeTest, SignalsDoNotShortenASleep) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    std::atomic<bool> awake{false};
    const pthread_t sleeper = pthread_self();
    std::thread disturber([&] {
        while (!awake) {
            pthread_kill(sleeper, SIGUSR1);
            usleep(1000);  // between two signals
        }
    });
    const auto start = std::chrono::steady_clock::now();
    vopx_10msleep(6);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
    awake = true;
    disturber.join();
}
}  // namespace
