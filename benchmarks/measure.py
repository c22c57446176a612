#!/usr/bin/python3
"""Builds the benchmarks, runs them, and prints every figure of README.md, the medians of several runs.

The comparisons with Python at the end need the Debian packages python3-pandas and python3-scipy; without these
they are left out. Times are processor time of one thread.
"""
import argparse
import json
import os
import re
import sqlite3
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

os.environ["OMP_NUM_THREADS"] = os.environ["OPENBLAS_NUM_THREADS"] = "1"
try:
    import numpy
    import pandas
    from scipy.stats import pearsonr
except ImportError as error:
    pearsonr = None
    MISSING = f"{error}: install python3-pandas and python3-scipy for the comparisons with Python."

ROOT = Path(__file__).resolve().parent.parent
PROGRAMS = ROOT / "build/release/bin"
COUNTERS = ("ratio", "ours_ms", "bare_ms", "ns_per_row", "ns_per_value", "bytes_per_value")
GRAPH, WEIGHT = "LoadGraph/300/120", "Weight/1000000"


def build():
    for command in (["cmake", "--preset", "release", "-DBUILD_TESTING=ON"],
                    ["cmake", "--build", "--preset", "release", "--target", "smartdiagnose_benchmarks",
                     "smartdiagnose_benchmark_world", "zorv-local", "smartdiagnose", "lumo-sim"]):
        done = subprocess.run(command, cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            raise SystemExit(done.stdout)


def run_benchmarks():
    """The counters of each benchmark of one run, by its name."""
    output = subprocess.run([PROGRAMS / "smartdiagnose_benchmarks", "--benchmark_min_time=2",
                             "--benchmark_format=json"], check=True, stdout=subprocess.PIPE).stdout
    return {row["name"].split("/iterations")[0]: {name: row[name] for name in COUNTERS if name in row}
            for row in json.loads(output)["benchmarks"]}


def milliseconds(work, repeat):
    times = []
    for _ in range(repeat):
        start = time.process_time()
        work()
        times.append((time.process_time() - start) * 1e3)
    return statistics.median(times)


def load(file, rows_of, cache_kib=32768):
    """The load of a graph's points by the statements of the plug-in, all of a point answered by `rows_of`."""
    connection = sqlite3.connect(f"file:{file}?mode=ro", uri=True)
    connection.execute(f"pragma cache_size = -{cache_kib}")
    tables = [name for name, in connection.execute("select tablename from table_flag")]
    points = [name for name, in connection.execute("select locatename from version_nmaps")]
    graph = {point: rows_of(connection, [
        "select curtime, acceptnum, successnum, failednum, retrynum, avgdelay, maxdelay, mindelay, errCode0,"
        f" errCode1, errCode2, errCode3, errCode4 from {table} where locateid = (select locateid from"
        f" version_nmaps where locatename = '{point}') and curtime >= 1691020800 and curtime <= 1691193599"
        for table in tables]) for point in points}
    assert all(len(rows) == 48 * 120 for rows in graph.values())


def load_tuples(connection, statements):
    return [row for sql in statements for row in connection.execute(sql)]


def load_frames(connection, statements):
    return pandas.concat([pandas.read_sql_query(sql, connection) for sql in statements], ignore_index=True)


def processor_time(command, output=subprocess.DEVNULL, **environment):
    """Of one run of a program, in milliseconds."""
    before = os.times()
    subprocess.run(command, check=True, stdout=output, stderr=subprocess.DEVNULL, env={**os.environ, **environment})
    after = os.times()
    return (after.children_user + after.children_system - before.children_user - before.children_system) * 1e3


def compare_commands(folder, repeat):
    """Prints what whole programs take for the same report: zorv-local, and a script of pandas and scipy that sends the
    same statements, or lean ones without the columns that the report does not need."""
    os.environ["TZ"] = "UTC"
    print(f"{'report of two days':24}{'zorv-local':>14}{'script':>14}{'ratio':>10}{'without start':>16}{'lean':>10}")
    for scenario, command in (("slow-disk", "delaydetect"), ("slow-disk", "delayanal"), ("retry-storm", "showallerr")):
        world = Path(folder, scenario)
        subprocess.run([PROGRAMS / "lumo-sim", "--root", world, "--scenario", scenario, "--hours", "48"], check=True,
                       stdout=subprocess.DEVNULL)
        truth = json.loads((world / "truth.json").read_text())
        ours = [PROGRAMS / "zorv-local", "--root", world, command, truth["start"], truth["end"]]
        script = [ROOT / "benchmarks/python_report.py", world, command, str(truth["start_epoch"]), str(truth["end_epoch"])]
        texts = [subprocess.run(program, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
                 for program in (ours, script)]
        assert texts[0] == texts[1], command
        starts = [ours[:3] + ["help"], script]
        rows = [[processor_time(ours), processor_time(script), processor_time(starts[0]), processor_time(script, BARE="1"),
                 processor_time(script, LEAN="1")] for _ in range(repeat)]
        mine, other, my_start, other_start, lean = (statistics.median(column) for column in zip(*rows))
        print(f"{command:24}{mine:11.1f} ms{other:11.1f} ms{other / mine:10.2f}"
              f"{(other - other_start) / (mine - my_start):16.2f}{lean / mine:10.2f}")


def read_calls():
    return int(re.search(r"syscr: (\d+)", Path("/proc/self/io").read_text()).group(1))


def compare_caches(file):
    for mebibytes in (2, 8, 16, 24, 32, 64):
        calls = read_calls()
        taken = milliseconds(lambda: load(file, load_tuples, mebibytes * 1024), 1)
        print(f"page cache of {mebibytes:2} MiB: {taken:8.1f} ms by sqlite3, {read_calls() - calls:8} reads")


def compare_python(file, ours, repeat):
    """Prints what Python takes for the same: a list of tuples or a data frame per point, a coefficient."""
    others = [(GRAPH, "sqlite3", milliseconds(lambda: load(file, load_tuples), repeat)),
              (GRAPH, "pandas", milliseconds(lambda: load(file, load_frames), 1))]
    random = numpy.random.default_rng(1)
    x, y = (random.integers(800, 1200, 1000000).astype(float) for _ in range(2))
    others.append((WEIGHT, "scipy.stats.pearsonr, aligned", milliseconds(lambda: pearsonr(x, y), 20)))
    for name, other, taken in others:
        print(f"{name:24}{other:32}{taken:10.1f} ms, {taken / ours[name]:.2f} times ours")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runs", type=int, default=3, help="3 unless told; one takes some minutes")
    runs = parser.parse_args().runs
    build()
    results = [run_benchmarks() for _ in range(runs)]
    print(f"{'median of ' + str(runs):24}" + "".join(f"{name:>16}" for name in COUNTERS))
    medians = {name: {counter: statistics.median(run[name][counter] for run in results) for counter in counters}
               for name, counters in results[0].items()}
    for name, counters in medians.items():
        print(f"{name:24}" + "".join(f"{counters[c]:16.3f}" if c in counters else " " * 16 for c in COUNTERS))
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder, "lumo.db")
        subprocess.run([PROGRAMS / "smartdiagnose_benchmark_world", file, Path(folder, "heal.db")], check=True)
        compare_caches(file)
        if pearsonr is None:
            print(MISSING)
        else:
            compare_commands(folder, runs)
            compare_python(file, {name: counters["ours_ms"] for name, counters in medians.items()}, runs)


if __name__ == "__main__":
    main()
