#!/usr/bin/env python3
"""How often zorv-explain finds a fault however long it lasts: of one sample up to nine tenths of ranges of 60, 240 and 1440
minutes, still going on and over, 1.5 to 6 times as slow, with and without an earlier, larger spike. Right is a first
answer of the fault's graph whose first point is the planted one and whose event begins within two samples of the fault.
Then: claims in ranges without a fault. Fails below 95 % of right ones, or beyond one claim in 200."""
import argparse
import collections
import concurrent.futures
import itertools
import json
import os
import pathlib
import random
import sys

from explain_scenarios import explain, is_claim, tell_certainty

STEP = 30
NEAR = 2 * STEP
FILLS = [0, 0.02, 0.05, 0.1, 0.21, 0.35, 0.5, 0.7, 0.9]  # of the range; 0: one sample
STRENGTHS = [1.5, 2, 3, 6]
SPIKE = 4             # times as large as the fault
SPIKE_BEFORE = 1800   # seconds
LOOK_BACK = {60: 240, 240: 480, 1440: 1440}  # minutes of rows before the range
SCENARIOS = ["slow-disk", "slow-network", "nas-slow", "slow-pool"]
Case = collections.namedtuple("Case", "minutes fill ongoing strength spike seed")


def length_of(case):
    return max(STEP, int(case.fill * case.minutes * 60) // STEP * STEP)


def world_of(case, extra):
    """The scenario, and the options that plant the fault in the range: at its end, or in its middle."""
    place = case.minutes * 60 - length_of(case)
    start = LOOK_BACK[case.minutes] * 60 + (place if case.ongoing else place // 2 // STEP * STEP)
    fault = ["--fault-start", start, "--fault-length", length_of(case), "--fault-strength", case.strength]
    if case.spike:
        fault += ["--spike", 1 + SPIKE * (case.strength - 1), "--spike-before", SPIKE_BEFORE]
    hours = (case.minutes + LOOK_BACK[case.minutes]) // 60
    scenario = random.Random(case.seed).choice(SCENARIOS)
    return scenario, ["--hours", str(hours), *map(str, fault), *extra]


def touches(event, first, last):
    return event["start"]["epoch"] - NEAR <= last and event["end"]["epoch"] + NEAR >= first


def judge(case, written, analyses):
    """What counts, and what was answered, in words."""
    truth, fault = written["explain"], written["fault"]
    spike = fault["start_epoch"] - SPIKE_BEFORE
    is_fault = lambda one: touches(one["event"], fault["start_epoch"], fault["end_epoch"])
    answers = [one for one in analyses if one["graph"] == truth["graph"] and is_claim(one)]
    first = answers[0] if answers else None
    found = collections.Counter(runs=1, seen=any(map(is_fault, answers)))
    if first and is_fault(first):
        found["begin"] = abs(first["event"]["start"]["epoch"] - fault["start_epoch"]) <= NEAR
        found["point"] = first["verdict"] == "point" and first["candidates"][0]["point"] == truth["points"][0]
        found["right"] = found["begin"] and found["point"]
        found["state"] = first["event"]["ongoing"] == case.ongoing
        found["said " + first["certainty"]] = 1
        found["right " + first["certainty"]] = found["point"]
    found["others"] = sum(1 for one in analyses if is_claim(one) and not is_fault(one)
                          and not (case.spike and touches(one["event"], spike, spike + NEAR)))
    tell = lambda one: (f"{one['point']} {one['verdict']}"
                        f" {', '.join('%s %.2f' % (each['point'], each['share']) for each in one['candidates'][:2])}"
                        f" from {(one['event']['start']['epoch'] - fault['start_epoch']) // STEP:+d}"
                        f" to {(one['event']['end']['epoch'] - fault['end_epoch']) // STEP:+d} samples of the fault's")
    return found, "; ".join(map(tell, filter(is_claim, analyses))) or "nothing"


def try_fault(bin_dir, case, extra):
    scenario, options = world_of(case, extra)
    written, analyses = explain(bin_dir, scenario, case.seed, options, case.minutes)
    found, answer = judge(case, written, analyses)
    return found, f"{scenario}: {answer}"


def try_quiet(bin_dir, minutes, seed, extra):
    hours = str((minutes + LOOK_BACK[minutes]) // 60)
    _, analyses = explain(bin_dir, "healthy", seed, ["--hours", hours, *extra], minutes)
    return collections.Counter(runs=1, claims=any(map(is_claim, analyses)))


def tell(name, counts, columns):
    print(f"{name:<28}" + "".join(f"{column} {counts[column]:>5}  " for column in columns), flush=True)


def try_faults(options, extra, workers):
    seeds = itertools.count(1)
    cases = [Case(*case, next(seeds)) for case in itertools.product(options.ranges, FILLS, [False, True], STRENGTHS, [0, 1])
             for _ in range(options.seeds)]
    if options.sample:
        cases = random.Random(1).sample(cases, options.sample)
    by = collections.defaultdict(collections.Counter)
    for case, (found, answer) in zip(cases, workers.map(lambda case: try_fault(options.bin, case, extra), cases)):
        for name in (f"{case.minutes} minutes", f"fills {case.fill:.2f}" if case.fill else "one sample",
                     f"{case.strength} times as slow", "going on" if case.ongoing else "over",
                     "after a spike" if case.spike else "without a spike", "all"):
            by[name].update(found)
        if not found["right"] or found["others"]:
            print("right, but:" if found["right"] else "missed:", *(f"{name}={value}" for name, value in case._asdict().items()),
                  answer, file=sys.stderr, flush=True)
    for name in sorted(by, key=lambda name: (name == "all")):
        tell(name, by[name], ["runs", "seen", "begin", "point", "right", "state", "others"])
    return by["all"]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--seeds", type=int, default=1, help="of each combination")
    parser.add_argument("--sample", type=int, help="only so many of these, drawn by chance")
    parser.add_argument("--quiet", type=int, default=200, help="ranges without a fault")
    parser.add_argument("--minutes", type=int, action="append", choices=list(LOOK_BACK), dest="ranges")
    options, extra = parser.parse_known_args()
    options.ranges = options.ranges or list(LOOK_BACK)
    quiet = collections.Counter()
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as workers:
        found = try_faults(options, extra, workers) if options.seeds else collections.Counter()
        tell_certainty(found)
        cases = [(options.ranges[seed % len(options.ranges)], seed) for seed in range(options.quiet)]
        for one in workers.map(lambda case: try_quiet(options.bin, *case, extra), cases):
            quiet.update(one)
    tell("without a fault", quiet, ["runs", "claims"])
    return found["right"] < 0.95 * found["runs"] or quiet["claims"] * 200 > max(200, quiet["runs"])


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    sys.exit(main())
