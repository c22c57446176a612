#!/usr/bin/env python3
"""How long zorv-fleet takes for the answers of many nodes, and for many captures; and how much memory. What counts is
processor time, so that other processes do not; the time on the clock stands beside it.

fleet_fold.py [--bin DIR] [--answers N] [--captures N] [--hours H]"""
import argparse
import json
import os
import resource
import subprocess
import sys
import tempfile
import time
from pathlib import Path

SCENARIOS = ("slow-disk", "slow-network", "nas-slow", "load-surge", "healthy", "healthy", "healthy", "healthy")
END = "20230105143000"
ENVIRONMENT = {**os.environ, "TZ": "CST-8"}
MOST_SECONDS, MOST_MIB = 5, 500

parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
parser.add_argument("--bin", default=Path(__file__).parent.parent / "build/release/bin", type=Path)
parser.add_argument("--answers", type=int, default=10000)
parser.add_argument("--captures", type=int, default=0, help="of the first round, each a world of its own: 55 MB for 48 hours")
parser.add_argument("--hours", type=int, default=48, help="of each capture")
parser.add_argument("--slow", action="store_true", help="all nodes are slow: an answer is ten times as long")
options = parser.parse_args()
options.bin = options.bin.resolve()


def run(program, *words, **more):
    return subprocess.run([options.bin / program, *map(str, words)], env=ENVIRONMENT, capture_output=True, **more)


def timed(program, *words):
    """What it printed, and seconds of all processors and on the clock, its children among them."""
    def spent():
        usage = resource.getrusage(resource.RUSAGE_CHILDREN)
        return usage.ru_utime + usage.ru_stime, time.monotonic()
    before = spent()
    done = run(program, *words)
    return done, *(after - at_first for after, at_first in zip(spent(), before))


def world(folder, scenario, hours, seed=42):
    run("lumo-sim", "--root", folder, "--scenario", scenario, "--hours", hours, "--end", END, "--seed", seed, check=True)
    return folder


def fold(folder):
    """10,000 answers of a few nodes, under as many names."""
    answers = [json.loads(run("zorv-explain", "--root", world(folder / str(i), scenario, 4), "--json",
                              "20230105103000", END).stdout) for i, scenario in enumerate(SCENARIOS[:3 if options.slow else None])]
    lines = folder / "answers.jsonl"
    with lines.open("w") as file:
        for i in range(options.answers):
            file.write(json.dumps({**answers[i % len(answers)], "node": f"node{i}"}) + "\n")
    done, seconds, clock = timed("zorv-fleet", "--fold", lines, "--json")
    mebibytes = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
    nodes = json.loads(done.stdout)["nodes"]
    print(f"{len(nodes)} answers of {lines.stat().st_size / 2**20:.0f} MiB folded in {seconds:.1f} s ({clock:.1f} s on the clock), {mebibytes:.0f} MiB")
    return seconds > MOST_SECONDS or mebibytes > MOST_MIB or len(nodes) != options.answers


def first_round(folder):
    """The fleet's work against that of its explanations one after the other. No node has a fault,
    so there is no second look."""
    captures = [world(folder / f"capture{i}", "healthy", options.hours, seed=i + 1) for i in range(options.captures)]
    words = ("20230103143000" if options.hours == 48 else "20230105103000", END)
    singles = [timed("zorv-explain", "--json", "--capture", capture, *words)[1:] for capture in captures]
    single, single_clock = (sum(each) for each in zip(*singles))
    _, both, clock = timed("zorv-fleet", "--json", *captures, *words)
    largest = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
    print(f"{options.captures} captures of {options.hours} h: {single:.1f} s one after the other ({single_clock:.1f} on the clock), "
          f"{both:.1f} s by zorv-fleet ({clock:.1f} on the clock): {both / single:.2f} times the work, on {os.cpu_count()} cores "
          f"{clock / (single_clock / os.cpu_count()):.2f} times the share of the clock; the largest process has {largest:.0f} MiB")
    return both / single > 1.1


with tempfile.TemporaryDirectory() as temporary:
    failed = bool(options.answers) and fold(Path(temporary))
    failed = bool(options.captures) and first_round(Path(temporary)) or failed
sys.exit(failed)
