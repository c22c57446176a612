#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "tests/host/temp_root.h"

namespace {
using Words = std::vector<std::string>;

constexpr const char* SWITCH_FILE = "/VRA/coffer_log/log/heal/data/faultDiagSwitch.ini";

struct Outcome {
    int status;  // of the exit; negative: the signal that ended the program
    std::string out, err;

    bool operator==(const Outcome& other) const {
        return status == other.status && out == other.out && err == other.err;
    }
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << "status " << outcome.status << "\nout: " << outcome.out << "\nerr: " << outcome.err;
}

class ProgramTest : public testing::Test {
protected:
    // Runs the host with the probe, the temporary root and these words, and `input` on its standard input.
    Outcome Run(Words words, const std::string& input = "") {
        words.insert(words.begin(), {"--plugin", PROBE_PLUGIN, "--root", root.Path()});
        return RunBare(words, input);
    }

    // The same with these words only, and standard output as the shell is told.
    Outcome RunBare(const Words& words, const std::string& input = "", const std::string& output = "") {
        std::string command = "exec '" HOST_PROGRAM "'";
        for (const std::string& word : words) {
            command += " '" + word + "'";
        }
        command += " <" + root.Write("/in", input) + " 2>" + root.Path("/err");
        command += output.empty() ? " >" + root.Path("/out") : output;
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), root.Read("/out"),
                root.Read("/err")};
    }

    const TempRoot root;
};

#define EXPECT_HOLDS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

TEST_F(ProgramTest, RunsOneCommand) {
    const std::pair<Words, Outcome> cases[] = {
        {{"echo", "--root", "a b", "", "-h"}, {0, "[diagnose][probe][echo][--root][a b][][-h]\n", ""}},
        {{"--", "echo", "x"}, {0, "[diagnose][probe][echo][x]\n", ""}},
        {{"printerror"}, {1, "\t\t[ERROR]: input err\n", ""}},
        {{"innererror"}, {1, "\ninner error\n", ""}},
        {{"quoteerrors"}, {0, "said \t\t[ERROR]: x\n\ninner error\nonce\n", ""}},
        {{"throw"}, {1, "", "zorv-local: thrown by a handler\n"}},
        {{"ecko"}, {2, "", "zorv-local: unknown command 'ecko'; did you mean 'echo'?\n"}},
        {{"xyzzy"}, {2, "", "zorv-local: unknown command 'xyzzy'; 'help' lists the commands\n"}},
        {{""}, {2, "", "zorv-local: unknown command ''; 'help' lists the commands\n"}},
        {{"quit"}, {0, "", ""}},
        {{"quit", "now"}, {2, "", "zorv-local: usage: quit\n"}},
        {{"help", "echo"}, {0, "echo [WORD...]: print the words;\n    they may be quoted.\n", ""}},
        {{"help", "printerror"}, {0, "printerror: print an error line\n", ""}},
        {{"help", "innererror"}, {0, "innererror\n", ""}},
        {{"help", "ecko"}, {2, "", "zorv-local: unknown command 'ecko'; did you mean 'echo'?\n"}},
        {{"help", "a", "b"}, {2, "", "zorv-local: usage: help [COMMAND]\n"}},
    };
    for (const auto& [words, outcome] : cases) {
        EXPECT_EQ(Run(words), outcome) << words.front();
    }
}

TEST_F(ProgramTest, HelpListsFirstLines) {
    EXPECT_EQ(Run({"help"}).out,
              "probe\n  echo [WORD...]: print the words;\n  length WORD: bytes of the word.\n"
              "  printerror: print an error line\n  innererror\n  quoteerrors\n  throw\n  report\n"
              "console\n  help [COMMAND]: list the commands, or explain one.\n"
              "  switch get | set on|on-silent|off: show or set the cluster's fault diagnosis switch.\n"
              "  quit: leave; so does Ctrl-D.\n");
}

