#!/usr/bin/env python3
"""How often zorv-explain names what lumo-sim has planted, over all scenarios and many seeds. Options that are not listed
here go to lumo-sim: --hours, --step. Fails when a scenario's truth is missed too often."""
import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys
import tempfile

COLUMNS = ["runs", "points", "first", "three", "load", "claims"]
LEAST = {"first": 0.95, "three": 0.99, "load": 0.95}  # of the runs; of claims where nothing is slow there may be none


def explain(bin_dir, scenario, seed, extra):
    """What the truth says of a world, and the analyses of the graph that it says it of: all where nothing is slow."""
    world = ["--scenario", scenario, "--seed", str(seed), "--end", "20230105143000", *extra]
    with tempfile.TemporaryDirectory() as root:
        subprocess.run([bin_dir / "lumo-sim", "--root", root, *world], check=True, stdout=subprocess.DEVNULL)
        written = json.loads(pathlib.Path(root, "truth.json").read_text())
        run = subprocess.run([bin_dir / "zorv-explain", "--root", root, "--json", written["start"], written["end"]],
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    truth = written["explain"]
    return truth, [one for one in json.loads(run.stdout)["analyses"] if truth["graph"] in (None, one["graph"])]


def is_good(counts):
    return not counts["claims"] and all(counts[name] >= least * counts["runs"]
                                        for name, least in LEAST.items() if name in counts)


def judge(truth, analyses):
    """What counts for the columns; and, where the answer is not the truth, the answer in words."""
    found = collections.Counter(runs=1)
    verdicts = [one["verdict"] for one in analyses]
    ranks = [one["candidates"] for one in analyses if one["verdict"] == "point"]
    names = [candidate["point"] for candidate in (ranks[0] if ranks else [])]
    if truth["verdict"] == "point":
        found["points"] = 1
        found["first"] = names[:1] == truth["points"][:1]
        found["three"] = set(truth["points"]) <= set(names[:3])
    elif truth["verdict"] == "load":
        found["load"] = verdicts == ["load"]
    else:
        found["claims"] = any(verdict in ("point", "load") for verdict in verdicts)
    shares = [f"{candidate['point']} {candidate['share']:.3f}" for rank in ranks for candidate in rank[:4]]
    return found, "" if is_good(found) else f"{', '.join(verdicts) or 'no analysis'}: {', '.join(shares)}"


def measure(options, scenario, extra, workers):
    counts = collections.Counter()
    futures = [workers.submit(explain, options.bin, scenario, seed, extra) for seed in range(1, options.seeds + 1)]
    for seed, future in enumerate(futures, 1):
        found, answer = judge(*future.result())
        counts.update(found)
        if answer:
            print(f"{scenario}, seed {seed}: {answer}", file=sys.stderr)
    return counts


def row(name, counts):
    print(f"{name:<16}" + "".join(f"{counts[column] if column in counts else '-':>8}" for column in COLUMNS), flush=True)


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
    return total["missed"] > 0


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    sys.exit(main())
