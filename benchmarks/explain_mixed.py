#!/usr/bin/env python3
"""A line about a build of zorv-explain on mixed worlds, also mild, noisy and curved ones: what another constant in
explain/analysis does is seen by comparing the lines of two builds. --worlds keeps the worlds for the next build."""
import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import random
import sqlite3
import subprocess
import sys

from explain_durations import Case, judge, world_of
from explain_scenarios import compact, is_claim

TAIL = 6         # degrees of freedom of Student's t: normal, but for a sample in a thousand
ROUGHNESS = 0.1  # of the delays
DAYS = ["--hours", "48"]


def kinds():
    """Name, number of worlds, minutes of the range, whether the noise is made rough, and of a seed the case or the scenario,
    with the options."""
    pick = lambda seed, *values: random.Random(f"{seed} {values}").choice(values)
    fault = lambda seed, strengths, fills=(0.02, 0.1, 0.35, 0.7): Case(
        60, pick(seed, *fills), pick(seed, False, True), pick(seed, *strengths), pick(seed, 0, 1), seed)
    yield "strong", 24, 60, False, lambda seed: (fault(seed, (1.5, 2, 3, 6)), [])
    yield "sample", 12, 60, False, lambda seed: (fault(seed, (1.5, 2, 3), (0,)), [])
    yield "mild", 24, 60, False, lambda seed: (fault(seed, (1.1, 1.15, 1.2, 1.3)), [])
    yield "noisy", 24, 60, False, lambda seed: (fault(seed, (1.5, 2, 3, 6)), ["--noise", "30"])
    yield "rough", 24, 60, True, lambda seed: (fault(seed, (1.5, 2, 3, 6)), [])
    yield "curved", 12, 1440, False, lambda seed: (None, ["--scenario", "daily-curve", *DAYS, "--swing", str(pick(seed, 20, 30, 40))])
    yield "healthy", 24, 60, False, lambda seed: (None, ["--scenario", "healthy", "--hours", "5"])
    yield "rough-healthy", 24, 60, True, lambda seed: (None, ["--scenario", "healthy", "--hours", "5"])
    yield "curved-healthy", 12, 1440, False, lambda seed: (
        None, ["--scenario", "healthy", *DAYS, "--swing", str(pick(seed, 10, 20, 30, 40))])


def roughen(database, seed):
    """Multiplies the delays of all rows by noise with a tail."""
    source = random.Random(seed)

    def rough(delay):
        wide = source.gauss(0, 1) / (source.gammavariate(TAIL / 2, 2) / TAIL) ** 0.5
        return max(1, round(delay * max(0.1, 1 + ROUGHNESS * wide)))

    with sqlite3.connect(database) as connection:
        connection.create_function("rough", 1, rough)
        for table, in connection.execute("select tablename from table_flag").fetchall():
            connection.execute(f"update {table} set avgdelay = rough(avgdelay)")


def write(bin_dir, root, kind, seed):
    _, _, minutes, is_rough, choose = kind
    case, options = choose(seed)
    if case:
        scenario, options = world_of(case, options)
        options = ["--scenario", scenario, *options]
    subprocess.run([bin_dir / "lumo-sim", "--root", root, "--seed", str(seed), "--end", "20230105143000", *options], check=True,
                   stdout=subprocess.DEVNULL)
    if is_rough:
        roughen(root / "VRA/data/lumo/lumo_diagnose_data.db", seed)


def look(options, kind, seed):
    name, _, minutes, _, choose = kind
    root = options.worlds / f"{name}-{seed}"
    if not (root / "truth.json").exists():
        root.mkdir(parents=True, exist_ok=True)
        write(options.bin, root, kind, seed)
    written = json.loads((root / "truth.json").read_text())
    run = subprocess.run([options.bin / "zorv-explain", "--root", root, "--json",
                          compact(written["end_epoch"] - 60 * minutes), written["end"]],
                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    analyses = [one for one in json.loads(run.stdout)["analyses"] if not one["weak"]]
    case = choose(seed)[0]
    if written["explain"]["verdict"] != "point":
        return collections.Counter(runs=1, right=not any(map(is_claim, analyses)), claims=sum(map(is_claim, analyses)))
    ongoing = written["fault"]["ongoing"]
    found, answer = judge(case or Case(minutes, 0, ongoing, 0, 0, seed), written, analyses)
    if not found["right"]:
        print(f"{name}-{seed}: {case} {answer}", file=sys.stderr, flush=True)
    return collections.Counter(runs=1, right=found["right"], claims=found["others"])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--worlds", type=pathlib.Path, required=True)
    parser.add_argument("--kind", action="append", choices=[kind[0] for kind in kinds()], help="only this one; may be repeated")
    options = parser.parse_args()
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as workers:
        for kind in kinds():
            if options.kind and kind[0] not in options.kind:
                continue
            counts = collections.Counter()
            for found in workers.map(lambda seed: look(options, kind, seed), range(1, kind[1] + 1)):
                counts.update(found)
            print(f"{kind[0]} {counts['right']}/{counts['runs']} +{counts['claims']}", end="  ", flush=True)
    print()


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    sys.exit(main())
