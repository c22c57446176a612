#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/host/temp_root.h"

namespace {
using testing::HasSubstr;
using testing::MatchesRegex;

const std::string PROBE = "--plugin " PROBE_PLUGIN " --root $PWD ";
const std::string ADVICE = "; 'help' lists the commands\n";
const std::string SAID = "[diagnose][probe][echo]";

struct Outcome {
    int status;  // of the exit; -1: a signal ended the program
    std::string out, err;
};

class ProgramTest : public testing::Test {
protected:
    // Runs the host in the temporary root with `input` and these words of the shell's.
    Outcome Run(const std::string& words, const std::string& input = "") {
        root.Write("/in", input);
        const std::string command = "cd " + root.Path() + " && exec " + program + " <in >out 2>err " + words;
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, root.Read("/out"), root.Read("/err")};
    }

    const TempRoot root;
    std::string program = HOST_PROGRAM;
};

TEST_F(ProgramTest, ExitStatuses) {
    const std::string cluster = PROBE + "--master 1 --cluster in help";
    const struct {
        std::string words, input;
        int status;
        std::string out, err;
    } cases[] = {
        {PROBE + "echo --root 'a b' '' -h", "", 0, SAID + "[--root][a b][][-h]\n", ""},
        {PROBE + "-- echo", "", 0, SAID + "\n", ""},
        {PROBE + "print '\ninner error'", "", 1, "\ninner error\n", ""},
        {PROBE + "print '\t\t[ERROR]: input err' --node=x", "", 1, "\t\t[ERROR]: input err\n",
         "zorv-local: usage: print\nzorv-local: '--node=x' is behind the command"},
        {PROBE + "throw", "", 1, "", "zorv-local: thrown by a handler\n"},
        {PROBE + "--log log delaydetect", "", 1, "lumoLocName\n",
         "failed statements: 1 given up; on no rows: no database"},
        {PROBE + "--log log delaydetect 60", "", 1, "",
         "zorv-local: the command gave no answer; the log tells why\n"},
        {PROBE + "''", "", 2, "", "zorv-local: unknown command ''" + ADVICE},
        {PROBE, "echo '", 2, "", "zorv-local: line 1: the quote ' is not closed\n"},
        {PROBE, "", 0, "", ""},
        {PROBE, "print '\t\t[ERROR]: x'\necho\n", 1, "\t\t[ERROR]: x\n" + SAID + "\n", ""},
        {PROBE, "echo\n\n''\nquit\necho", 2, SAID + "\n", "zorv-local: line 3: unknown command ''" + ADVICE},
        {"--plugin none help", "", 3, "", "cannot load the plug-in: "},
        {"--plugin " OTHER_LIBRARY " help", "", 3, "", "it has no ZorvSmartDiagnoseInit; name "},
        {"--plugin " NEEDY_PLUGIN " help", "", 3, "", "ZORV_ServiceOfNoHost"},
        {"--plugin " PROBE_PLUGIN " --root none help", "", 3, "", "the root 'none' is not a directory\n"},
        {PROBE + "--log in/log help", "", 3, "", "in/log"},
        {cluster, "1 ipc:///a\n#\n 1 ipc:///b x", 3, "", "in:3: a line is a node id and an address\n"},
        {cluster, "1 ipc:///a#\n2 ipc:///a#", 3, "", "in:2: node 1 has that address\n"},
        {cluster, "4294967296 ipc:///x", 3, "", "in:1: '4294967296' is no node id\n"},
        {cluster, "1 ipc://x", 3, "", "in:1: after ipc:// comes an absolute path of at most 107 bytes\n"},
        {cluster, "1 tcp://h:65536", 3, "", "in:1: after tcp:// come a host, ':' and a port\n"},
        {cluster, "1 udp://h:1", 3, "", "'udp://h:1' begins with none of ipc://, tcp:// and tls+tcp://\n"},
        {cluster, "1 tls+tcp://h:0", 3, "", "in:1: after tls+tcp:// come a host, ':' and a port\n"},
        {cluster, "1 tcp://[::]:1", 3, "",
         "node 1 listens with plain tcp, and '::' is neither on this machine"},
        {cluster, "2 tcp://[::1]:65535 # but", 3, "", "in: it does not name node 1\n"},
        {cluster, "1 ipc://" + root.Path("/in"), 3, "", "/in: the file there is no socket\n"},
        {PROBE + "--cluster in help", "", 2, "", "--cluster: needs --master"},
        {PROBE + "--master 2 help", "", 2, "", "--master: another node than this one needs --cluster"},
        {"--no-such-option", "", 2, "", "--no-such-option"},
        {"--node x", "", 2, "", "--node"},
        {"--log-level loud", "", 2, "", "'loud' is none of error, warning, info, debug"},
    };
    for (const auto& row : cases) {
        const Outcome outcome = Run(row.words, row.input);
        EXPECT_EQ(outcome.status, row.status) << row.words << row.input;
        EXPECT_EQ(outcome.out, row.out);
        EXPECT_EQ(outcome.err.find("zorv-local: ") == 0, !row.err.empty()) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr(row.err));
    }
    EXPECT_THAT(Run("--help").out, HasSubstr("Usage: zorv-local [OPTIONS] [COMMAND [ARGS...]]\n"));
    EXPECT_THAT(Run("--version").out, MatchesRegex("zorv-local [0-9.]+\nSQLite 3[0-9.]+\njsoncpp [0-9.]+\n"));
}

