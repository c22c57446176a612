#!/usr/bin/env python3
"""Processor time of a look of zorv-explain --watch, on one graph of 300 points with five hours of rows, 30 seconds apart, of
which each look finds one more: first when all is usual, then with an event at half of the points. As a share of a core, of 30
seconds."""
import argparse
import os
import pathlib
import sqlite3
import subprocess
import tempfile
import time

from explain_cost import POINTS, label, write_configuration

STEP = 30
HISTORY = 600  # instants
SLOWER = 4000  # microseconds
COLUMNS = ("locateid integer, curtime integer, acceptnum integer, successnum integer, failednum integer, retrynum integer, "
           "avgdelay integer, maxdelay integer, mindelay integer, errCode0 integer, errCode1 integer, errCode2 integer, "
           "errCode3 integer, errCode4 integer")


def table_of(instant):
    return "lumo_data_" + time.strftime("%Y%m%d%H0000", time.localtime(instant))


def write(database, instant, is_slow):
    with database:
        table = table_of(instant)
        if not database.execute("select 1 from table_flag where tablename = ?", (table,)).fetchone():
            database.execute(f"create table {table}({COLUMNS})")
            database.execute(f"create index {table}_point_time on {table}(locateid, curtime)")
            database.execute("insert into table_flag values(?, ?)", (table, instant))
        delays = [1000 + (instant // STEP * 7 + point * 13) % 40 + (SLOWER if is_slow and point % 2 == 0 else 0)
                  for point in range(POINTS)]
        database.executemany(f"insert into {table} values(?, ?, 100, 100, 0, 0, ?, ?, ?, 0, 0, 0, 0, 0)",
                             [(point, instant, delay, delay, delay) for point, delay in enumerate(delays)])


def seconds_of(process):
    ticks = pathlib.Path(f"/proc/{process.pid}/stat").read_text().rpartition(")")[2].split()[11:13]
    return sum(map(int, ticks)) / os.sysconf("SC_CLK_TCK")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--looks", type=int, default=60)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        write_configuration(root / "VRA/zorv/conf/route_config.json")
        for file in ("VRA/data/lumo/lumo_diagnose_data.db", "VRA/data/zorv/zorv_heal.db"):
            (root / file).parent.mkdir(parents=True)
            (root / file).touch()
        database = sqlite3.connect(root / "VRA/data/lumo/lumo_diagnose_data.db")
        database.execute("create table table_flag(tablename text, reporttime integer)")
        database.execute("create table version_nmaps(locateid integer primary key, locatename text)")
        database.executemany("insert into version_nmaps values(?, ?)", ((point, label(point)) for point in range(POINTS)))
        instant = (int(time.time()) // STEP - 2 * options.looks - 10) * STEP
        for back in range(HISTORY, 0, -1):
            write(database, instant - back * STEP, False)
        watch = subprocess.Popen([options.bin / "zorv-explain", "--root", root, "--watch", "--every", "1"],
                                 stdout=subprocess.PIPE, text=True)
        try:
            time.sleep(5)
            for name, is_slow in (("usual", False), ("event", True)):
                before = seconds_of(watch)
                for _ in range(options.looks):
                    write(database, instant, is_slow)
                    instant += STEP
                    time.sleep(1)
                spent = (seconds_of(watch) - before) / options.looks
                print(f"{name}: {1000 * spent:.1f} ms a look, {100 * spent / STEP:.2f} % of a core at a step of {STEP} s")
        finally:
            watch.terminate()
        print(watch.communicate()[0], end="")


if __name__ == "__main__":
    main()
