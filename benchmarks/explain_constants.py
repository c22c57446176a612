#!/usr/bin/env python3
"""What each constant of zorv-explain's method does, at half and at twice its value, in worlds of explain_queueing.py and
explain_mixed.py that feel it: wholly right ones, and claims that are no fault's; of the borders of certainty, how many answers
that were said to be so sure were right. A copy of the sources is built in which the constants are asked of the
environment; the programs that ship ask nothing. --worlds keeps the worlds."""
import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys

import explain_mixed
import explain_queueing
from explain_scenarios import CERTAINTIES

ROOT = pathlib.Path(__file__).resolve().parent.parent
FILES = ["explain/finding/event.h", "explain/finding/run.h", "explain/finding/series.h", "explain/finding/level.h",
         "explain/finding/event.cpp", "explain/finding/run.cpp", "explain/finding/usual.cpp",
         "explain/analysis/analysis.cpp", "explain/analysis/certainty.cpp", "explain/analysis/evidence.cpp", "explain/survey.cpp"]
HOUR = 3600
# Of each constant half and twice, of what must be whole the next ones below and above; and the kinds of worlds that feel it.
VALUES = {
    "HIGH": (2.5, 10, ["mild", "few", "outliers"]),
    "MEDIAN_SHARE": (0.01, 0.04, ["strong", "sample", "plain"]),
    "MILD": (0.5, 2, ["mild", "noisy", "few"]),
    "WEAK": (1, 4, ["mild", "noisy", "lasting"]),
    "GAP": (0, 2, ["noisy", "few", "sparse"]),
    "WINDOW": (2, 8, ["mild", "noisy", "few"]),
    "LEAST_USUAL": (5, 20, ["sparse", "young", "lasting"]),
    "FEWEST_BASELINE": (3, 10, ["young", "strong"]),
    "LOOK_BACK_RANGES": (1, 4, ["curved", "curved-healthy"]),
    "LEAST_LOOK_BACK": (2 * HOUR, 8 * HOUR, ["strong", "mild", "outliers"]),
    "MOST_LOOK_BACK": (12 * HOUR, 48 * HOUR, ["curved", "curved-healthy"]),
    "FLATTER": (0.25, 1, ["curved", "curved-healthy", "trend"]),
    "LEVEL_SECONDS": (2 * HOUR, 8 * HOUR, ["curved", "curved-healthy", "trend"]),
    "SURE_SHARE": (0.35, 1.4, ["two", "sparse", "surge"]),
    "LIKELY_SHARE": (0.25, 1, ["two", "sparse", "surge"]),
    "LIKELY_MARGIN": (0.05, 0.2, ["two", "sparse", "surge"]),
    "RARELY": (15, 60, ["outliers", "wide", "sparse"]),
    "TAIL": (10, 40, ["outliers", "wide", "sparse"]),
    "NEW_TAIL": (0.25, 1, ["outliers", "wide", "sparse"]),
    "PATIENCE": (1, 4, ["mild", "few", "lasting"]),
    "MOST_OF_EXTRA": (0.25, 1, ["surge", "plain"]),
}
CERTAIN = ("SURE_SHARE", "LIKELY_SHARE", "LIKELY_MARGIN")
ASK = """inline double Constant(const char* name, double value) {
    const char* const text = std::getenv(name);
    return text != nullptr ? std::atof(text) : value;
}
"""


def build():
    """The folder of the programs that ask."""
    tree = ROOT / "build/constants"
    for name in subprocess.run(["git", "ls-files"], cwd=ROOT, check=True, stdout=subprocess.PIPE, text=True).stdout.split("\n"):
        if name and (not (tree / name).exists() or (tree / name).read_bytes() != (ROOT / name).read_bytes()):
            (tree / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, tree / name)
    (tree / "explain/finding/constant.h").write_text("#pragma once\n#include <cstdlib>\n" + ASK)
    for name in FILES:
        text = (ROOT / name).read_text()
        for constant in VALUES:
            text = re.sub(rf"^constexpr (\w+) {constant} =\s*([^;]*);", lambda found: (
                f"{'inline ' * name.endswith('.h')}const {found[1]} {constant} ="
                f' static_cast<{found[1]}>(Constant("{constant}", static_cast<double>({found[2]})));'), text, flags=re.M)
        text = text.replace("#include", '#include "explain/finding/constant.h"\n#include', 1)
        (tree / name).write_text(text)
    subprocess.run(["cmake", "--preset", "release"], cwd=tree, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "--preset", "release", "--target", "zorv-explain", "lumo-sim"], cwd=tree, check=True,
                   stdout=subprocess.DEVNULL)
    return tree / "build/release/bin"


def measure(options, workers, kinds):
    """Counts of these kinds' worlds: right ones of so many, claims that are no fault's, and what was said how surely."""
    mixed = {kind[0]: kind for kind in explain_mixed.kinds()}
    tasks = []
    for name in kinds:
        if name in explain_queueing.KINDS:
            tasks += [workers.submit(explain_queueing.look, options, name, has_fault, seed) for has_fault in (True, False)
                      for seed in range(1, options.seeds + 1)]
        else:
            tasks += [workers.submit(explain_mixed.look, options, mixed[name], seed)
                      for seed in range(1, min(options.seeds, mixed[name][1]) + 1)]
    counts = collections.Counter()
    for task in tasks:
        found = task.result()
        counts.update(found)
        counts["claims"] += found["others"]  # what explain_queueing calls them
        counts["good"] += found["right"] or ("claimed" in found and not found["claimed"])
    return counts


def told(constant, counts):
    if constant in CERTAIN:
        return ", ".join(f"{each} {counts['right ' + each]} of {counts['said ' + each]}" for each in CERTAINTIES)
    return f"{counts['good']} of {counts['runs']}, {counts['claims']}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--worlds", type=pathlib.Path, required=True)
    parser.add_argument("--only", action="append", choices=list(VALUES), help="only this constant; may be repeated")
    parser.add_argument("--seeds", type=int, default=24, help="worlds of each kind, with a fault and without")
    options = parser.parse_args()
    options.bin, options.tell = build(), False
    print("| constant | worlds | as it is | half | | twice | |\n| --- | --- | --- | --- | --- | --- | --- |", flush=True)
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as workers:
        for constant in options.only or VALUES:
            *values, kinds = VALUES[constant]
            row = [constant, ", ".join(kinds), told(constant, measure(options, workers, kinds))]
            for value in values:
                os.environ[constant] = str(value)
                row += [str(value), told(constant, measure(options, workers, kinds))]
            del os.environ[constant]
            print("| " + " | ".join(row) + " |", flush=True)


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    sys.exit(main())
