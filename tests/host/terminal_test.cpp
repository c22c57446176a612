#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "tests/host/temp_root.h"

namespace {
// The host's console at the other end of a pseudo-terminal.
class Terminal {
public:
    Terminal() {
        const winsize size = {24, 80, 0, 0};
        child = forkpty(&fd, nullptr, nullptr, &size);
        if (child == 0) {
            setenv("TERM", "xterm", 1);
            setenv("HOME", "/nonexistent", 1);
            execl(HOST_PROGRAM, HOST_PROGRAM, "--plugin", PROBE_PLUGIN, "--root", root.Path().c_str(),
                  nullptr);
            _exit(127);
        }
    }
    ~Terminal() {
        if (child > 0) {
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
        }
        close(fd);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void Type(const std::string& keys) const {
        EXPECT_EQ(write(fd, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    // Whether the text appears on the screen, behind what was awaited before.
    bool Shows(const std::string& text) {
        for (;;) {
            const size_t found = screen.find(text, seen);
            if (found != std::string::npos) {
                seen = found + text.size();
                return true;
            }
            if (!ReadMore()) {
                ADD_FAILURE() << "no '" << text << "' in: " << screen.substr(seen);
                return false;
            }
        }
    }

    bool HasShown(const std::string& text) const { return screen.find(text) != std::string::npos; }

    int ExitStatus() {
        while (ReadMore()) {
        }
        int status = -1;
        waitpid(child, &status, 0);
        child = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    bool ReadMore() {
        pollfd ready = {fd, POLLIN, 0};
        char bytes[4096];
        const ssize_t got = poll(&ready, 1, 20000) == 1 ? read(fd, bytes, sizeof bytes) : -1;
        screen.append(bytes, got > 0 ? static_cast<size_t>(got) : 0);
        return got > 0;
    }

    const TempRoot root;
    int fd = -1;
    pid_t child = -1;
    std::string screen;
    size_t seen = 0;
};

TEST(TerminalTest, EditsRemembersAndCompletes) {
    Terminal terminal;
    ASSERT_TRUE(terminal.Shows("zorv> "));
    terminal.Type("ec\tone\r");
    ASSERT_TRUE(terminal.Shows("[diagnose][probe][echo][one]\r\n"));
    ASSERT_TRUE(terminal.Shows("zorv> "));
    terminal.Type("\x1b[A\b\b\btwo\r");
    ASSERT_TRUE(terminal.Shows("[diagnose][probe][echo][two]\r\n"));
    ASSERT_TRUE(terminal.Shows("zorv> "));
    terminal.Type("qu\t");
    ASSERT_TRUE(terminal.Shows("qu"));
    terminal.Type("\t");
    ASSERT_TRUE(terminal.Shows("quit  quoteerrors"));
    terminal.Type("\x03");
    ASSERT_TRUE(terminal.Shows("^C"));
    ASSERT_TRUE(terminal.Shows("zorv> "));
    terminal.Type("switch se\ton-\t\r");
    ASSERT_TRUE(terminal.Shows("\r\nold value: 2 (on-silent, the default"));
    ASSERT_TRUE(terminal.Shows("zorv> "));
    terminal.Type("nonsense\r");
    ASSERT_TRUE(terminal.Shows("zorv-local: unknown command 'nonsense'"));
    ASSERT_TRUE(terminal.Shows("zorv> "));
    terminal.Type("\x04");
    EXPECT_EQ(terminal.ExitStatus(), 0);
    EXPECT_FALSE(terminal.HasShown("unknown command 'qu'"));
}
}  // namespace