TEST_F(ProgramTest, ReadsLinesOfInput) {
    const std::string notStored = "2 (on-silent, the default: no value is stored)";
    const struct {
        std::string line, out, err;
    } cases[] = {
        {"  # echo no", "", ""},
        {"\techo  one\ttwo # three\r", SAID + "[one][two][#][three]\n", ""},
        {"'echo' 'a \"b' \"c 'd\" e'f g'\"h\" '' \\n", SAID + "[a \"b][c 'd][ef gh][][\\n]\n", ""},
        {"echo don't \"", "", "the quote ' is not closed\n"},
        {std::string(1 << 20, 'a'), "", "unknown command '" + std::string(40, 'a') + "...'" + ADVICE},
        {std::string((16 << 20) + 1, 'a'), "", "longer than 16777216 bytes\n"},
        {std::string("echo a\0b", 8), "", "a command line cannot hold a NUL byte\n"},
        {"\x1b[2J\x7f\xff", "", "unknown command '\\x1b[2J\\x7f\\xff'" + ADVICE},
        {"help",
         "probe\n  echo [WORD...]: show the words;\n  print: a line of text\n  throw\n  probe\n  "
         "delaydetect\n"
         "console\n  help [COMMAND]: list the commands, or explain one.\n"
         "  status [--json]: what this host works on: files, configuration, switch, alarms, start-up.\n"
         "  alarms [N] [--json]: the last N alarms, 20 if not told, the newest last.\n"
         "  switch get | set on|on-silent|off [--json]: show or set the cluster's fault diagnosis switch.\n"
         "  explain [OPTIONS] START END | MINUTES: where the extra delay of slow points goes; --help tells "
         "more.\n"
         "  overview [START END | MINUTES]: the last four hours, or a range, on one screen: points, errors, "
         "healings, events.\n"
         "  series POINT [--columns NAMES] START END | MINUTES: the rows that the statistics have of a "
         "point.\n"
         "  check [OPTIONS] [FILE]: what is wrong with the configuration's graphs; --help tells more.\n"
         "  capture [--name NAME] [--timeout SECONDS] DIR|FILE.tar.zst: copies this node's files, consistent "
         "beside their writers, for --capture elsewhere.\n"
         "  quit: leave; so does Ctrl-D.\n",
         ""},
        {"print 'no \t\t[ERROR]: x'", "no \t\t[ERROR]: x\n", ""},
        {"help echo", "echo [WORD...]: show the words;\n    they may be quoted.\n", ""},
        {"help ecko", "", "unknown command 'ecko'; did you mean 'echo'?\n"},
        {"switch get", notStored + ", from node 9\n", ""},
        {"switch set off", "old value: " + notStored + "\nnew value: 3 (off), confirmed by node 9\n", ""},
        {"switch get", "3 (off), from node 9\n", ""},
        {"switch set 1", "", "the switch cannot be '1'; it can be on, on-silent or off\n"},
        {"switch get off", "", "usage: switch get | switch set on|on-silent|off\n"},
        {"quit now", "", "usage: quit\n"},
        {"echo end", SAID + "[end]\n", ""},
    };
    std::string input, out, err;
    int number = 0;
    for (const auto& row : cases) {
        input += (number++ == 0 ? "" : "\n") + row.line;
        out += row.out;
        err += row.err.empty() ? "" : "zorv-local: line " + std::to_string(number) + ": " + row.err;
    }
    const Outcome outcome = Run(PROBE + "--node 9", input);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, out);
    EXPECT_EQ(outcome.err, err);
}

