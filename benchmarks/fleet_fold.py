#!/usr/bin/env python3
"""How long zorv-fleet takes for the answers of many nodes, and for many captures; and how much memory.

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
parser.add_argument("--captures", type=int, default=0, help="of the first round")
parser.add_argument("--hours", type=int, default=48, help="of each capture")
parser.add_argument("--slow", action="store_true", help="all nodes are slow: an answer is ten times as long")
options = parser.parse_args()
options.bin = options.bin.resolve()


def run(program, *words, **more):
    return subprocess.run([options.bin / program, *map(str, words)], env=ENVIRONMENT, capture_output=True, **more)


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
    begin = time.monotonic()
    done = run("zorv-fleet", "--fold", lines, "--json")
    seconds = time.monotonic() - begin
    mebibytes = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
    nodes = json.loads(done.stdout)["nodes"]
    print(f"{len(nodes)} answers of {lines.stat().st_size / 2**20:.0f} MiB folded in {seconds:.1f} s, {mebibytes:.0f} MiB")
    return seconds > MOST_SECONDS or mebibytes > MOST_MIB or len(nodes) != options.answers


def first_round(folder):
    """The fleet's time against that of its explanations one after the other, divided by the cores. No node has a fault,
    so there is no second look."""
    node = world(folder / "node", "healthy", options.hours)
    captures = []
    for i in range(options.captures):
        captures.append(folder / f"capture{i}")
        captures[-1].symlink_to(node)
    words = ("20230103143000" if options.hours == 48 else "20230105103000", END)
    begin = time.monotonic()
    for capture in captures:
        run("zorv-explain", "--json", "--capture", capture, *words)
    single = time.monotonic() - begin
    begin = time.monotonic()
    run("zorv-fleet", "--json", *captures, *words)
    both = time.monotonic() - begin
    ratio = both / (single / os.cpu_count())
    print(f"{options.captures} captures of {options.hours} h: {single:.1f} s one after the other, {both:.1f} s by zorv-fleet "
          f"on {os.cpu_count()} cores: {ratio:.2f} times the share")
    return ratio > 1.1


with tempfile.TemporaryDirectory() as temporary:
    failed = bool(options.answers) and fold(Path(temporary))
    failed = bool(options.captures) and first_round(Path(temporary)) or failed
sys.exit(failed)
