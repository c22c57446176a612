#!/usr/bin/env python3
"""watch.py [SECONDS [SEED [SLACK]]]: zorv-explain --watch beside live worlds in real time, with a sample a second: one after the other
has a fault, is re-created, locked, ends or is killed. Each fault is told within two looks of being visible, its end too, and
nothing else of a point; what is told of the database is where something was done to it. Descriptors and memory stay."""
import datetime
import json
import os
import random
import signal
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

from soak import BIN, SLACK, check_growth, expect, faults

SECONDS = int((sys.argv[1:] or ["3600"])[0])
SEED = int((sys.argv[2:] or [time.time_ns() % 10**6])[0])
DATABASE = "VRA/data/lumo/lumo_diagnose_data.db"
LATE = 2 + float((sys.argv[3:] or ["2"])[0])  # seconds from being visible: two looks, and what the machine needs for them
BEGINS, ENDS = 4, 6  # seconds after its begin and end until a fault is there, and gone, for the hosts
PATIENCE = 12  # seconds: how long the watch waits before it tells that there is nothing to read
POINT = {"slow-disk": "TGT_LUMO_HOST_READ", "slow-network": "TGT_LUMO_HOST_WRITE", "locked-volume": "TGT_LUMO_HOST_CMD"}

chance = random.Random(SEED)
told, planted, disturbed = [], [], []  # (when, change); (point, begin, end) with each end (world's time, when visible); (from, until)
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


def live(root, watch, end):
    """One world; returns when its time is over."""
    scenario = chance.choice(list(POINT))
    begin = time.time()
    length = chance.choice([3, 5, 10, 30])
    options = ["--scenario", scenario, "--step", 1, "--hours", 1, "--live", "--fault-after", 20, "--fault-length", length,
               "--fault-strength", chance.choice([1.5, 2, 4]), "--seed", chance.randrange(1000), "--for", 30 + length]
    options += chance.choice([[], ["--wal"], ["--recreate-by", "rename"]])
    world = subprocess.Popen([BIN / "lumo-sim", "--root", root, *map(str, options)], stdout=subprocess.PIPE, text=True)
    fault = []
    for line in world.stdout:
        now = time.time()
        if "started" in line:
            disturbed.append((begin, now))
            for _ in range(chance.randrange(3)):
                time.sleep(chance.uniform(0, 4))
                disturb(world, root)
        if "fault begins" in line or "fault ends" in line:
            fault.append((seconds_of(line[:14]), now))
        if "fault ends" in line:
            planted.append((POINT[scenario], *fault))
            break
        measure(watch)
    if time.time() < end:
        time.sleep(chance.uniform(4, 6))
        if chance.random() < 0.5:
            disturb(world, root)
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
    for point, begin, end in planted:
        for word, (since, visible), most in (("slow", begin, BEGINS), ("usual", end, ENDS)):
            found = [one for one in told if one[1]["kind"] in (word, "was slow") and one[1]["point"] == point
                     and since - 1 <= one[1]["time"]["epoch"] <= since + most]
            on_time = all(one[0] <= deadline(visible) for one in found)
            expect(len(found) == 1 and on_time, f"{point} {word} since {since:.0f}, visible at {visible:.1f}, told", str(found))
            delays[word] += [one[0] - visible for one in found]
            left = [one for one in left if one not in found]
    for when, change in left:
        near = any(begin <= when <= until + PATIENCE for begin, until in disturbed)
        expect(change["point"] is None and near, f"{when:.1f}", str(change))
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
            live(root, watch, end)
        time.sleep(3)
        watch.terminate()
        if watch.wait() != 0:
            faults.append("the watch ended badly")
        check()
        check_growth("watch", measures, {**SLACK, "KiB": 24 * 1024})  # the history fills: five hours of seconds
    print(*faults[:20], f"{SECONDS} s, seed {SEED}, {len(faults)} faults, {len(planted)} planted", sep="\n")
    return 1 if faults or not planted else 0


if __name__ == "__main__":
    sys.exit(main())
