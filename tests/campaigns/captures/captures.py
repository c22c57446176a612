#!/usr/bin/env python3
"""Captures of a node whose statistics are written as fast as they can be: captures.py [COUNT]. Each has to hold all tables
as they were at one moment, and the writer may wait for a step of the copying, for nothing longer. Prints figures; ends with
1 when something is wrong. BIN names the folder of the programs, build/dev/bin without it."""
import hashlib
import json
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
from contextlib import closing
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
BIN = Path(os.environ.get("BIN", ROOT / "build/dev/bin"))
COUNT = int(sys.argv[1]) if len(sys.argv) > 1 else 1000
STATISTICS, STEP = "VRA/data/lumo/lumo_diagnose_data.db", 30
WORLDS = [["--period", "600"], ["--period", "600", "--wal"], ["--period", "1200", "--recreate", "90000"]]
ARCHIVES = 10  # one in so many is an archive
LATENCY = 250  # ms: SQLite's own naps while it waits for a lock, and a machine that has other work


def faults(folder):
    """What is wrong with a capture, and its manifest."""
    manifest = json.loads((folder / "manifest.json").read_text())
    for file in manifest["files"]:
        if hashlib.sha256((folder / file["path"][1:]).read_bytes()).hexdigest() != file["sha256"]:
            yield f"{file['path']} has another hash"
    left = sorted(path.name for path in (folder / STATISTICS).parent.iterdir())
    if left != [Path(STATISTICS).name]:
        yield f"there are {left}"
    with closing(sqlite3.connect(f"file:{folder / STATISTICS}?mode=ro&immutable=1", uri=True)) as database:
        if database.execute("pragma integrity_check").fetchall() != [("ok",)]:
            yield "it is damaged"
        points = database.execute("select count(*) from version_nmaps").fetchone()[0]
        tables = [name for name, in database.execute("select tablename from table_flag order by reporttime")]
        rows = [row for table in tables for row in
                database.execute(f"select curtime, count(distinct locateid), count(*) from {table} group by 1 order by 1")]
    if any((found, every) != (points, points) for _, found, every in rows):
        yield "an instant has not all points"
    times = [when for when, *_ in rows]
    if times != list(range(times[0], times[-1] + 1, STEP)):
        yield "an instant is missing, or there twice"
    if (manifest["statistics"]["start"]["epoch"], manifest["statistics"]["end"]["epoch"]) != (times[0], times[-1]):
        yield f"the manifest tells of {manifest['statistics']}, and there is {times[0]} to {times[-1]}"


def unpacked(target):
    if not target.name.endswith(".tar.zst"):
        return target
    subprocess.run(["tar", "--zstd", "-xf", target], cwd=target.parent, check=True)
    return target.with_name(target.name[:-len(".tar.zst")])


def take(place, root, count, tell):
    """Takes captures one after the other in one console, and checks each; returns the longest step in ms."""
    longest = 0
    with open(place / "said", "w+") as said, subprocess.Popen(
            [BIN / "zorv-local", "--root", root, "--zone", "+0000"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=said, text=True) as console:
        taken = 0
        while taken < count:
            target = place / ("c.tar.zst" if taken % ARCHIVES == 0 else "c")
            console.stdin.write(f"capture {target}\nhelp quit\n")
            console.stdin.flush()
            lines = []
            while not lines or "quit:" not in lines[-1]:
                lines.append(console.stdout.readline())
            why = (place / "said").read_text().splitlines()[-1:]
            if len(lines) < 2:
                if "is not there" not in str(why) and "is empty" not in str(why):  # the database is being made anew
                    tell(f"no capture: {why}")
                    taken += 1
                time.sleep(0.02)  # the writer needs the core, too
                continue
            folder = unpacked(target)
            for fault in faults(folder):
                tell(fault)
            file, = (file for file in json.loads((folder / "manifest.json").read_text())["files"] if file["path"][1:] == STATISTICS)
            longest = max(longest, file["longest_step"] * 1000)
            restarts[file["restarts"]] = restarts.get(file["restarts"], 0) + 1
            shutil.rmtree(folder)
            target.is_file() and target.unlink()
            if left := list(place.glob("*c*")):
                tell(f"there is left {left}")
            taken += 1
        console.stdin.close()
    return longest


def play(options, count, tell):
    """Of one world: what its writer said in the end, and the longest step."""
    with tempfile.TemporaryDirectory() as name:
        place, begun = Path(name), time.gmtime(time.time() - 3000 * 86400)
        with open(place / "told", "w+") as told:  # no pipe: it would fill, and the writer would wait for its reader
            producer = subprocess.Popen(
                [BIN / "lumo-sim", "--root", place / "world", "--live", "--speed", "86400", "--hours", "4", "--keep", "4",
                 "--end", time.strftime("%Y%m%d%H0000", begun), *options], stdout=told, env={**os.environ, "TZ": "UTC"})
            while "started" not in (place / "told").read_text():
                time.sleep(0.1)
            longest, _ = (take(place, place / "world", count, tell), 0) if count else (0, time.sleep(20))
            producer.terminate()
            producer.wait()
        return (place / "told").read_text().splitlines()[-1].split("; ")[-1], longest


wrong, restarts = [], {}
for world in WORLDS:
    alone, _ = play(world, 0, wrong.append)
    beside, step = play(world, COUNT // len(WORLDS), wrong.append)
    waited, usual = (int(text.split()[-2]) for text in (beside, alone))
    print(f"{' '.join(world)}: {COUNT // len(WORLDS)} captures; alone {alone}; beside them {beside}; longest step {step:.0f} ms", flush=True)
    if waited > usual + step + LATENCY:
        wrong.append(f"the writer waited for {waited} ms")
print(f"restarts: {dict(sorted(restarts.items()))}; faults: {wrong or 'none'}")
sys.exit(bool(wrong))
