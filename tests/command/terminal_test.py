"""A console on a terminal, as an operator meets it; and the two commands that tell about the host itself."""
import fcntl
import json
import os
import pty
import re
import select
import signal
import socket
import sqlite3
import struct
import subprocess
import termios
import time
import unittest

from console import BIN, CONFIG, DATABASE, HEAL_DATABASE, POINTS, ConsoleTest, compact, delay_listing, eventually

START = 1672885800
RANGE = f"{compact(START)} {compact(START + 600)}"
TABLE = "lumo_data_" + compact(START)
ALARMS = "VRA/coffer_log/log/alarm/alarms.jsonl"
SOUND = {TABLE: [(POINTS[0], START + 30 * i, 5000 if i == 7 else 100) for i in range(20)]}
FOUND = delay_listing([(POINTS[0], START + 210, 5000)]).replace("\n", "\r\n")
CTRL_A, CTRL_C, CTRL_D, UP, RIGHT = "\x01", "\x03", "\x04", "\x1b[A", "\x1b[C"


def graph(*points, edges=()):
    return {"nodes": [{"id": i, "label": point} for i, point in enumerate(points, 1)], "edges": list(edges)}


class Terminal:
    def __init__(self, root, *arguments, rows=24, columns=80, closed=None, **variables):
        usual = {**os.environ, "TERM": "xterm", "NO_COLOR": "1", "ZORV_LOCAL_HISTFILE": ""}
        environment = {name: value for name, value in {**usual, **variables}.items() if value is not None}
        self.pid, self.file = pty.fork()
        if self.pid == 0:
            if closed == "stdout":
                os.close(1)
            self.resize(rows, columns, file=0)
            os.execve(BIN / "zorv-local", ["zorv-local", "--root", root, *arguments], environment)
        self.screen, self.seen = "", 0
        self.until("zorv>")

    def resize(self, rows, columns, file=None):
        fcntl.ioctl(self.file if file is None else file, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def read(self, seconds):
        if not select.select([self.file], [], [], seconds)[0]:
            return False
        try:
            self.screen += os.read(self.file, 1 << 16).decode(errors="replace")
        except OSError:  # nobody has the terminal any more
            return False
        return True

    def until(self, text, seconds=60):
        """What came to stand on the screen up to `text`, which must come."""
        deadline = time.monotonic() + seconds
        while text not in self.screen[self.seen:]:
            left = deadline - time.monotonic()
            if left < 0 or not self.read(left):
                raise AssertionError(f"{text!r} is missing in {self.screen[self.seen:]!r}")
        start, self.seen = self.seen, self.screen.index(text, self.seen) + len(text)
        return self.screen[start:self.seen]

    def type(self, keys, until="zorv> ", seconds=60):
        for sent in range(0, len(keys), 4096):
            while self.read(0):  # a full terminal takes no keys
                pass
            os.write(self.file, keys[sent:sent + 4096].encode())
        return self.until(until, seconds)

    def leave(self, keys=CTRL_D):
        os.write(self.file, keys.encode())
        while self.read(60):
            pass
        status = os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])
        os.close(self.file)
        return status


