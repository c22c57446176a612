#!/usr/bin/env python3
"""Plants faults in fleets and compares what zorv-fleet says with the truth: the node and the point that come first,
the symptoms that are folded under them, the load, and what is claimed where nothing is wrong.

fleet_seeds.py [--bin DIR] [--seeds N] [--nodes N]"""
import argparse
import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path

SCENARIOS = ("slow-disk", "nas-slow", "locked-volume", "slow-pool", "shared-disk")
RANGE = ("20230105103000", "20230105143000")
LEAST = 0.95

parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
parser.add_argument("--bin", default=Path(__file__).parent.parent / "build/release/bin", type=Path)
parser.add_argument("--seeds", type=int, default=50)
parser.add_argument("--nodes", default="8")
parser.add_argument("--strength", default="3", help="how many times as slow hosts of the cause see it")
options = parser.parse_args()


def run(program, *words, failing=0):
    done = subprocess.run([options.bin / program, *map(str, words)], env={**os.environ, "TZ": "CST-8"},
                          capture_output=True, text=True)
    if done.returncode not in (0, failing):
        sys.exit(f"{program} {words}: {done.returncode}\n{done.stderr}")
    return done.stdout


def fleet_of(seed, scenario, folder):
    run("lumo-sim", "--root", folder, "--fleet", options.nodes, "--scenario", scenario, "--seed", seed, "--end", RANGE[1],
        *(("--fault-strength", options.strength) if scenario != "healthy" else ()))
    nodes = sorted(path for path in Path(folder).iterdir() if path.is_dir())
    # The best status of a fleet without a fault is that of its load.
    return json.loads((Path(folder) / "truth.json").read_text()), json.loads(run("zorv-fleet", "--json", *nodes, *RANGE))


def judge(truth, answer):
    """Of one fleet, what is right: node and point, symptoms folded, nobody else blamed, load."""
    by_role = {}
    for node in truth["nodes"]:
        by_role.setdefault(node["role"], set()).add(node["node"])
    verdicts = {node["node"]: node["verdict"] for node in answer["nodes"]}
    fault, incidents = truth["fault"], answer["incidents"]
    first = incidents[0] if incidents else {"causes": [], "symptoms": []}
    cause = first["causes"][0] if first["causes"] else {"node": None, "point": None}
    blamed = {cause["node"] for incident in incidents for cause in incident["causes"]}
    symptoms = {symptom["node"] for symptom in first["symptoms"]}
    return {
        "node": not fault or cause["node"] == fault["node"],
        "point": not fault or (cause["node"], cause["point"]) == (fault["node"], fault["point"]),
        "symptoms": not fault or symptoms == by_role.get("waits", set()),
        "nothing else": blamed == ({fault["node"]} if fault else set()) and (fault or not incidents),
        "load": all(verdicts[node] == "load" for node in by_role["load"]),
        "broken": all(verdicts[node] == "no answer" for node in by_role["broken"]),
    }


def main():
    failed = False
    for name, scenarios in (("a fault", SCENARIOS), ("no fault", ("healthy",))):
        right = {}
        for seed in range(1, options.seeds + 1):
            with tempfile.TemporaryDirectory() as folder:
                truth, answer = fleet_of(seed, scenarios[seed % len(scenarios)], folder)
            for what, is_right in judge(truth, answer).items():
                right[what] = right.get(what, 0) + bool(is_right)
                if not is_right:
                    print(f"  {name}, seed {seed}, {scenarios[seed % len(scenarios)]}: {what} is wrong: {answer['incidents']}")
        print(f"{name}, {options.seeds} fleets of {options.nodes} nodes: " +
              ", ".join(f"{what} {count}" for what, count in right.items()))
        failed = failed or any(count < LEAST * options.seeds for count in right.values())
    return failed


sys.exit(main())
