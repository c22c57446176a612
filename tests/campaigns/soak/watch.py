#!/usr/bin/env python3
"""watch.py [SECONDS [SEED]]: zorv-explain --watch beside live worlds in real time, with a sample a second: one after the other
has a fault, is re-created, locked, ends or is killed. Each fault is told within two intervals of being visible, its end too, and
nothing else of a point; what is told of the database is where something was done to it. Descriptors and memory stay.

What is visible is told by the point's rows alone, as anybody would who lays a ruler on them: usual is the median of the rows
before the fault, their scale 1.4826 median absolute deviations, but 2 % of the median at least, and high is what lies more than
5 scales above. A fault is visible with its first high row; its end with the first row from which on all are usual again: not
high, and nearer to the usual than to the fault, whose height is the median of its high rows (a fault of 7 scales has rows of
4 that are not high, but not usual either). The watch has a ruler of its own, with other rows before the fault: what either may
measure a fifth longer or shorter is no row that has to be told of. A row is visible from when the world has written it."""
import datetime
import json
import os
import random
import signal
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import threading
import time
from contextlib import closing
from pathlib import Path

os.environ.setdefault("SMARTDIAGNOSE_BIN", str(Path(__file__).resolve().parents[3] / "build/release/bin"))
from soak import BIN, SLACK, check_growth, expect, faults

SECONDS = int((sys.argv[1:] or ["3600"])[0])
SEED = int((sys.argv[2:] or [time.time_ns() % 10**6])[0])
DATABASE = "VRA/data/lumo/lumo_diagnose_data.db"
LATE = 2  # seconds from being visible: two intervals
HIGH, RULERS = 5, 0.2  # scales; what rulers may differ by
NEAR, MEANS = 2, 4  # rows that a begin or end is told beside its own; that are told as one, where none of them is high
PATIENCE = 12  # seconds: how long the watch waits before it tells that there is nothing to read
POINT = {"slow-disk": "TGT_LUMO_HOST_READ", "slow-network": "TGT_LUMO_HOST_WRITE", "locked-volume": "TGT_LUMO_HOST_CMD"}

chance = random.Random(SEED)
told, planted, disturbed = [], [], []  # (when, change); (point, its fault's begin, rows, their delay); (from, until)
measures = []


def seconds_of(compact):
    return datetime.datetime.strptime(compact, "%Y%m%d%H%M%S").timestamp()


def listen(watch):
    for line in watch.stdout:
        told.append((time.time(), json.loads(line)))


def measure(watch):
    process = Path(f"/proc/{watch.pid}")
    pages = int((process / "statm").read_text().split()[1])
    measures.append((len(os.listdir(process / "fd")), len(os.listdir(process / "task")), pages * 4))


def disturb(world, root):
    """Takes the database from its readers for a while, or for good until there is another."""
    begin = time.time()
    if chance.random() < 0.5:
        world.send_signal(signal.SIGHUP)
        time.sleep(3)
    else:
        with sqlite3.connect(root / DATABASE, timeout=10, isolation_level=None) as locker:
            locker.execute("begin exclusive")
            time.sleep(chance.uniform(0.2, 4))
            locker.execute("rollback")
    disturbed.append((begin, time.time()))


def fault_rows(root, point, begin):
    """From the first row that shows a fault to the first that shows its end: (time, scales above the usual); none that none shows."""
    with closing(sqlite3.connect(root / DATABASE, timeout=10)) as database:
        rows = [row for name, in database.execute("select tablename from table_flag").fetchall()
                for row in database.execute(f"select curtime, avgdelay from {name} natural join version_nmaps where locatename = ?",
                                            (point,))]
    before = [delay for when, delay in rows if when < begin]
    usual = statistics.median(before)
    scale = max(1.4826 * statistics.median(abs(delay - usual) for delay in before), 0.02 * usual)
    since = sorted((when, (delay - usual) / scale) for when, delay in rows if when >= begin)
    high = [row for row in since if row[1] > (1 + RULERS) * HIGH]
    if not high:
        return []
    least = (1 - RULERS) * min(HIGH, statistics.median(height for _, height in since if height > HIGH) / 2)
    last = max(when for when, height in since if height > least)
    return [row for row in since if high[0][0] <= row[0] <= last + 1]


