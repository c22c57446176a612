"""zorv-explain: hostile texts, subjects without data, and every way to end, by itself and as a command of zorv-local."""
import contextlib
import json
import os
import re
import sqlite3
import subprocess
import time
import unittest
from pathlib import Path

import jsonschema

from console import BIN, CONFIG, DATABASE, HEAL_DATABASE, ZONE, ConsoleTest, compact

POINT, DISK = "TGT_LUMO_HOST_READ", "BDM_DISK_READ"
LABEL = b'<b>&"\x1b[31m\xff\xc3\n\xc2\x9b2J\xe2\x80\xae' + "\u061c\ufff9\ufe0f\uffff\U000e0041磁盘".encode()
SHOWN = '<b>&"\\x1b[31m\\xff\\xc3\\n\\u009b2J\\u202e\\u061c\\ufff9\\ufe0f\\uffff\\ue0041磁盘'
ADVICE = b"Replace\x1b]0;x\x07 \xe7\xa3\x81\xe7\x9b\x98\xff\xc0\xaf\xed\xa0\x80 " + b"\xe7\xa3\x81" * 3000


def local(seconds):
    return time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(seconds + ZONE))


def json_text(raw):
    """A JSON string that holds the bytes as they are, with only what JSON itself forbids escaped."""
    return b'"' + re.sub(rb'[\0-\x1f"\\]', lambda found: b"\\u%04x" % found[0][0], raw) + b'"'


