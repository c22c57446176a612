#!/usr/bin/env python3
"""How often zorv-explain names the errors that lumo-sim has planted: with many seeds, and at every point of an error
graph, of each type; and whether it claims errors where none are planted. Options that are not listed here go to
lumo-sim. Fails when the truth is missed too often, or anything is claimed that was not planted."""
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

TYPES = ["IOERROR", "IORETRY", "IOACCESSDENY"]
QUIET = ["healthy", "retry-storm", "constant", "slow-disk", "load-surge", "gaps"]
END = "20230105143000"
REFUSED = 2
LEAST = 0.95
STEPS = 2  # that an event may begin beside the truth


def write(bin_dir, root, world):
    """Whether there is such a world."""
    run = subprocess.run([bin_dir / "lumo-sim", "--root", root, "--end", END, *world], stdout=subprocess.DEVNULL,
                         stderr=subprocess.PIPE, text=True)
    if run.returncode not in (0, REFUSED):
        raise RuntimeError(f"{world}: {run.returncode}, {run.stderr}")
    return run.returncode == 0


def explain(options, world):
    """What was written of a world, and what is told of its errors; None where lumo-sim refuses it."""
    with tempfile.TemporaryDirectory() as root:
        if not write(options.bin, root, world):
            return None
        written = json.loads(pathlib.Path(root, "truth.json").read_text())
        start = time.strftime("%Y%m%d%H%M%S", time.gmtime(written["end_epoch"] - 60 * options.minutes))
        run = subprocess.run([options.bin / "zorv-explain", "--root", root, "--json", max(start, written["start"]),
                              written["end"]], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if run.returncode not in (0, 1, 4):
        raise RuntimeError(f"{world}: {run.returncode}, {run.stderr}")
    return written, json.loads(run.stdout)["errors"]["analyses"]


def judge(written, analyses):
    """What counts, and the answer in words where it is not the truth."""
    found = collections.Counter(worlds=1)
    fault = written["fault"] if written["fault"] and written["fault"]["kind"] == "error" else None
    if fault:
        first = analyses[0] if analyses else None
        named = first and (first["type"]["name"], first["points"][0]["point"])
        found["planted"] = 1
        found["first"] = named == (fault["error_type"], fault["point"])
        found["begin"] = bool(found["first"]) and \
            abs(first["event"]["start"]["epoch"] - fault["start_epoch"]) <= STEPS * written["step"]
        found["sure"] = bool(found["first"]) and first["certainty"] == "sure"
        analyses = analyses[1:]
    found["claims"] = len(analyses)
    is_right = not found["claims"] and (not fault or found["begin"])
    words = [f"{one['type']['name']} {one['points'][0]['point']} {one['points'][0]['share']:.2f}" for one in analyses]
    return found, "" if is_right else f"{named if fault else ''} {dict(found)}, besides: {words}"


def measure(options, name, worlds, workers):
    counts = collections.Counter()
    for world, future in [(world, workers.submit(explain, options, [*world, *options.extra])) for world in worlds]:
        answer = future.result()
        if answer:
            found, words = judge(*answer)
            counts.update(found)
            if words:
                print(f"{' '.join(world)}: {words}", file=sys.stderr, flush=True)
    print(f"{name:<24}" + "  ".join(f"{key} {value}" for key, value in counts.items()), flush=True)
    return not counts["claims"] and all(counts[key] >= LEAST * counts["planted"] for key in ("first", "begin"))


def points_of(options):
    """All points of a configuration: lumo-sim refuses those of which it knows no errors."""
    with tempfile.TemporaryDirectory() as root:
        write(options.bin, root, ["--scenario", "healthy"])
        graphs = json.loads(pathlib.Path(root, "VRA/zorv/conf/route_config.json").read_text())
    return sorted({node["label"] for graph in graphs.values() for node in graph["nodes"]})


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--seeds", type=int, default=50)
    parser.add_argument("--quiet", type=int, default=200, help="worlds without errors that are planted")
    parser.add_argument("--minutes", type=int, default=240, help="of the end of each world that are looked at")
    options, options.extra = parser.parse_known_args()
    burst = ["--scenario", "error-burst"]
    quiet = [["--scenario", QUIET[i % len(QUIET)], "--seed", str(1 + i // len(QUIET))] for i in range(options.quiet)]
    planned = {"seeds": [[*burst, "--seed", str(seed)] for seed in range(1, options.seeds + 1)], "quiet": quiet}
    for i, error_type in enumerate(TYPES):
        planned[error_type] = [[*burst, "--error-type", error_type, "--error-point", point, "--seed", str(1 + 3 * k + i)]
                               for k, point in enumerate(points_of(options))]
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as workers:
        return not all([measure(options, name, worlds, workers) for name, worlds in planned.items()])


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    sys.exit(main())
