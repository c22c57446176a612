#!/usr/bin/env python3
"""How often zorv-explain finds a fault however long it lasts: of one sample up to nine tenths of ranges of 60, 240 and 1440
minutes, still going on and over, 1.5 to 6 times as slow, with and without an earlier, larger spike. Right is an answer
whose first point is the planted one and whose event begins within two samples of the fault. Then: claims in ranges without
a fault. Fails below 95 % of right ones, or beyond one claim in 200."""
import argparse
import collections
import concurrent.futures
import itertools
import json
import pathlib
import subprocess
import sys
import tempfile

STEP = 30
END = "20230105143000"
FILLS = [0, 0.02, 0.05, 0.1, 0.21, 0.35, 0.5, 0.7, 0.9]  # of the range; 0: one sample
STRENGTHS = [1.5, 2, 3, 6]
SPIKE = 4  # times as large as the fault
LOOK_BACK = {60: 240, 240: 480, 1440: 1440}  # minutes of rows before the range
SCENARIOS = ["slow-disk", "slow-network", "nas-slow", "slow-pool"]


def run(*command):
    return subprocess.run(command, check=False, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def world(bin_dir, root, scenario, minutes, seed, *extra):
    hours = (minutes + LOOK_BACK[minutes]) // 60
    made = run(bin_dir / "lumo-sim", "--root", root, "--scenario", scenario, "--seed", str(seed), "--end", END,
               "--hours", str(hours), *extra)
    if made.returncode != 0:
        sys.exit(made.stderr)
    return json.loads(pathlib.Path(root, "truth.json").read_text())


def explain(bin_dir, root, minutes, truth):
    end = truth["end_epoch"]
    answer = run("env", "TZ=UTC", bin_dir / "zorv-explain", "--root", root, "--json", f"{end_of(end - 60 * minutes)}", end_of(end))
    return json.loads(answer.stdout)["analyses"] if answer.stdout else []


def end_of(epoch):
    import time
    return time.strftime("%Y%m%d%H%M%S", time.gmtime(epoch))


def try_fault(bin_dir, case):
    minutes, fill, ongoing, strength, spike, seed = case
    length = max(STEP, int(fill * minutes * 60) // STEP * STEP)
    before = LOOK_BACK[minutes] * 60
    start = before + minutes * 60 - length if ongoing else before + (minutes * 60 - length) // 2 // STEP * STEP
    extra = ["--fault-start", str(start), "--fault-length", str(length), "--fault-strength", str(strength)]
    if spike:
        extra += ["--spike", str(1 + SPIKE * (strength - 1)), "--spike-before", str(min(1800, start // 2))]
    with tempfile.TemporaryDirectory() as root:
        truth = world(bin_dir, root, SCENARIOS[seed % len(SCENARIOS)], minutes, seed, *extra)
        analyses = explain(bin_dir, root, minutes, truth)
    began = truth["start_epoch"] + start
    graph, points = truth["explain"]["graph"], truth["explain"]["points"]
    answers = [one for one in analyses if one["graph"] == graph and one["event"] and not one["weak"]]
    near = [one for one in answers if one["event"]["start"]["epoch"] - 2 * STEP <= began + length - STEP
            and one["event"]["end"]["epoch"] + 2 * STEP >= began]
    seen = bool(near)
    begins = any(abs(one["event"]["start"]["epoch"] - began) <= 2 * STEP for one in near)
    first = any(one["candidates"][:1] and one["candidates"][0]["point"] == points[0] for one in near
                if abs(one["event"]["start"]["epoch"] - began) <= 2 * STEP)
    others = sum(1 for one in answers if one not in near) - spike
    return collections.Counter(runs=1, seen=seen, begin=begins, right=first, others=max(0, others))


def try_quiet(bin_dir, case):
    minutes, seed = case
    with tempfile.TemporaryDirectory() as root:
        truth = world(bin_dir, root, "healthy", minutes, seed)
        analyses = explain(bin_dir, root, minutes, truth)
    return collections.Counter(runs=1, claims=any(one["verdict"] in ("point", "load") and not one["weak"] for one in analyses))


def tell(name, counts, columns):
    print(f"{name:<28}" + "".join(f"{column} {counts[column]:>5}  " for column in columns), flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--seeds", type=int, default=1, help="of each combination")
    parser.add_argument("--quiet", type=int, default=200, help="ranges without a fault")
    parser.add_argument("--minutes", type=int, action="append", choices=list(LOOK_BACK))
    options = parser.parse_args()
    ranges = options.minutes or list(LOOK_BACK)
    seeds = itertools.count(1)
    cases = [(*case, next(seeds)) for case in itertools.product(ranges, FILLS, [False, True], STRENGTHS, [False, True])
             for _ in range(options.seeds)]
    by = collections.defaultdict(collections.Counter)
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as workers:
        for case, found in zip(cases, workers.map(lambda case: try_fault(options.bin, case), cases)):
            for name in (f"{case[0]} minutes", f"fills {case[1]:.2f}", f"{case[3]} times as slow",
                         "going on" if case[2] else "over", "after a spike" if case[4] else "without a spike", "all"):
                by[name].update(found)
            if not found["right"]:
                print("missed:", case, dict(found), file=sys.stderr, flush=True)
        for name, counts in by.items():
            tell(name, counts, ["runs", "seen", "begin", "right", "others"])
        quiet = collections.Counter()
        cases = [(ranges[seed % len(ranges)], seed) for seed in range(options.quiet)]
        for found in workers.map(lambda case: try_quiet(options.bin, case), cases):
            quiet.update(found)
    tell("without a fault", quiet, ["runs", "claims"])
    return by["all"]["right"] < 0.95 * by["all"]["runs"] or quiet["claims"] * 200 > max(200, quiet["runs"])


if __name__ == "__main__":
    sys.exit(main())