class Explain(ConsoleTest):
    def world(self, scenario):
        self.simulate("--scenario", scenario, "--end", "20230105143000")
        self.truth = json.loads((self.root / "truth.json").read_text())
        self.range = [self.truth["start"], self.truth["end"]]

    def sql(self, statement, *values):
        with contextlib.closing(sqlite3.connect(self.root / DATABASE)) as database:
            for table, in database.execute("select tablename from table_flag").fetchall():
                database.execute(statement.format(table=table), values)
            database.commit()

    def test_hostile_texts(self):
        self.world("slow-disk")
        config = (self.root / CONFIG).read_bytes().replace(json_text(DISK.encode()), json_text(LABEL))
        advice = json_text(self.truth["fault"]["advice"].encode())
        (self.root / CONFIG).write_bytes(config.replace(advice, json_text(ADVICE)))
        self.sql("update version_nmaps set locatename = cast(? as text) where locatename = ?", LABEL, DISK)
        status, text, found = self.explain(*self.range)
        self.assertIn(f"\n{SHOWN}\n(SAN_IO_READ) holds ", text)
        self.assertIn("\nWhat to do: Replace\\x1b]0;x\\x07 磁盘\\xff\\xc0\\xaf\\xed\\xa0\\x80\n", text)
        first = found["analyses"][0]["candidates"][0]
        self.assertEqual((status, first["point"], first["advice"]),
                         (0, LABEL.decode(errors="replace"), ADVICE.decode(errors="replace")))

    def test_load_is_no_point(self):
        self.world("healthy")
        when = self.truth["end_epoch"] - 3600
        self.sql("update {table} set avgdelay = avgdelay * 3, acceptnum = acceptnum * 3 where curtime between ? and ? "
                 f"and locateid = (select locateid from version_nmaps where locatename = '{POINT}')", when, when + 300)
        status, text, found = self.explain(*self.range)
        self.assertEqual((status, found["analyses"][0]["verdict"]), (0, "load"))
        self.assertEqual(("\nLoad: " in text, "Ranking" in text), (True, False))
        self.sql("update {table} set avgdelay = null, errCode0 = 99 where curtime between ? and ? and locateid in (select locateid "
                 "from version_nmaps where locatename in (?, 'BDM_DISK_MEDIUM_ERROR'))", when, when + 300, POINT)
        self.assertIn("\nNo point was slow in what was looked at.\n", self.run_explain("--overview", *self.range)[1])

    def test_intervals_in_which_nobody_came_say_nothing(self):
        self.world("slow-disk")
        fault = self.truth["fault"]
        self.sql("update {table} set avgdelay = 0, acceptnum = 0 where curtime / 30 % 5 < 3 and curtime not between ? and ?",
                 fault["start_epoch"], fault["end_epoch"])
        status, text, found = self.explain(*self.range)
        first = found["analyses"][0]
        self.assertEqual((status, len(found["analyses"]), first["candidates"][0]["point"], first["event"]["start"]["epoch"]),
                         (0, 1, DISK, fault["start_epoch"]))
        self.assertGreater(first["nodes"][0]["baseline_delay_us"], 0)
        self.assertNotIn("intervals without", text)

    def test_rows_that_are_missing_are_no_time_of_the_callers(self):
        self.world("slow-disk")
        fault = self.truth["fault"]
        lost = "delete from {table} where locateid = (select locateid from version_nmaps where locatename = ?) and curtime "
        for condition, expected in (("/ 30 % 3 > 0", (DISK, "likely")), ("between ? and ?", ("SPACE_BLOCK_BDM_READ", "unsure"))):
            self.sql(lost + condition, DISK, *[fault["start_epoch"], fault["end_epoch"]][:2 * condition.count("and")])
            first = self.explain(*self.range)[2]["analyses"][0]
            self.assertEqual((first["candidates"][0]["point"], first["certainty"]), expected)

    def test_what_goes_on_and_what_hosts_waited_for_longest_stand_first(self):
        self.world("slow-disk")
        end = self.truth["end_epoch"]
        for point, begin, until, factor in (("CMD", 12000, 11000, 30), ("WRITE", 150, 0, 1.5)):
            self.sql("update {table} set avgdelay = avgdelay * ? where curtime between ? and ? and locateid = (select locateid "
                     f"from version_nmaps where locatename = 'TGT_LUMO_HOST_{point}')", factor, end - begin, end - until)
        self.assertEqual([one["point"][14:] for one in self.explain(*self.range)[2]["analyses"]], ["WRITE", "CMD", "READ"])

    def test_a_subject_without_data_leaves_the_others_their_answers(self):
        self.world("nas-slow")
        graphs = json.loads((self.root / CONFIG).read_text())
        del graphs["NAS_IO_NFSV4"]
        (self.root / CONFIG).write_text(json.dumps(graphs))
        status, _, found = self.explain(*self.range)
        self.assertEqual((status, [(one["graph"], one["verdict"], one["reason"]) for one in found["analyses"]]),
                         (0, [("NAS_IO_NFSV3", "point", None),
                              ("NAS_IO_NFSV4", "cannot tell", "the configuration has no graph NAS_IO_NFSV4"),
                              ("NAS_IO_SMB2", "point", None)]))
        graphs["NAS_IO_SMB2"], graphs["NAS_IO_NFSV3"] = graphs["NAS_IO_NFSV3"], graphs["NAS_IO_SMB2"]
        (self.root / CONFIG).write_text(json.dumps(graphs))
        _, _, found = self.explain(*self.range)
        self.assertEqual([one["graph"] for one in found["analyses"]], ["NAS_IO_NFSV4", "NAS_IO_SMB2", "NAS_IO_NFSV3"])
        self.world("healthy")  # nothing but one bad value
        self.sql(f"update {{table}} set avgdelay = 'x' where locateid = (select locateid from version_nmaps where locatename = '{POINT}')")
        status, text, found = self.explain(*self.range)
        self.assertEqual((status, [(one["point"], one["verdict"]) for one in found["analyses"]], "3 of 4 points" in text), (4, [(POINT, "cannot tell")], True))
        self.assertEqual(self.run_explain("--point", POINT, *self.range)[0], 3)

    def test_all_graphs_of_a_point_are_one_division(self):
        """Its own part is larger than that of what both graphs have below it, and it is that in each."""
        own = self.root / "own.json"
        graphs = {name: {"nodes": [{"id": i, "label": label} for i, label in enumerate(("NAS_TRANS_ALL", "BOTH", name))],
                         "edges": [{"source": "0", "target": "1"}, {"source": "0", "target": "2"}]}
                  for name in ("NAS_IO_NFSV3", "NAS_IO_SMB2")}
        own.write_text(json.dumps(graphs))
        fault = self.simulate("--config", own, "--fault-point", "BOTH", "--end", "20230105143000")["fault"]
        self.sql("update {table} set avgdelay = avgdelay * 2 where curtime between ? and ? and locateid = (select locateid "
                 "from version_nmaps where locatename = 'NAS_TRANS_ALL')", fault["start_epoch"], fault["end_epoch"])
        (self.root / CONFIG).write_text(json.dumps({**graphs, "NAS_IO_NFSV4": {"nodes": [5], "edges": []}}))
        for graph in graphs:
            status, text, found = self.explain("--graph", graph, "--point", "NAS_TRANS_ALL", "20230105103000", "20230105143000")
            first, second = found["analyses"][0]["candidates"]
            self.assertEqual((status, first["point"], second["point"], found["analyses"][0]["certainty"]),
                             (0, "NAS_TRANS_ALL", "BOTH", "unsure"))
            self.assertAlmostEqual(first["share"], 0.6, delta=0.05)
            self.assertRegex(text, r"What could not be told\n.*NAS_IO_NFSV4")

    def test_ways_to_end(self):
        self.world("slow-disk")
        epoch, times, peak = self.truth["start_epoch"], self.range, self.truth["fault"]["peak_compact"]
        first, quiet = compact(epoch + 60), compact(epoch + 3600)
        ten = [quiet, compact(epoch + 3600 + 270)]  # samples, of which none can be flagged
        point, graph = ["--point", POINT], ["--graph", "SAN_IO_READ"]
        cases = [  # arguments, exit status, what is said
            (times, 0, DISK), ([*point, *times], 0, DISK), ([*point, *graph, *times], 0, DISK),
            (["--point", "SPACE_BLOCK_BDM_READ", *graph, *times], 0, f"^SPACE_BLOCK_BDM_READ in SAN_IO_READ\n=+\n{DISK}"),
            ([*point, "--at", peak, *times], 0, DISK),
            ([times[0], quiet], 1, "^Nothing anomalous: no point was slow"), ([*point, "--at", quiet, *times], 1, "^TGT_LUMO_HOST_READ is [0-9.]+ times as slow"),
            (["--point", "TGT_LUMO_HOST_WRITE", *times], 1, "^Nothing anomalous: "),
            ([], 2, "--help"), (["x"], 2, "'x' is no length of time"), (["0"], 2, "'0' is no length of time"), (["71582789"], 2, "at most two days"),
            (["2023", times[1]], 2, "'2023' is no time"), (["20230105096000", times[1]], 2, "'20230105096000' is no time"),
            (["1", "2", *times], 2, "--help"), (["--x\x1b", *times], 2, "--help"),
            (times[::-1], 2, "after the start"), (["20221231000000", times[1]], 2, "at most two days"),
            (["--zone", "+8", *times], 0, DISK), (["--zone", "+2500", *times], 2, "'\\+2500' is no zone"),
            ([*graph, *times], 2, "--graph requires --point"), (["--point", DISK, *times], 2, f"no graph is known for {DISK}"),
            (["--help-method"], 0, "^  share +the part of it"), (["--point", POINT[:-2] + "DA", *times], 2, f"; did you mean '{POINT}'\\?$"),
            (["--point", DISK + "D", *graph, *times], 3, f"; did you mean '{DISK}'\\?$"),
            ([*point, "--at", "noon", *times], 2, "'noon' is no time"),
            ([*point, "--at", "20230105000000", *times], 2, "--at is not within the range"),
            (["20230101000000", "20230102000000"], 3, "outside the statistics, which go from 2023-01-05 10:30:00"),
            (["--zone", "+0200", *times], 3, "named in \\+08:00: use --zone \\+0800"),
            ([compact(epoch - 3600), quiet], 4, "only a part of the range"), (ten, 1, "^Nothing anomalous: "),
            (["--during", peak, compact(epoch + 9600)], 0, DISK), (["--during", *ten, *times], 1, "TGT_LUMO_HOST_READ is [0-9.]+ times as slow"),
            (["--baseline", quiet, times[1], *times], 0, "^  usual by .*, as named, "), (["--baseline", "yesterday", *times], 4, "baseline that was named has only 0 samples"),
            (["--baseline", *times, *times, "60"], 2, "--help"),
            (["--overview", *times], 0, f"{POINT} was slow 12:58 to 13:00, 2.7 times: {DISK} 97 %, sure$"), (["--overview"], 3, "outside the statistics"),
            (["--overview", "--point", "TGT_LUMO_HOST_WRITE", *point, *times], 0, rf"^    zorv-explain --root \S+ (\\\n +)?--point {POINT} [^-]+\Z"),
            (["--series", "BDM_DISK_REED", *times], 2, f"did you mean '{DISK}'"), (["--series", DISK, "--columns", "avgdelai", *times], 2, "did you mean 'avgdelay'"),
            (["--series", DISK, "20230105090000", "20230105091000"], 3, f"no rows of {DISK} in the range"), (["--columns", "x", *times], 2, "requires --series"),
            (["--point", "X\x1b", *graph, *times], 3, r"the graph SAN_IO_READ has no point X\\x1b"),
            ([*point, "--graph", "X", *times], 3, "the configuration has no graph X"),
            ([*point, "--at", first, *times], 1, "TGT_LUMO_HOST_READ is [0-9.]+ times as slow"),
        ]
        lines, screens, once = "", ["", ""], {}
        for arguments, status, said in cases:
            with self.subTest(arguments=arguments):
                found, out, err = self.run_explain(*arguments)
                self.assertEqual((found, out == "", err == "", "\x1b" in out + err),
                                 (status, status in (2, 3), status not in (2, 3), False), err)
                self.assertRegex(out + err, re.compile(said, re.M))
            lines += " ".join(["explain", *arguments]) + "\n"
            screens = [screens[0] + out, screens[1] + err]
            once[status] = arguments, out, err
        self.assertEqual(self.run_lines(lines), (1, *screens))
        for status, (arguments, *screen) in once.items():
            console = self.start("explain", *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            self.assertEqual([*console.communicate(), console.returncode], [*screen, status])
        for program in "zorv-explain", "zorv-local", "lumo-sim":
            self.assertEqual(os.system(f"{BIN}/{program} --help 2>&- >/dev/full") >> 8, 1, program)
        self.assertEqual(os.system(f"{BIN}/zorv-explain --root {self.root} {' '.join(times)} 2>&- >&-") >> 8, 5)

    def test_series(self):
        self.world("slow-disk")
        columns = ["avgdelay", "errCode0", "acceptnum"]
        ask = ["--series", DISK, "--columns", ",".join(columns), self.truth["start"], "20230105113000"]
        with contextlib.closing(sqlite3.connect(self.root / DATABASE)) as database:
            rows = [row for table, in database.execute("select tablename from table_flag") for row in database.execute(
                f"select curtime, {', '.join(columns)} from {table} natural join version_nmaps where locatename = ? and curtime <= ?",
                (DISK, self.truth["start_epoch"] + 3600))]
        found = json.loads(self.run_explain("--json", *ask)[1])
        jsonschema.validate(found, json.loads((Path(__file__).parents[2] / "docs/series.schema.json").read_text()))
        self.assertEqual((found["columns"], found["rows"]), (["time", *columns], [list(row) for row in rows]))
        csv = ["time," + ",".join(columns), *(",".join(map(str, (local(when), *values))) for when, *values in rows)]
        self.assertEqual(self.run_lines("series " + " ".join(ask[1:]) + "\n")[1].splitlines(), csv)
        self.sql("alter table {table} drop column errCode4")
        self.assertRegex(self.run_explain("--series", DISK, *self.range)[1], "^time,.*,errCode3\n")

    def test_zones(self):
        self.world("slow-disk")
        here, there = (json.loads(self.run_explain("--json", *options, *self.range, zone=zone)[1])
                       for zone, options in (("CST-8", []), ("EST5", ["--zone", "+0800"])))
        self.assertEqual(there["analyses"], here["analyses"])
        self.assertEqual(here["range"]["start"], {"epoch": self.truth["start_epoch"], "local": "2023-01-05T10:30:00+08:00"})
        self.assertEqual(here["range"]["end"], {"epoch": self.truth["end_epoch"], "local": "2023-01-05T14:30:00+08:00"})
        with contextlib.closing(sqlite3.connect(self.root / DATABASE)) as database:  # from 14:00 on as if an hour had been left out
            database.executescript("alter table lumo_data_20230105140000 rename to lumo_data_20230105150000; "
                                   "update table_flag set tablename = 'lumo_data_20230105150000' where tablename like '%40000'")
        for where, said in (("--root", "named in +09:00 here and in +08:00 elsewhere, as over a change of daylight saving time: use --zone +0900\n"),
                            ("--capture", "in zone +09:00 from 2023-01-05 15:00:00 on, as over a change of daylight saving time: the latter (--zone says another)\n")):
            self.assertIn(said, subprocess.run([BIN / "zorv-explain", where, self.root, "20230105140000", "20230105142500"], capture_output=True, text=True).stderr)

    def test_missing_files(self):
        self.assertEqual(self.run_explain("60", root="/nowhere")[0], 3)
        for file in (CONFIG, DATABASE, HEAL_DATABASE):
            self.world("slow-disk")
            (self.root / file).unlink()
            with self.subTest(file=file):
                status, out, err = self.run_explain(*self.range)
                self.assertEqual((status, out), (3, ""))
                self.assertIn(str(self.root / file), err)


if __name__ == "__main__":
    unittest.main()