TEST_F(ProgramTest, WhatIsNotAResultGoesElsewhere) {
    const std::string time = "[0-9]{4}(-[0-9]{2}){2} [0-9]{2}(:[0-9]{2}){2}\\.[0-9]{3} ";
    const std::string alarm = "alarm 0xF00C90150 of module 422, type 1: a\\nb\n";
    const Outcome outcome = Run(PROBE + "--node 3 probe");
    EXPECT_EQ(outcome.out, "root " + root.Path() + ", alarm 0\n");
    EXPECT_THAT(outcome.err, HasSubstr(alarm));
    EXPECT_THAT(outcome.err, MatchesRegex(time + R"(\[warning\] \[422\] probe\.cpp:7 Report: of\\nthe probe)"
                                                 "\n.*"));
    EXPECT_THAT(root.Read("/VRA/coffer_log/log/alarm/alarms.jsonl"),
                MatchesRegex("\\{\"alarmId\":64437682512,\"module\":422,\"node\":3,\"text\":\"a\\\\nb\","
                             "\"time\":[0-9]+,\"type\":1\\}\n"));

    std::filesystem::remove_all(root.Path("/VRA"));
    root.Write("/VRA", "a file in the way");
    const Outcome failed = Run(PROBE + "--log log --log-level error", "probe\nswitch set off");
    EXPECT_EQ(failed.out, "root " + root.Path() + ", alarm 1\n");
    EXPECT_EQ(failed.err, alarm + "zorv-local: line 2: node 1 could not store the value, result 1\n");
    EXPECT_THAT(root.Read("/log"),
                MatchesRegex(time + "\\[error\\] .*/alarms\\.jsonl cannot be written: .*"));
}

TEST_F(ProgramTest, LeavesWhenNobodyCanRead) {
    int broken[2];
    ASSERT_EQ(pipe(broken), 0);
    close(broken[0]);
    for (const std::string& output :
         {">&" + std::to_string(broken[1]), std::string(">/dev/full"), std::string(">&-")}) {
        const Outcome outcome = Run(PROBE + "--log log " + output, "echo a\necho b\n");
        EXPECT_EQ(outcome.status, 1) << output;
        EXPECT_THAT(outcome.err,
                    MatchesRegex(output[1] == '&' && output[2] != '-'
                                     ? ""  // who reads no more knows it
                                     : "zorv-local: line 1: cannot print the results: [^\n]*\n"));
        EXPECT_EQ(root.Read("/log"), "") << "a file took the number of the closed stream";
    }
    close(broken[1]);
}

TEST_F(ProgramTest, ExplainRunsTheProgramBesideThisOne) {
    const auto folder = std::filesystem::absolute("beside");  // programs may not run where the root is
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    std::filesystem::copy(HOST_PROGRAM, folder / "zorv-local");
    program = folder / "zorv-local";
    EXPECT_EQ(Run(PROBE + "explain 1").err,
              "zorv-local: cannot run zorv-explain: No such file or directory\n");
    std::ofstream(folder / "zorv-explain")
        << "#!/bin/sh\ncat\nprintf '[%s]' \"$@\"\nfor last; do :; done\neval \"$last\"\n";
    std::filesystem::permissions(folder / "zorv-explain", std::filesystem::perms::owner_all);
    const std::string rooted = "[--root][" + root.Path() + "]";

    const Outcome single = Run(PROBE + "--log log --zone +0530 explain -x 'a b' '' 'exit 4'");
    EXPECT_EQ(single.status, 4);
    EXPECT_EQ(single.out, rooted + "[--zone][+05:00][--log][log][-x][a b][][exit 4]");
    const std::string more(1 << 20, '#');  // than is read at a time: it is not the program's
    const Outcome piped = Run(PROBE, "echo a\nexplain 'exit 4'\necho b\nexplain 'kill -9 $$'\n" + more);
    EXPECT_EQ(piped.status, 1);
    EXPECT_EQ(piped.out, SAID + "[a]\n" + rooted + "[exit 4]" + SAID + "[b]\n" + rooted + "[kill -9 $$]");
    EXPECT_EQ(piped.err, "zorv-local: line 4: zorv-explain was ended by signal 9\n");
}
}  // namespace
