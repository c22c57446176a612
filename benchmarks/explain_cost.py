#!/usr/bin/env python3
"""Processor time of zorv-explain, and of another build of it in turns, on one graph of 300 points over 48 hourly tables, with an
event at half of the points. Prints the median of each, and the ratio."""
import argparse
import json
import os
import pathlib
import sqlite3
import statistics
import subprocess
import tempfile

POINTS = 300
CHILDREN = 3  # of a point
EVENT = (1691020800 + 40 * 3600 + 1800, 120)  # start, and seconds: four samples
SLOWER = 4000  # microseconds
TABLE = "statistics20230804160000"
RANGE = ["20230803000000", "20230805000000"]


def label(number):
    return f"POINT_{number}" if number else "TGT_LUMO_HOST_READ"


def write_configuration(file, has_errors):
    nodes = [{"id": i + 1, "label": label(i), "name": label(i), "info": {}} for i in range(POINTS)]
    edges = [{"source": str((i - 1) // CHILDREN + 1), "target": str(i + 1)} for i in range(1, POINTS)]
    file.parent.mkdir(parents=True)
    names = ["SAN_IO_READ", *(["ERRCODE_SAN_PROTO"] if has_errors else [])]
    file.write_text(json.dumps({name: {"nodes": nodes, "edges": edges} for name in names}))


def write_world(bin_dir, root, has_errors):
    data = root / "VRA/data/lumo/lumo_diagnose_data.db"
    heal = root / "VRA/data/zorv/zorv_heal.db"
    for file in (data, heal):
        file.parent.mkdir(parents=True)
    subprocess.run([bin_dir / "smartdiagnose_benchmark_world", data, heal], check=True)
    with sqlite3.connect(data) as connection:
        changed = connection.execute(f"update {TABLE} set avgdelay = avgdelay + {SLOWER} where locateid % 2 = 0"
                                     " and curtime >= ? and curtime < ?", (EVENT[0], sum(EVENT))).rowcount
        assert changed == POINTS // 2 * 4, changed
    write_configuration(root / "VRA/zorv/conf/route_config.json", has_errors)


def seconds(bin_dir, root):
    """Processor time of one run, which must name a point."""
    process = subprocess.Popen([bin_dir / "zorv-explain", "--root", root, "--json", *RANGE], stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL)
    analyses = json.loads(process.stdout.read())["analyses"]
    _, status, usage = os.wait4(process.pid, 0)
    assert status == 0 and analyses[0]["verdict"] == "point", (status, analyses[:1])
    return usage.ru_utime + usage.ru_stime


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--other", type=pathlib.Path, help="the folder of another build's programs")
    parser.add_argument("--times", type=int, default=5)
    parser.add_argument("--errors", action="store_true", help="the points stand in a graph of error codes as well")
    options = parser.parse_args()
    builds = [options.bin, options.other] if options.other else [options.bin]
    with tempfile.TemporaryDirectory() as root:
        write_world(options.bin, pathlib.Path(root), options.errors)
        times = [[seconds(build, root) for build in builds] for _ in range(options.times)]
    medians = [statistics.median(column) for column in zip(*times)]
    print(*(f"{build}: {median:.2f} s" for build, median in zip(builds, medians)))
    if options.other:
        print(f"ratio {statistics.median(other / own for own, other in times):.2f}, of each pair:",
              *(f"{other / own:.2f}" for own, other in times))


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    main()
