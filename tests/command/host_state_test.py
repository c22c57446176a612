"""What the commands tell about the host itself: status, alarms, and that memory which ends leaves the commands."""
import json
import os
import subprocess
import time
import unittest

from console import BIN, CONFIG, DATABASE, HEAL_DATABASE, ConsoleTest, compact
from terminal_test import FOUND, RANGE, SOUND, START, graph

ALARMS = "VRA/coffer_log/log/alarm/alarms.jsonl"


class AboutTheHost(ConsoleTest):
    def test_status(self):
        self.statistics(SOUND)
        (self.root / CONFIG).write_text(json.dumps({"B": graph("X", "Y", edges=[{}]), "A": graph(), "C": json.loads("[" * 190 + "]" * 190)}))
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
