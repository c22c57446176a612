#!/usr/bin/env python3
"""What each constant of zorv-explain's method does, at half and at twice its value: a row a value, over the worlds of
explain_queueing.py and kinds of explain_mixed.py. A copy of the sources is built in which the constants are asked of the
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
         "explain/finding/event.cpp", "explain/finding/run.cpp", "explain/finding/statistics.cpp", "explain/analysis/analysis.cpp",
         "explain/analysis/evidence.cpp", "explain/survey.cpp"]
HOUR = 3600
# Half and twice; of what must be whole, the next ones below and above.
VALUES = {"HIGH": (2.5, 10), "WEAK": (1, 4), "MILD": (0.5, 2), "GAP": (0, 2), "WINDOW": (2, 8), "MEDIAN_SHARE": (0.01, 0.04),
          "LEAST_USUAL": (5, 20), "FEWEST_BASELINE": (3, 10), "FLATTER": (0.25, 1), "LEVEL_SECONDS": (2 * HOUR, 8 * HOUR),
          "LOOK_BACK_RANGES": (1, 4), "LEAST_LOOK_BACK": (2 * HOUR, 8 * HOUR), "MOST_LOOK_BACK": (12 * HOUR, 48 * HOUR),
          "PATIENCE": (1, 4), "TAIL": (10, 40), "RARELY": (15, 60), "NEW_TAIL": (0.25, 1), "MOST_OF_EXTRA": (0.25, 1),
          "SURE_SHARE": (0.35, 1.4), "LIKELY_SHARE": (0.25, 1), "LIKELY_MARGIN": (0.05, 0.2)}
ASK = """inline double Constant(const char* name, double value) {
    const char* const text = std::getenv(name);
    return text != nullptr ? std::atof(text) : value;
}
"""
MIXED = ["strong", "mild", "noisy", "curved", "curved-healthy"]


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


def measure(options, workers):
    """Counts of all worlds: right of those with a fault, claims that are no fault's, and what was said how surely."""
    counts = collections.Counter()
    tasks = [workers.submit(explain_queueing.look, options, kind, has_fault, seed) for kind in explain_queueing.KINDS
             for has_fault in (True, False) for seed in range(1, options.seeds + 1)]
    for task in tasks:
        counts.update(task.result())
    for kind in explain_mixed.kinds():
        if kind[0] in MIXED:
            for found in workers.map(lambda seed: explain_mixed.look(options, kind, seed), range(1, min(options.seeds, kind[1]) + 1)):
                counts[kind[0]] += found["right"]
                counts["others"] += found["claims"]
    return counts


def tell(name, counts):
    print(f"| {name} | {counts['right']} | " + " | ".join(str(counts[kind]) for kind in MIXED) + f" | {counts['others']} | "
          + " | ".join(f"{counts['right ' + each]}/{counts['said ' + each]}" for each in CERTAINTIES) + " |", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--worlds", type=pathlib.Path, required=True)
    parser.add_argument("--only", action="append", choices=list(VALUES), help="only this constant; may be repeated")
    parser.add_argument("--seeds", type=int, default=12, help="worlds of each kind")
    options = parser.parse_args()
    options.bin, options.tell = build(), False
    print("| constant | right | " + " | ".join(MIXED) + " | false claims | sure | likely | unsure |")
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as workers:
        tell("as they are", measure(options, workers))
        for constant in options.only or VALUES:
            for value in VALUES[constant]:
                os.environ[constant] = str(value)
                tell(f"{constant} {value}", measure(options, workers))
            del os.environ[constant]


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    sys.exit(main())