class OnTerminal(ConsoleTest):
    def configure(self, **graphs):
        (self.root / CONFIG).write_text(json.dumps(graphs))

    def test_completion(self):
        self.configure(A=graph("ONE_READ", "ONE_WRITE"), B=graph("TWO", "ONE_READ", "a 'b"), C=[], D={"nodes": 1})
        terminal = Terminal(self.root)
        for keys, shown in (  # TAB is pressed behind the keys; the shown text stands where they end
                ("delayd", "etect "), ("d", "datashow  delayanal  delaydetect\r\n"),
                ("errcodeshow IOE", "RROR "), ("errcodeshow IOERROR P", "OOL "), ("switch set on-", "silent "),
                ("datashow O", "NE_"), ("showgraph mapg", "raph "), ("showgraph vecob T", "WO "),
                ("explain 60 --gra", "ph "), ("explain --graph ", "A  B\r\n"), ("explain --point T", "WO "),
                ("explain --point ho", "sts "), ("explain 60 --ba", "seline "), ("explain --baseline y", "esterday "),
                # Nothing, which a terminal rings for: behind the last word that is known.
                ("errcodeshow IOERROR POOL ", "\a"), ("showgraph vecob TWO ", "\a"), ("datashow TWO ", "\a"),
                ("switch set on o", "\a"), ("switch get o", "\a"), ("help help s", "\a")):
            terminal.type(keys + "\t", shown)
            terminal.type(CTRL_C)
        for keys, shown in (
                ("he ala" + CTRL_A + RIGHT * 2 + "\t\r", "unknown command 'ala'; did you mean"),
                ("help delaydetect" + CTRL_A + RIGHT * 8 + "\t\r", "\ndelaydetect [starTime endTime]"),
                ("help 'ala\t'\r", "unknown command 'ala'"), ("help nonsense\t\r", "unknown command 'nonsense'")):
            terminal.type(keys, shown)
            terminal.until("zorv> ")
        self.configure(A=graph("NEW_POINT"))
        terminal.type("datashow \t" + CTRL_C, "NEW_POINT ^C")
        (self.root / CONFIG).write_text("[" * 100_000)
        self.assertNotIn("NEW_POINT", terminal.type("datashow N\t'\r", "the quote ' is not closed"))
        terminal.until("zorv> ")
        self.assertEqual(terminal.leave(), 0)

    def test_many_choices_fit_the_terminal(self):
        self.configure(A=graph(*(f"POINT_{number:03}" for number in range(100))))
        terminal = Terminal(self.root, rows=10, columns=40)
        for rows, columns, choices, more in ((10, 40, 3 * 6, 82), (8, 24, 2 * 4, 92), (60, 200, 100, None)):
            terminal.resize(rows, columns)
            terminal.type("datashow \t", "POINT_0")
            lines = terminal.type("\t", "\r\nzorv> datashow POINT_0").split("\r\n")[1:-1]
            self.assertEqual("".join(lines).count("POINT_"), choices)
            self.assertTrue(max(map(len, lines)) < columns and len(lines) <= rows - 3, lines)
            self.assertEqual(lines[-1] == f"... and {more} more", more is not None, lines)
            terminal.type(CTRL_C)
        terminal.leave()

    def test_history(self):
        file = self.root / "state/zorv-local/history"
        kept = {"XDG_STATE_HOME": str(self.root / "state"), "ZORV_LOCAL_HISTFILE": None, "LC_ALL": "C.UTF-8"}
        sessions = [Terminal(self.root, **kept) for _ in range(2)]
        for keys in ("help quit\r", "help quit\r", " \r", "given \u00fc\u4e16p" + CTRL_A + CTRL_C, "help alarms\r"):
            sessions[0].type(keys)
        sessions[1].type("help status\r")
        self.assertEqual([session.leave() for session in sessions], [0, 0])
        self.assertEqual(file.read_text(), "help quit\nhelp alarms\nhelp status\n")
        self.assertEqual([oct(path.stat().st_mode & 0o777) for path in (file, file.parent)], ["0o600", "0o700"])

        file.write_text("".join(f"help {number}\n" for number in range(1100)) + "help switch\n")
        other = file.with_name("history.tmp")
        other.symlink_to(self.root / "not ours")
        session = Terminal(self.root, **kept)
        self.assertIn("switch get | set", session.type(UP + "\r"))
        session.type("\x12p 9\x12", "search 'p 9': help 998")
        session.type("x", "nothing has 'p 9x': ")
        session.type("\x7f\r", "unknown command '999'")
        session.until("zorv> ")
        session.type("abc\x12swi\x07\r", "unknown command 'abc'")
        session.until("zorv> ")
        session.leave()
        self.assertEqual(len(file.read_text().splitlines()), 1000 + 2)
        self.assertEqual((sorted(file.parent.iterdir()), other.exists()), ([file, other], False))

        held = open(file)
        self.addCleanup(held.close)
        fcntl.flock(held, fcntl.LOCK_EX)
        for path in ("", "/dev/null", str(file / "below"), str(file), str(self.root / DATABASE)):
            session = Terminal(self.root, XDG_STATE_HOME=str(self.root / "none"), ZORV_LOCAL_HISTFILE=path)
            self.assertEqual("The history is not kept: " in session.screen, str(self.root) in path)
            session.type("help quit\r")
            session.leave()
        self.assertEqual([(self.root / name).exists() for name in ("none", DATABASE)], [False, False])

    def lock(self):
        database = sqlite3.connect(self.root / DATABASE, isolation_level=None)
        database.execute("begin exclusive")
        self.addCleanup(database.close)
        return database

    def expect_prompt_at_once(self, terminal, command, shown, keys=CTRL_C, runs_on=0):
        """The next attempt alone is two seconds away. Of three tries one is enough: the machine may be busy."""
        for _ in range(3):
            self.assertLessEqual(terminal.type(command + "\r", shown).count("waiting to try again"), 1)
            self.assertFalse(runs_on and terminal.read(runs_on), terminal.screen[terminal.seen:])
            began = time.monotonic()
            screen = terminal.type(keys)
            self.assertIn("zorv-local: interrupted: ", screen)
            self.assertNotIn("[error]", screen)
            if time.monotonic() - began < 1.5:
                return
        self.fail(f"{command} is not stopped at once")

    def test_interrupt_ends_a_wait_and_not_the_session(self):
        self.statistics(SOUND)
        self.configure(A=graph("X"))
        writer, terminal = self.lock(), Terminal(self.root)
        reason = ": waiting to try again: lumo_diagnose_data.db: database is locked"
        for command in (f"delaydetect {RANGE}", "showvalidtime"):
            self.expect_prompt_at_once(terminal, command, "for 3 time:", CTRL_C + CTRL_C)
        self.assertIn(f"\r\nzorv-local{reason} (Ctrl-C stops)\r\n", terminal.screen)
        self.expect_prompt_at_once(terminal, f"explain {RANGE}", "zorv-explain" + reason)
        writer.execute("rollback")
        self.assertIn(FOUND, terminal.type(f"delaydetect {RANGE}\r"))

        endless = sqlite3.connect(self.root / DATABASE)
        endless.executescript(f"""create table t as select column1 as x from (values {",".join(["(0)"] * 200)});
            drop table {TABLE}; create view {TABLE} as select x as locateid, x as curtime, 1 as avgdelay
            from (select a.x + b.x + c.x + d.x + e.x + f.x as x from t a, t b, t c, t d, t e, t f)""")
        endless.close()
        self.expect_prompt_at_once(terminal, f"delaydetect {RANGE}", "\r\n", runs_on=1)
        self.assertEqual(terminal.leave("quit\r"), 0)

    def test_interrupt_ends_the_wait_for_a_silent_master(self):
        silent, nodes = socket.socket(socket.AF_UNIX), self.root / "nodes"
        silent.bind(str(self.root / "silent"))
        silent.listen()
        self.addCleanup(silent.close)
        nodes.write_text(f"1 ipc://{self.root}/own\n2 ipc://{self.root}/silent\n")
        terminal = Terminal(self.root, "--master", "2", "--cluster", str(nodes))
        for command in ("switch get", "status"):
            terminal.type(command + "\r", "\r\n")
            connection, _ = silent.accept()
            self.assertIn("zorv-local: interrupted: ", terminal.type(CTRL_C, seconds=2.9))  # of three
            connection.close()
        self.assertIn("node 2, which keeps the switch, did not answer", terminal.type("switch get\r"))
        self.assertEqual(terminal.leave(), 0)
        self.assertEqual(self.answer("switch get", "--master", "2", "--cluster", str(nodes)),
                         (1, "node 2, which keeps the switch, did not answer"))

    def test_interrupt_ends_a_single_command(self):
        self.statistics(SOUND)
        self.lock()
        for arguments, lines in (["showvalidtime"], b""), ([], b"showvalidtime\n"):
            with open(self.root / "err", "wb") as err:
                console = self.start(*arguments, stderr=err)
            console.stdin.write(lines)
            console.stdin.flush()
            self.assertTrue(eventually(lambda: b"Ctrl-C stops" in (self.root / "err").read_bytes()))
            console.send_signal(signal.SIGINT)
            self.assertEqual(console.wait(), -signal.SIGINT)  # which a shell tells as 130
            console.stdin.close()

    def test_log_lines_leave_the_typed_line_whole(self):
        self.statistics(SOUND)
        terminal = Terminal(self.root, columns=40)
        terminal.type("help " + "x" * 40, "x" * 29 + " \b" + "x" * 11)  # on two rows

        def log_line():
            (self.root / DATABASE).unlink()
            (self.root / DATABASE).touch()
            return terminal.read(0.1) and "faild:14" in terminal.screen

        self.assertTrue(eventually(log_line))  # once the folder is watched
        terminal.type("\r", "unknown command '" + "x" * 40 + "'")
        terminal.until("zorv> ")
        self.assertRegex(terminal.screen, r"\r\x1b\[A\x1b\[J([^\r\n]* sqlite3_open faild:14\r\n)+zorv> help x{29}")
        self.assertEqual(terminal.leave(), 0)

    def test_a_good_end_needs_no_log(self):
        self.simulate("--end", "20230105143000")
        modules = self.run_lines("showfaultfactor X 20230105103000 20230105143000\n")[2].split("MODULE: ")[1].split(", ")
        good = ["delayanal", "20230105103000", "20230105143000"]
        (self.root / CONFIG).rename(self.root / "config")
        for words, config, has_log in ((good, "config", False), (["--log-level", "warning", *good], "config", True), (good, "", True),
                                       *((["showfaultfactor", module.strip(), *good[1:]], "config", False) for module in modules)):
            (self.root / CONFIG).write_bytes((self.root / config).read_bytes() if config else b"")
            ours, theirs = pty.openpty()
            out, _ = self.start(*words, stdout=subprocess.PIPE, stderr=theirs).communicate()
            shown = os.read(ours, 1 << 16) if select.select([ours], [], [], 0)[0] else b""
            self.assertEqual((b".cpp:" in shown, b"type err" in out), (has_log, False), (words, shown))
            os.close(theirs), os.close(ours)

    def test_the_end(self):
        terminal = Terminal(self.root)
        self.assertIn("unknown command 'aaaa", terminal.type("a" * (1 << 18) + "\r", "...'"))
        os.kill(terminal.pid, signal.SIGTERM)
        while terminal.read(60):
            pass
        self.assertTrue(termios.tcgetattr(terminal.file)[3] & termios.ICANON, "the terminal is as it was")
        self.assertEqual(terminal.leave(""), -signal.SIGTERM)
        self.assertEqual(Terminal(self.root, closed="stdout").leave("help\r"), 1)

    def test_keys_of_several_bytes(self):
        terminal = Terminal(self.root, LC_ALL="C.UTF-8")
        self.assertIn("unknown command 'x\u00fc\u78c1'", terminal.type("\u00fc\u78c1" + CTRL_A + "x\r", "list"))
        terminal.until("zorv> ")
        terminal.leave()

    def test_names_do_nothing_to_the_screen(self):
        name, command = "\x1b[2J\u202e\r\u00fc", f"showgraph mapnodeinfo ONE {RANGE}"
        self.configure(SAN_IO_READ=graph(name, "ONE"))
        self.statistics({})
        terminal = Terminal(self.root)
        screen = terminal.type(command + "\r", until="ONE   ")
        terminal.until("zorv> ")  # a Ctrl-D before it would be lost
        terminal.leave()
        self.assertIn("\\x1b[2J\\u202e\\x0d\u00fc", screen)
        self.assertIn("key  ioPointid", screen.split("\r\n")[-3])
        self.assertIn(name, self.run_lines(command)[1])

    def test_colours(self):
        for variables, coloured in (({"NO_COLOR": ""}, True), ({}, False), ({"TERM": "dumb", "NO_COLOR": ""}, False)):
            terminal = Terminal(self.root, **variables)
            terminal.until(" ")
            self.assertEqual("\x1b[1mzorv>\x1b[0m" in terminal.screen, coloured, terminal.screen)
            self.assertIn("[\x1b[31merror\x1b[0m] " if coloured else "[error] ", terminal.screen)
            terminal.leave()

    def test_overview(self):
        self.simulate("--scenario", "ongoing", "--end", "20230105143000")
        for variables, columns, bar, red in (({"NO_COLOR": "", "LC_ALL": "C.UTF-8"}, 120, "▅" * 10, "\x1b[31m"), ({}, 60, "=" * 8, "")):
            terminal = Terminal(self.root, columns=columns, **variables)
            terminal.type("overview 20230105103000 20230105143000\r", until="    explain 20230105103000 20230105143000")
            end = red and "\x1b[0m"
            self.assertIn(f"{bar}{end}  2.2 times  {red}still at 14:29{end}\r\n", terminal.screen)
            self.assertEqual(len(re.search("480 of 480 .*30(?=\r)", terminal.screen)[0]), max(columns, 80))
            screen = terminal.type("series BDM_DISK_READ 20230105142500 20230105143000\r", until="14:29:30  ")
            self.assertRegex(screen, r"time +avgdelay +maxdelay +mindelay +acceptnum +successnum")
            terminal.until("zorv>")
            terminal.leave()


