"""zorv-explain --watch: what it tells while the statistics go on, stay away, are locked or replaced; and how it ends."""
import json
import shutil
import signal
import sqlite3
import subprocess
import sys
import time
import unittest
from contextlib import closing
from pathlib import Path

import jsonschema

from console import BIN, DATABASE, ConsoleTest, compact

sys.path.append("/usr/lib/python3/dist-packages")  # of Debian's package, whatever interpreter this is
from prometheus_client.parser import text_string_to_metric_families  # noqa: E402

SCHEMA = jsonschema.Draft7Validator(json.loads((Path(__file__).parents[2] / "docs/explain-watch.schema.json").read_text()))
STEP, POINT = 30, "TGT_LUMO_HOST_READ"


class Watch(ConsoleTest):
    def watch(self, *options):
        process = subprocess.Popen([BIN / "zorv-explain", "--root", self.root, "--watch", "--every", "1", *options],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        for clean in (process.stdout.close, process.stderr.close, process.wait, process.kill):
            self.addCleanup(clean)
        return process

    def next(self, process):
        change = json.loads(process.stdout.readline() or self.fail(process.stderr.read()))
        SCHEMA.validate(change)
        return change

    def gauges(self):
        families = text_string_to_metric_families((self.root / "zorv.prom").read_text())
        return {(sample.name, *sample.labels.values()): sample.value for family in families for sample in family.samples}

    def usual_until(self, end):
        """Gives every instant from the last one on the rows of the first one in which nothing counted errors."""
        with closing(sqlite3.connect(self.root / DATABASE)) as database, database:
            tables = [name for name, in database.execute("select tablename from table_flag order by 1")]
            newest = database.execute(f"select max(curtime) from {tables[-1]}").fetchone()[0]
            columns = [row[1] for row in database.execute(f"pragma table_info({tables[0]})")][2:]
            errors = " + ".join(name for name in columns if name.startswith("errCode"))
            model, = database.execute(f"select curtime from {tables[0]} group by 1 having sum({errors}) = 0 order by 1").fetchone()
            for instant in range(newest + STEP, end + 1, STEP):
                database.execute(f"insert into {tables[-1]} select locateid, {instant}, {','.join(columns)} from {tables[0]} "
                                 "where curtime = ?", (model,))

    def test_each_change_is_told_once(self):
        end = int(time.time()) // STEP * STEP - 20 * STEP
        truth = self.simulate("--scenario", "ongoing", "--end", compact(end))
        watch = self.watch("--json", "--textfile", self.root / "zorv.prom")
        slow = self.next(watch)
        self.assertEqual((slow["kind"], slow["point"], slow["cause"]["point"]), ("slow", POINT, truth["fault"]["point"]))
        self.assertEqual(slow["time"]["epoch"], truth["fault"]["start_epoch"])
        silent = self.next(watch)
        self.assertEqual((silent["kind"], silent["newest"]["epoch"]), ("no rows", end - STEP), silent)
        gauges = self.gauges()
        self.assertGreater(gauges["zorv_point_delay_ratio", POINT], 1.5)
        self.assertEqual([gauges["zorv_point_slow", POINT], gauges["zorv_point_slow", "NAS_TRANS_ALL"],
                          gauges["zorv_database_readable",], gauges["zorv_errors", "error index -5 (errCode4)"]], [1, 0, 1, 0])
        self.assertEqual((self.root / "zorv.prom").stat().st_mode & 0o777, 0o644)

        self.usual_until(int(time.time()))
        came = {change["kind"]: change for change in (self.next(watch), self.next(watch))}
        self.assertEqual(set(came), {"rows", "usual"})
        self.assertEqual(came["usual"]["time"]["epoch"], end)
        self.assertEqual(came["usual"]["seconds"], end - truth["fault"]["start_epoch"])

        with closing(sqlite3.connect(self.root / DATABASE, isolation_level=None)) as locker:
            locker.execute("begin exclusive")
            locked = self.next(watch)
            self.assertEqual(self.gauges()["zorv_database_readable",], 0)
            locker.execute("rollback")
        self.assertIn("database is locked", locked["sentence"])
        self.assertEqual(self.next(watch)["kind"], "readable")

        (self.root / DATABASE).rename(self.root / "kept")
        self.assertEqual(self.next(watch)["kind"], "unreadable")
        shutil.copy(self.root / "kept", self.root / "copy")
        (self.root / "copy").rename(self.root / DATABASE)
        self.assertEqual(self.next(watch)["kind"], "readable")
        watch.send_signal(signal.SIGTERM)
        self.assertEqual((watch.wait(), watch.stdout.read()), (0, ""))

    def test_the_end(self):
        self.simulate("--scenario", "ongoing")
        for end in (signal.SIGINT, signal.SIGHUP, None):
            watch = self.watch()
            self.assertRegex(watch.stdout.readline(), rf"\d\d {POINT} slow, \d+ us \(\d\.\d times\), BDM_DISK_READ \d+ %\n")
            watch.stdout.close() if end is None else watch.send_signal(end)
            self.assertEqual(watch.wait(), 0, end)
        with closing(sqlite3.connect(self.root / DATABASE)) as database, database:  # one that cannot be read beside one that is slow
            for table, in database.execute("select tablename from table_flag").fetchall():
                database.execute(f"update {table} set avgdelay = 'x' where locateid = (select locateid from version_nmaps where locatename = 'NAS_TRANS_ALL')")
        watch = self.watch()
        told = watch.stdout.readline() + watch.stdout.readline()
        self.assertRegex(told, f"^.* {POINT} slow, .*\n.* hold a bad value: NAS_TRANS_ALL: .*\n$")
        for options in (["60"], ["--at", "-5m"], ["--every", "0"], ["--html", "page"], ["--textfile", "x", "--log", "./x"]):
            self.assertEqual(self.run_explain("--watch", *options)[0], 2, options)
        self.assertEqual(self.run_explain("--textfile", "x", "60")[0], 2)
        self.assertEqual(self.run_explain("--watch", "--textfile", self.root / "no/file")[0], 5)
        self.assertEqual(self.run_explain("--watch", "--textfile", self.root / DATABASE)[0], 2)


if __name__ == "__main__":
    unittest.main()
