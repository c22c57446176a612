#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "agent/agent_alarm.h"
#include "agent/agent_heal.h"
#include "host/process/settings.h"
#include "tests/host/temp_root.h"

// What the calling thread had put on the disk, and renamed, in order.
static thread_local std::vector<std::string> g_steps;

int fsync(int fd) {
    const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd));
    const bool isFresh = file.extension().string().size() == 17;  // a random name
    g_steps.push_back(isFresh ? file.stem().string() + ".*" : file.filename().string());
    return static_cast<int>(syscall(SYS_fsync, fd));
}

int rename(const char* from, const char* to) noexcept {
    g_steps.emplace_back("rename");
    return renameat(AT_FDCWD, from, AT_FDCWD, to);
}

namespace {
using zorv::SetHostSettings;

constexpr const char* FILE_NAME = "/VRA/coffer_log/log/heal/data/test.ini";
constexpr int32_t UNTOUCHED = -77;

class HealTest : public testing::Test {
protected:
    HealTest() { SetHostSettings({root.Path()}); }

    static uint32_t Write(int32_t value) { return HealWriteZorvModePrivateIni(FILE_NAME, value, 0); }

    static int32_t ReadBack() {
        int32_t value = UNTOUCHED;
        const uint32_t result = HealReadZorvModePrivateIni(FILE_NAME, &value, 0);
        EXPECT_EQ(result != 0, value == UNTOUCHED);
        return value;
    }

    const TempRoot root;
};

TEST_F(HealTest, KeepsOneNumberAndTakesNothingElse) {
    EXPECT_EQ(ReadBack(), UNTOUCHED);
    for (const int32_t value : {0, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(Write(value), 0U);
        EXPECT_EQ(ReadBack(), value);
    }
    EXPECT_EQ(root.Read(FILE_NAME), "[heal]\nvalue=-2147483648\n");

    root.Write(FILE_NAME, "; written by hand\r\n[heal]\r\nvalue = 3 ; off\r\n");
    EXPECT_EQ(ReadBack(), 3);

    const std::string key = "[heal]\nvalue=", blanks(192, ' '), nul(1, '\0'), lines(1 << 20, '\n');
    for (const std::string& damaged :
         {std::string(), key, key + "2x", key + "2147483648", key + "2\nvalue=2\n", key + "2\njunk\n",
          std::string("[other]\nvalue=2\n"), key + "2" + blanks + "[cut]\n", key + "2" + nul + "9\n",
          key + "2" + lines}) {
        root.Write(FILE_NAME, damaged);
        EXPECT_EQ(ReadBack(), UNTOUCHED) << damaged.substr(0, 60);
    }
}

// A power failure must find the old content or the new one: contents come first, then names.
TEST_F(HealTest, WhatCountsIsOnTheDisk) {
    for (const int32_t value : {1, 2}) {
        EXPECT_EQ(Write(value), 0U);
    }
    EXPECT_EQ(ALM_SendAlarm(422, 1, 1, "text"), 0U);
    const std::string top = std::filesystem::path(root.Path()).filename();
    EXPECT_EQ(g_steps,
              (std::vector<std::string>{top, "VRA", "coffer_log", "log", "heal", "test.ini.*", "rename",
                                        "data", "test.ini.*", "rename", "data", "log", "alarms.jsonl"}));
}

TEST_F(HealTest, TheFileStaysItsOwners) {
    root.Write(FILE_NAME, "");
    chmod(root.Path(FILE_NAME).c_str(), 0640);
    const bool mayGive = geteuid() == 0 && chown(root.Path(FILE_NAME).c_str(), 1, 2) == 0;
    EXPECT_EQ(Write(1), 0U);
    struct stat status {};
    ASSERT_EQ(stat(root.Path(FILE_NAME).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & ALLPERMS, 0640U);
    EXPECT_EQ(status.st_uid, mayGive ? 1U : geteuid());
    EXPECT_EQ(status.st_gid, mayGive ? 2U : getegid());
}

TEST_F(HealTest, WritersDoNotMix) {
    const auto write = [] {
        for (int32_t number = 0; number < 500; ++number) {
            EXPECT_EQ(Write(number), 0U);
            EXPECT_GE(ReadBack(), 0);
        }
    };
    std::thread other(write);
    write();
    other.join();
}
}  // namespace
