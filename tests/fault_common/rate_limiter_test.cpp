#include "fault_common/fault_rate_limiter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "support/recording_agent.h"

namespace {

constexpr FaultLogSite SITE{"unit.cpp", 77, "Operation"};

TEST(RateLimiter, FollowsWindowsAndReportsWhatItSuppressed) {
    constexpr uint64_t W = 15000;
    const struct {
        const char* what;
        uint64_t now;
        int times, reported;  // lines tried; the count in the report, 0 for no report
        size_t passed;
    } steps[] = {
        {"the clock has run for less than a window", 10, 2, 0, 2},
        {"one more fits the first window, two do not", W - 1, 3, 0, 1},
        {"the window ends when exactly W has elapsed", W, 4, 0, 3},
        {"not yet a window later", 2 * W - 1, 1, 0, 0},
        {"less than ten windows since time 0: no report", 9 * W, 4, 0, 3},
        {"no window has ended, so no report either", 10 * W - 1, 1, 0, 0},
        {"ten windows: 2 + 1 + 1 + 1 + 1 were suppressed", 10 * W, 1, 6, 1},
        {"three more fit no longer", 10 * W + 1, 4, 0, 2},
        {"the next report is ten windows after the last", 20 * W - 1, 1, 0, 1},
        {"that window began a moment ago", 20 * W, 3, 0, 2},
        {"and so the report comes with the next one", 21 * W - 1, 1, 3, 1},
        {"nothing was suppressed: nothing to report", 40 * W, 1, 0, 1},
    };
    FaultUsualLimiter limiter;
    for (const auto& step : steps) {
        Agent::SetJiffies(step.now);
        for (int i = 0; i < step.times; ++i) {
            FAULT_LOG_LIMITED(limiter, SITE, FAULT_WARNING, "line");
        }
        Lines expected(step.passed, "4 unit.cpp Operation: line");
        if (step.reported > 0) {
            expected.insert(expected.begin(),
                            "3 unit.cpp Operation: print: " + std::to_string(step.reported) +
                                " messages suppressed.Operation,line=77.");
        }
        EXPECT_EQ(Agent::TakeLines(), expected) << step.what;
    }
}

TEST(RateLimiter, CountsEveryLineOfTwoThreads) {
    FaultUsualLimiter limiter;
    const auto admit500 = [&] {
        int admitted = 0;
        for (int i = 0; i < 500; ++i) {
            admitted += limiter.Admit(SITE) ? 1 : 0;
        }
        return admitted;
    };
    std::future<int> other = std::async(std::launch::async, admit500);
    EXPECT_EQ(admit500() + other.get(), 3);
    Agent::SetJiffies(2000000);
    EXPECT_TRUE(limiter.Admit(SITE));
    EXPECT_EQ(Agent::Record().Count("print: 997 messages suppressed."), 1U);
}

// A thread may read the clock just before another one opens a window: the older reading opens none of its
// own.
TEST(RateLimiter, ALateThreadOpensNoSecondWindow) {
    FaultUsualLimiter limiter;
    std::promise<void> hasRead;
    std::promise<void> mayGoOn;
    std::atomic<bool> first{true};
    Agent::OnClock([&] {
        if (first.exchange(false)) {
            hasRead.set_value();
            // The deadline is for a limiter that reads the clock under its lock: nobody can overtake it then.
            mayGoOn.get_future().wait_for(std::chrono::milliseconds(500));
        }
    });
    std::future<bool> late = std::async(std::launch::async, [&] { return limiter.Admit(SITE); });
    hasRead.get_future().wait();
    Agent::SetJiffies(1000001);
    int admitted = 0;
    for (int i = 0; i < 5; ++i) {
        admitted += limiter.Admit(SITE) ? 1 : 0;
    }
    mayGoOn.set_value();
    EXPECT_EQ(admitted + (late.get() ? 1 : 0), 3);
}

}  // namespace