def live(root, watch):
    """One world; returns when its time is over."""
    scenario = chance.choice(list(POINT))
    begin = time.time()
    length = chance.choice([3, 5, 10, 30])
    options = ["--scenario", scenario, "--step", 1, "--hours", 1, "--live", "--fault-after", 20, "--fault-length", length,
               "--fault-strength", chance.choice([1.5, 2, 4]), "--seed", chance.randrange(1000), "--for", 40 + length]
    options += chance.choice([[], ["--wal"], ["--recreate-by", "rename"]])
    world = subprocess.Popen([BIN / "lumo-sim", "--root", root, *map(str, options)], stdout=subprocess.PIPE, text=True)
    for line in world.stdout:
        if "started" in line:
            disturbed.append((begin, time.time()))
            for _ in range(chance.randrange(3)):
                time.sleep(chance.uniform(0, 4))
                disturb(world, root)
        if "fault begins" in line:
            fault = seconds_of(line[:14])
            behind = min(1, time.time() - fault)  # rows are written in the course of their second
            if chance.random() < 0.3:
                time.sleep(chance.uniform(0, length))
                disturb(world, root)
        if "fault ends" in line:
            behind = min(behind, time.time() - seconds_of(line[:14]))  # a lock may have held one of them up
            break
        measure(watch)
    time.sleep(chance.uniform(5, 7))
    if chance.random() < 0.5:
        disturb(world, root)
    planted.append((POINT[scenario], fault, fault_rows(root, POINT[scenario], fault), behind))
    chance.choice([world.terminate, world.kill])()
    world.wait()
    disturbed.append((time.time(), time.time()))  # no rows until the next one has begun


def deadline(visible):
    """By when what was visible then has to be told."""
    latest = visible + LATE
    for begin, until in sorted(disturbed):
        if begin <= latest and until >= visible:
            latest = max(latest, until + LATE)
    return latest


def check():
    left, delays = list(told), {"slow": [], "usual": []}

    def find(point, kinds, since, row, latest, evidence):
        found = [one for one in left if one[1]["point"] == point and one[1]["kind"] in kinds
                 and since <= one[1]["time"]["epoch"] <= row + NEAR]
        expect(len(found) == 1 and found[0][0] <= deadline(latest),
               f"{point} {kinds}, visible at {latest:.1f}, told", f"{found}\n{evidence}")
        delays[kinds[0]] += [one[0] - latest for one in found]
        left[:] = [one for one in left if one not in found]
        return any(one[1]["kind"] == "was slow" for one in found)

    for point, fault, rows, behind in planted:
        if not rows:
            continue  # nobody could see it: nothing is to be told
        begin, end = rows[0][0], rows[-1][0]
        # A fault of a single row is told when it is over; a begin is right from the fault's own on.
        latest = (begin if len(rows) > 2 else end) + behind
        if not find(point, ("slow", "was slow"), fault - MEANS, begin, latest, rows):
            find(point, ("usual",), end - NEAR, end, end + behind, rows)
    for when, change in left:
        near = any(begin <= when <= until + PATIENCE for begin, until in disturbed)
        expect(change["kind"] in ("unreadable", "readable", "no rows", "rows") and near, f"{when:.1f}", str(change))
    for word, seconds in delays.items():
        print(f"{word}: seconds from being visible to being told: {[round(one, 1) for one in sorted(seconds)]}")
    print(f"{len(told)} lines, of which {len(left)} of the database")


def main():
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder)
        end = time.time() + SECONDS
        subprocess.run([BIN / "lumo-sim", "--root", root, "--step", "1", "--hours", "1"], check=True, stdout=subprocess.DEVNULL)
        watch = subprocess.Popen([BIN / "zorv-explain", "--root", root, "--watch", "--json", "--textfile", root / "zorv.prom"],
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        threading.Thread(target=listen, args=(watch,), daemon=True).start()
        while time.time() < end:
            live(root, watch)
        time.sleep(3)
        watch.terminate()
        if watch.wait() != 0:
            faults.append("the watch ended badly")
        check()
        check_growth("watch", measures, {**SLACK, "KiB": 24 * 1024})  # the history fills: five hours of seconds
    print(*faults[:40], f"{SECONDS} s, seed {SEED}, {len(faults)} faults, {len(planted)} planted", sep="\n")
    return 1 if faults or not planted else 0


if __name__ == "__main__":
    sys.exit(main())
