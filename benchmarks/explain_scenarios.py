#!/usr/bin/env python3
"""How often zorv-explain names what lumo-sim has planted, over all scenarios and many seeds, and how often it was right
when it said how sure it is. Options that are not listed here go to lumo-sim: --hours, --step, --noise. Fails when a
scenario's truth is missed too often."""
import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

COLUMNS = ["runs", "points", "first", "three", "load", "claims"]
CERTAINTIES = ["sure", "likely", "unsure"]
LEAST = {"first": 0.95, "three": 0.99, "load": 0.95}  # of the runs; of claims where nothing is slow there may be none


def compact(epoch):
    return time.strftime("%Y%m%d%H%M%S", time.gmtime(epoch))


def explain(bin_dir, scenario, seed, extra, minutes=None):
    """What was written of a world, and what is not weak of the analyses of its last minutes or of all of it."""
    world = ["--scenario", scenario, "--seed", str(seed), "--end", "20230105143000", *extra]
    with tempfile.TemporaryDirectory() as root:
        subprocess.run([bin_dir / "lumo-sim", "--root", root, *world], check=True, stdout=subprocess.DEVNULL)
        written = json.loads(pathlib.Path(root, "truth.json").read_text())
        start = compact(written["end_epoch"] - 60 * minutes) if minutes else written["start"]
        run = subprocess.run([bin_dir / "zorv-explain", "--root", root, "--json", start, written["end"]],
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if run.returncode not in (0, 1, 4):
        raise RuntimeError(f"{scenario}, seed {seed}, {extra}: {run.returncode}, {run.stderr}")
    return written, [one for one in json.loads(run.stdout)["analyses"] if not one["weak"]]


def is_claim(analysis):
    return analysis["verdict"] in ("point", "load")


def is_good(counts):
    return not counts["claims"] and all(counts[name] >= least * counts["runs"]
                                        for name, least in LEAST.items() if name in counts)


def judge(truth, analyses):
    """What counts for the columns; and, where the answer is not the truth, the answer in words. Of a graph the first
    analysis is the answer: the others are of earlier events."""
    found = collections.Counter(runs=1)
    analyses = [one for one in analyses if truth["graph"] in (None, one["graph"])]
    answer = analyses[0] if analyses else {"verdict": "no analysis", "candidates": []}
    names = [candidate["point"] for candidate in answer["candidates"]]
    if truth["verdict"] == "point":
        is_point = answer["verdict"] == "point"
        found["points"] = 1
        found["first"] = is_point and names[:1] == truth["points"][:1]
        found["three"] = is_point and set(truth["points"]) <= set(names[:3])
        if is_point:
            found["said " + answer["certainty"]] = 1
            found["right " + answer["certainty"]] = found["first"]
    elif truth["verdict"] == "load":
        found["load"] = answer["verdict"] == "load"
    else:
        found["claims"] = any(map(is_claim, analyses))
    shares = [f"{candidate['point']} {candidate['share']:.3f}" for candidate in answer["candidates"][:4]]
    return found, "" if is_good(found) else f"{answer['verdict']}: {', '.join(shares)}"


def measure(options, scenario, extra, workers):
    counts = collections.Counter()
    futures = [workers.submit(explain, options.bin, scenario, seed, extra) for seed in range(1, options.seeds + 1)]
    for seed, future in enumerate(futures, 1):
        written, analyses = future.result()
        found, answer = judge(written["explain"], analyses)
        counts.update(found)
        if answer:
            print(f"{scenario}, seed {seed}: {answer}", file=sys.stderr, flush=True)
    return counts


def row(name, counts):
    print(f"{name:<16}" + "".join(f"{counts[column] if column in counts else '-':>8}" for column in COLUMNS), flush=True)


def tell_certainty(counts):
    for certainty in CERTAINTIES:
        print(f"said {certainty:<8}{counts['said ' + certainty]:>6}   was right {counts['right ' + certainty]:>6}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--seeds", type=int, default=50)
    parser.add_argument("--scenario", action="append", help="only this one; may be repeated")
    options, extra = parser.parse_known_args()
    listing = subprocess.run([options.bin / "lumo-sim", "--list"], check=True, stdout=subprocess.PIPE, text=True).stdout
    total = collections.Counter()
    row("scenario", {column: column for column in COLUMNS})
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as workers:
        for scenario in options.scenario or [line.split()[0] for line in listing.splitlines()]:
            counts = measure(options, scenario, extra, workers)
            row(scenario, counts)
            total.update(counts)
            total["missed"] += not is_good(counts)
    row("all", total)
    tell_certainty(total)
    return total["missed"] > 0


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    sys.exit(main())