class AboutTheHost(ConsoleTest):
    def test_status(self):
        self.statistics(SOUND)
        (self.root / CONFIG).write_text(json.dumps({"B": graph("X", "Y", edges=[{}]), "A": graph(), "C": 1}))
        then = int(time.time()) - 3 * 86400 - 100
        local, about = time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(then + 8 * 3600)), {}
        for file in (DATABASE, HEAL_DATABASE, CONFIG):
            os.utime(self.root / file, (then, then))
            size = (self.root / file).stat().st_size
            size = f"{size} bytes" if size < 1024 else f"{size / 1024:.1f} KiB"
            about[file] = f"{self.root}/{file}\n               {size}, changed {local}, 3 days ago\n"
        screen = ("node           7, master 7\nzone           +08:00, kept until this program ends\n"
                  "statistics     " + about[DATABASE] +
                  f"earliest time  {compact(START)}\nrows           2023-01-05 10:30:00 to 2023-01-05 10:39:30, "
                  f"the newest {int(time.time() - START - 570) // 86400} days ago\nlast hour      no rows\nheal events    " + about[HEAL_DATABASE] +
                  "configuration  " + about[CONFIG] +
                  "               2 graphs, nodes/edges of each:\n               A 0/0  B 2/1\n"
                  "switch         {}\nalarms         {} sent, {} suppressed, 0 lost since the start\n"
                  "start-up       JsonObject 0, Timer 0, MsgHandle 0, DataBase 0, Debug 0, LoadFaultDiagSwitchMsg 0\n")
        self.assertEqual(self.run_lines("status\n", "--node", "7")[1],
                         screen.format("2 (on-silent, the default: no value is stored)", 0, 0))
        out = self.run_lines("switch set on\n" + f"delaydetect {RANGE}\n" * 5 + "status\n", "--node", "7")[1]
        self.assertTrue(out.endswith(screen.format("1 (on), from master node 7", 3, 2)), out)
        status, about_it = self.answer("status", "--node", "7")
        rows = about_it["statistics"]["rows"]
        self.assertEqual((status, rows["start"]["epoch"], rows["end"]["local"]), (0, START, "2023-01-05T10:39:30+08:00"))
        self.assertAlmostEqual(about_it["statistics"]["newest_age_seconds"], time.time() - START - 570, delta=60)
        self.assertEqual([about_it["configuration"]["graphs"], about_it["switch"]["value"]],
                         [[{"name": "A", "nodes": 0, "edges": 0}, {"name": "B", "nodes": 2, "edges": 1}], "on"])
        self.assertEqual([self.answer(f"switch {words}", "--node", "7")[1] for words in ("get", "set off")],
                         [{"switch": {"stored": 1, "value": "on"}, "before": None, "from_node": 7},
                          {"switch": {"stored": 3, "value": "off"}, "before": {"stored": 1, "value": "on"}, "from_node": 7}])
        self.assertEqual(self.run_lines("alarms\n")[1].count("0xF00C90150         faultDiagnose\n"), 3)

        (self.root / CONFIG).write_text('{}\n{"A": {"nodes": [], "edges": []}}')
        self.assertEqual(self.run_lines("status\n")[0], 1)
        for file in about:
            (self.root / file).unlink()
        status, about_it = self.answer("status")
        self.assertEqual((status, about_it["statistics"]["problem"]), (1, "unable to open database file"))
        status, out, _ = self.run_lines("status\n")
        self.assertEqual((status, out.count("no causes can be found: it was refused at the start: No such file")), (1, 1))
        self.assertEqual(out.count("               No such file or directory\n"), 3)
        self.assertIn("earliest time  unknown: unable to open database file\n", out)

    @unittest.skipIf(b"san_init" in (BIN / "zorv-local").read_bytes(), "a sanitizer's allocator ends the process")
    def test_memory_that_ends_leaves_the_commands(self):
        self.statistics(SOUND)
        (self.root / CONFIG).write_text('{"A": [' + "0," * 3_000_000 + "0]}")
        for megabytes, is_too_little in (4000, False), (200, True):
            run = f"ulimit -v {megabytes}000 && exec {BIN}/zorv-local --root {self.root} delaydetect {RANGE}"
            console = subprocess.run(["sh", "-c", run], capture_output=True, text=True)
            self.assertEqual((console.returncode, console.stdout.replace("\n", "\r\n")), (0, FOUND), console.stderr)
            self.assertEqual("Json spectrum pasrse failed." in console.stderr, is_too_little, console.stderr)

    def test_alarms(self):
        self.expect("alarms\n", 0, "There are no alarms.\n")
        (self.root / ALARMS).parent.mkdir(parents=True)
        alarm = {"time": START, "node": 1, "module": 422, "alarmId": 64437682512, "type": 1, "text": "a\nb"}
        bad, far = (json.dumps({**alarm, "time": when}) for when in ("x", 1 << 60))
        lines = [json.dumps({**alarm, "time": START + i}) for i in range(30)]
        (self.root / ALARMS).write_text("\n".join([*lines, "{", bad, far, lines[0]]) + "\n")
        header = "time                 node    module  type  alarm               text\n"
        row = "2023-01-05 10:30:{:02}  1       422     1     0xF00C90150         a\\nb\n"
        unknown = "@1152921504606846976" + row.format(0)[19:]
        self.expect("alarms 5\n", 0, f"{header}{row.format(29)}no alarm: {{\nno alarm: {bad}\n{unknown}{row.format(0)}")
        self.assertEqual(self.run_lines("alarms\n")[1].count("\n"), 1 + 20)
        found = self.answer("alarms 5")[1]
        self.assertEqual(([one["time"]["local"] for one in found["alarms"]], found["no_alarms"]),
                         (["2023-01-05T10:30:29+08:00", None, "2023-01-05T10:30:00+08:00"], ["{", bad]))
        self.assertIn("usage: alarms [N]", self.expect("alarms 0\n", 2, ""))

        self.statistics(SOUND)
        (self.root / ALARMS).write_text('{"alarmId": 6443')  # the disk was full
        self.run_lines(f"switch set on\ndelaydetect {RANGE}\n")
        unfinished, raised = self.run_lines("alarms\n")[1].splitlines()[1:]
        self.assertEqual(unfinished, 'no alarm: {"alarmId": 6443')
        self.assertRegex(raised, r"^\d{4}-\S+ \S+  1 +\d+ +\d+ +0xF00C90150 ")


if __name__ == "__main__":
    unittest.main()