TEST_F(ProgramTest, SwitchGoesThroughMessages) {
    const std::string notStored = "2 (on-silent, the default: no value is stored)";
    EXPECT_EQ(Run({"switch", "get"}).out, notStored + "\n");
    EXPECT_EQ(Run({"switch", "set", "off"}).out,
              "old value: " + notStored + "\nnew value: 3 (off), stored on node 1\n");
    EXPECT_EQ(Run({"switch", "get"}).out, "3 (off)\n");
    EXPECT_EQ(Run({"--node", "9", "switch", "set", "on"}).out,
              "old value: 3 (off)\nnew value: 1 (on), stored on node 9\n");
    root.Write(SWITCH_FILE, "[heal]\nvalue=7\n");
    EXPECT_EQ(Run({"switch", "get"}).out, "7 (no value of the switch: taken as 2, on-silent)\n");
    for (const Words& words :
         {Words{"switch"}, {"switch", "get", "x"}, {"switch", "set"}, {"switch", "set", "1"}}) {
        EXPECT_EQ(Run(words).status, 2);
    }
    std::filesystem::remove_all(root.Path("/VRA"));
    root.Write("/VRA", "a file in the way");
    const Outcome failed = Run({"switch", "set", "off"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.out, "");
    EXPECT_HOLDS(failed.err, "zorv-local: node 1 could not store the value, result 1\n");
}

TEST_F(ProgramTest, ReadsLinesOfInput) {
    const std::string mebibyte(1 << 20, 'a'), error = "zorv-local: line 1: ";
    const std::string unknown = error + "unknown command '", advice = "'; 'help' lists the commands\n";
    const std::pair<std::string, Outcome> cases[] = {
        {"", {0, "", ""}},
        {"  # echo no", {0, "", ""}},
        {"\techo  one\ttwo # three\r", {0, "[diagnose][probe][echo][one][two][#][three]\n", ""}},
        {"'echo' 'a \"b' \"c 'd\" e'f g'\"h\" '' \\n",
         {0, "[diagnose][probe][echo][a \"b][c 'd][ef gh][][\\n]\n", ""}},
        {"echo don't \"", {2, "", error + "the quote ' is not closed\n"}},
        {"ecko", {2, "", unknown + "ecko'; did you mean 'echo'?\n"}},
        {"printerror", {1, "\t\t[ERROR]: input err\n", ""}},
        {"length " + mebibyte, {0, "1048576\n", ""}},
        {mebibyte, {2, "", unknown + std::string(40, 'a') + "..." + advice}},
        {std::string("echo a\0b", 8), {2, "", error + "a command line cannot hold a NUL byte\n"}},
        {"\x1b[2J\x01\xff", {2, "", unknown + "\\x1b[2J\\x01\xff" + advice}},
        {std::string((16 << 20) + 1, 'a'), {2, "", error + "longer than 16777216 bytes\n"}},
    };
    for (const auto& [line, outcome] : cases) {
        EXPECT_EQ(Run({}, line), outcome) << line.substr(0, 40);
        EXPECT_EQ(Run({}, line + "\necho next\n").out, outcome.out + "[diagnose][probe][echo][next]\n");
    }
}

TEST_F(ProgramTest, WorstLineIsTheStatus) {
    const Outcome expected = {2, "[diagnose][probe][echo][a]\n\t\t[ERROR]: input err\n",
                              "zorv-local: line 3: unknown command 'nonsense'; 'help' lists the commands\n"
                              "zorv-local: line 5: usage: switch get | switch set on|on-silent|off\n"};
    EXPECT_EQ(Run({}, "echo a\n\nnonsense\nprinterror\nswitch maybe\nquit\necho b\n"), expected);
    EXPECT_EQ(Run({}, "printerror\necho a\n").status, 1);
}

TEST_F(ProgramTest, WhatIsNotAResultGoesElsewhere) {
    const Outcome outcome = Run({"report"});
    EXPECT_EQ(outcome.out, "root " + root.Path() + ", alarm 0\n");
    EXPECT_HOLDS(outcome.err, " [warning] [422] probe.cpp:7 Report: of the probe\n");
    EXPECT_HOLDS(outcome.err, "alarm 0xF00C90150 of module 422, type 1: probe\n");
    const Outcome logged = Run({"--log", root.Path("/log"), "--log-level", "info", "report"});
    EXPECT_EQ(logged.err, "alarm 0xF00C90150 of module 422, type 1: probe\n");
    EXPECT_HOLDS(root.Read("/log"), "start-up row Messages: result 0\n");
    EXPECT_HOLDS(root.Read("/log"), "Report: of the probe\n");
}

TEST_F(ProgramTest, SaysWhyItDoesNotStart) {
    const std::string none = root.Path("/none"), file = root.Write("/file", "");
    const struct {
        Words words;
        int status;
        std::string err;
    } cases[] = {
        {{"--plugin", none, "help"}, 3, "cannot load the plug-in: "},
        {{"--plugin", ENTRYLESS_PLUGIN, "help"}, 3, "it has no ZorvSmartDiagnoseInit\n"},
        {{"--plugin", NEEDY_PLUGIN, "help"}, 3, "ZORV_ServiceOfNoHost"},
        {{"--plugin", PROBE_PLUGIN, "--root", none, "help"},
         3,
         "the root '" + none + "' is not a directory\n"},
        {{"--plugin", PROBE_PLUGIN, "--root", "", "help"}, 3, "the root '' is not a directory\n"},
        {{"--plugin", PROBE_PLUGIN, "--log", file + "/log", "help"}, 3, "/file/log"},
        {{"--no-such-option"}, 2, "--no-such-option"},
        {{"--node", "x"}, 2, "--node"},
        {{"--log-level", "loud"}, 2, "'loud' is none of error, warning, info, debug"},
    };
    for (const auto& row : cases) {
        const Outcome outcome = RunBare(row.words);
        EXPECT_EQ(outcome.status, row.status) << row.words.front();
        EXPECT_HOLDS(outcome.err, "zorv-local: ");
        EXPECT_HOLDS(outcome.err, row.err);
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(RunBare({"--version"}).out.find("zorv-local "), 0U);
    EXPECT_HOLDS(RunBare({"--help"}).out, "Usage: zorv-local [OPTIONS] [COMMAND [ARGS...]]\n");
}

TEST_F(ProgramTest, LeavesWhenNobodyCanRead) {
    int broken[2];
    ASSERT_EQ(pipe(broken), 0);
    close(broken[0]);
    const Words words = {"--plugin", PROBE_PLUGIN, "--root", root.Path(), "--log", root.Path("/log")};
    for (const std::string& output :
         {" >&" + std::to_string(broken[1]), std::string(" >/dev/full"), std::string(" >&-")}) {
        const Outcome outcome = RunBare(words, "echo a\necho b\n", output);
        EXPECT_EQ(outcome.status, 1) << output;
        EXPECT_HOLDS(outcome.err, "zorv-local: line 1: cannot print the results: ");
        EXPECT_EQ(outcome.err.find("line 2"), std::string::npos);
        EXPECT_EQ(root.Read("/log"), "") << "a file took the number of the closed stream";
    }
    close(broken[1]);
}
}  // namespace
