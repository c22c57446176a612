"""The storage system at work: killed at any moment, watched while it re-creates its database, and sent signals."""
import json
import os
import random
import re
import signal
import sqlite3
import subprocess
import time
import unittest
from contextlib import closing

from console import BIN, DATABASE, ConsoleTest, compact, eventually

END = 1672900200  # 2023-01-05 14:30 of the tests' zone: a clock that begins there never catches up
SEED = int(os.environ.get("LIVE_SEED", time.time_ns() % 1000000))
STEP, ROUNDS = 30, 12


class Live(ConsoleTest):
    def play(self, *options):
        arguments = ["--root", self.root, "--live", "--hours", 1, *options]
        pipes = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True}
        producer = subprocess.Popen([BIN / "lumo-sim", *map(str, arguments)], **pipes)
        self.addCleanup(producer.communicate)
        self.addCleanup(producer.kill)
        return producer

    def wait_for(self, producer, event):
        for line in producer.stdout:
            if event in line:
                return line
        self.fail(f"ended without \"{event}\": {producer.stderr.read()}")

    def instants(self):
        """Checks that the database is whole, and every instant; returns {table: its instants}."""
        with closing(sqlite3.connect(self.root / DATABASE)) as database:
            self.assertEqual(database.execute("pragma integrity_check").fetchall(), [("ok",)])
            existing = {name for name, in database.execute("select name from sqlite_master where type = 'table'")}
            if not existing:
                return {}
            tables, points = {}, database.execute("select count(*) from version_nmaps").fetchone()[0]
            for table, in database.execute("select tablename from table_flag").fetchall():
                rows = database.execute(f"select curtime, count(distinct locateid), count(*) from {table} group by 1")
                tables[table] = [when for when, found, all_rows in rows if found == all_rows == points]
        self.assertEqual(existing, {*tables, "table_flag", "version_nmaps"})
        every = sum(tables.values(), [])
        self.assertEqual(every, list(range(every[0], every[-1] + 1, STEP)))
        self.assertEqual(list(tables), ["lumo_data_" + compact(times[0]) for times in tables.values()])
        return tables

    def earliest(self):
        status, screen, log = self.run_lines("showvalidtime\n")
        self.assertEqual(status, 0, log)
        return re.findall(r"\d{14}", screen)

    def test_a_killed_producer_leaves_whole_instants_and_the_next_one_goes_on(self):
        chance = random.Random(SEED)
        for options in [(), ("--wal",), ("--recreate", STEP), ("--recreate", STEP, "--recreate-by", "rename", "--wal")]:
            options = ("--end", compact(END), "--speed", 3600, "--period", 300, *options)
            self.wait_for(self.play(*options, "--for", STEP), "stopped")
            for kill in range(ROUNDS):
                with self.subTest(seed=SEED, options=options, kill=kill):
                    producer = self.play(*options)
                    if kill % 4:  # otherwise perhaps before it has replaced what was there
                        self.wait_for(producer, "started")
                    time.sleep(chance.uniform(0, 0.4))
                    producer.kill()
                    producer.wait()
                    asked = self.earliest() if "--wal" in options else None  # before anybody mends the database
                    tables = self.instants()
                    self.assertTrue(tables or options[-2] == "--recreate")  # deleted: none, until the new one is whole
                    self.assertTrue(not tables or (asked or self.earliest()) == [list(tables)[0][-14:]])
            self.wait_for(self.play(*options, "--for", STEP), "stopped")
            self.assertEqual(max(map(max, self.instants().values())), END)

    def test_tables_begin_and_go_on_time_and_every_event_is_told(self):
        producer = self.play("--end", compact(END), "--speed", 86400, "--period", 1200, "--for", 7200, "--keep", 1,
                             "--fault-after", 1000, "--recreate", 5000)
        screen, errors = producer.communicate()
        self.assertEqual((producer.returncode, errors), (0, ""))
        told = [(END, f"started slow-disk: 190 points, 22800 rows of history; the truth is in {self.root}/truth.json"),
                (END + 1020, "fault begins at BDM_DISK_READ"), (END + 1110, "fault ends at BDM_DISK_READ"),
                (END + 5010, "database re-created")]
        begins = [END + after for after in range(600, 7200, 1200)]
        told += [(begin, "new table lumo_data_" + compact(begin)) for begin in begins]
        *lines, last = screen.splitlines()
        self.assertEqual(lines, [f"{compact(when)} {event}" for when, event in sorted(told)])
        self.assertRegex(last, r"^\d{14} stopped: time is over; 240 writes, the longest took \d+ ms$")
        tables = self.instants()  # the last one began at 6600; dropped are those that had ended at 3000
        self.assertEqual(list(tables), ["lumo_data_" + compact(begin) for begin in begins if begin >= END + 3000])
        self.assertEqual(max(tables.popitem()[1]), END + 7200 - STEP)
        fault = json.loads((self.root / "truth.json").read_text())["fault"]
        self.assertEqual((fault["start_epoch"], fault["end_epoch"]), (END + 1020, END + 1110))

    def test_the_fault_is_found_as_soon_as_it_is_there_and_after_re_creations(self):
        for options in [(), ("--wal", "--recreate-by", "rename"), ("--scenario", "healthy")]:
            with self.subTest(options=options):
                producer = self.play("--speed", 600, "--fault-after", 1500, "--period", 600, *options)
                self.wait_for(producer, "new table" if "healthy" in options else "fault ends")
                fault = json.loads((self.root / "truth.json").read_text())["fault"]
                planted = [(fault["detector_point"], fault["peak_local"], str(fault["peak_value"]))] if fault else []
                console = self.start(stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)

                def is_right():
                    console.stdin.write("delaydetect 60\nswitch get\n")
                    console.stdin.flush()
                    screen = "".join(iter(console.stdout.readline, "2 (on-silent, the default: no value is stored), from node 1\n"))
                    return re.findall(r"^([A-Z_]+) +(\d\S+ \S+) +(\d+) *$", screen, re.M) == planted

                self.assertTrue(eventually(is_right))
                for _ in range(3):
                    producer.send_signal(signal.SIGHUP)
                    self.wait_for(producer, "database re-created")
                    self.assertTrue(eventually(is_right))
                console.communicate()
                producer.terminate()
                self.wait_for(producer, "stopped: Terminated")
                self.assertEqual(producer.wait(), 0)

    def test_it_gives_way_to_whoever_deletes_or_replaces_its_database(self):
        for intrude in [(self.root / DATABASE).unlink, lambda: self.simulate("--hours", "1", "--scenario", "healthy")]:
            self.wait_for(producer := self.play("--end", compact(END), "--speed", 600), "started")
            intrude()
            self.assertIn("somebody else deleted or replaced", producer.communicate()[1])
            self.assertEqual(producer.returncode, 1)


if __name__ == "__main__":
    unittest.main()
