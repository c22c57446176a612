#!/usr/bin/env python3
"""How zorv-explain does in worlds that lumo-sim does not make: random graphs of calls whose points queue (M/M/1) under a load
that strays, each interval the mean of so many random times as requests came. Kinds differ in what the noise, the load and the
calls are like. Prints a line a kind: right first point, event begun within two samples, and claims that are no fault's. With
--worlds they are kept for the next build."""
import argparse
import collections
import concurrent.futures
import json
import math
import os
import pathlib
import random
import sqlite3
import subprocess
import sys
import tempfile

from explain_scenarios import compact, is_claim, tell_certainty

ROOT = "TGT_LUMO_HOST_READ"
GRAPHS = ["SAN_IO_READ", "BELOW_READ"]
STEP = 30
SAMPLES, RANGE = 600, 120  # of which the last ones are asked for
END = 1672929000           # 2023-01-05 14:30:00 UTC
NEAR = 2                   # samples
COLUMNS = ("(locateid integer, curtime integer, acceptnum integer, successnum integer, failednum integer, retrynum integer,"
           " avgdelay integer, maxdelay integer, mindelay integer, errCode0 integer, errCode1 integer, errCode2 integer,"
           " errCode3 integer, errCode4 integer)")

# What a kind differs in: requests of the root per interval, samples in which hosts are idle, log-normal noise and the share
# of outliers in it, noise that lasts, a trend, how the calls run, how strong the fault is, for how many samples there are rows.
Kind = collections.namedtuple("Kind", "requests idle wide outliers lasting trend calls strengths rows", defaults=(
    300, 0.0, 0.0, 0.0, 0.0, 0.0, "in turn", (1.5, 2, 3, 6), SAMPLES))
KINDS = {
    "plain": Kind(),
    "mild": Kind(strengths=(1.15, 1.2, 1.3, 1.4)),
    "few": Kind(requests=12),
    "sparse": Kind(requests=2, strengths=(3, 6, 12)),
    "idle": Kind(idle=0.6),
    "wide": Kind(wide=0.2),
    "outliers": Kind(wide=0.05, outliers=0.01),
    "lasting": Kind(lasting=0.08),
    "trend": Kind(trend=0.4),
    "together": Kind(calls="together"),
    "unawaited": Kind(calls="unawaited"),
    "shared": Kind(calls="shared"),
    "two": Kind(calls="two"),
    "surge": Kind(calls="surge"),
    "young": Kind(rows=40),
}


class Points:
    """A graph of calls: point 0 is the root; calls[i] are the points below i with the calls of each per request."""

    def __init__(self, source, kind):
        self.count = source.randint(5, 11)
        self.calls = collections.defaultdict(dict)
        self.unawaited = set()
        for i in range(1, self.count):
            caller = source.choice(range(max(0, i - 4), i))
            self.calls[caller][i] = source.choice((0.5, 1, 1, 1, 2))
        self.together = {i for i in range(self.count) if kind.calls == "together" and source.random() < 0.6}
        self.leaves = [i for i in range(1, self.count) if not self.calls[i]]
        self.shared = None
        if kind.calls in ("shared", "unawaited") and len(self.leaves) > 1:
            self.shared = source.choice(self.leaves)
            for other in range(self.shared):
                if other and other not in self.leaves and source.random() < 0.6 and self.shared not in self.calls[other]:
                    self.calls[other][self.shared] = 1
        if kind.calls == "unawaited":  # a new caller of the shared point, for which nobody waits
            self.calls[0][self.count] = 1
            self.calls[self.count][self.shared or self.leaves[0]] = 1
            self.unawaited.add(self.count)
            self.count += 1
        self.time = [source.uniform(100, 400) * (4 if not self.calls[i] else 1) for i in range(self.count)]
        self.busy = [source.uniform(0.1, 0.35) for _ in range(self.count)]
        self.visits = [0.0] * self.count
        self.visits[0] = 1.0
        for i in self.order():
            for j, often in self.calls[i].items():
                self.visits[j] += self.visits[i] * often
        # The second graph continues below a point with a single call, of a point that calls others and has no other caller.
        self.hands = next((i for i in range(1, self.count) if len(self.calls[i]) == 1 and all(
            self.calls[j] and sum(j in below for below in self.calls.values()) == 1 for j in self.calls[i])), None)

    def order(self):
        """Callers first."""
        found, left = [], set(range(self.count))
        while left:
            found += sorted(i for i in left if not any(i in self.calls[j] for j in left))
            left -= set(found)
        return found

    def delays(self, own):
        whole = list(own)
        for i in reversed(self.order()):
            waits = [often * whole[j] for j, often in self.calls[i].items() if j not in self.unawaited]
            whole[i] += max(waits, default=0) if i in self.together else sum(waits)
        return whole

    def wait(self, i, load):
        return self.time[i] * (1 - self.busy[i]) / (1 - min(0.95, self.busy[i] * load))

    def extra(self, points, strength):
        """By how much the own times of these points grow until the root is so many times as slow."""
        usual = [self.wait(i, 1) for i in range(self.count)]
        goal = self.delays(usual)[0] * strength
        low, high = 0.0, 1e9
        for _ in range(60):
            extra = (low + high) / 2
            slow = self.delays([own + extra * (i in points) for i, own in enumerate(usual)])[0] > goal
            low, high = (low, extra) if slow else (extra, high)
        return low


def graph_of(points, of):
    node = lambda i: {"id": i + 1, "label": name_of(i), "name": name_of(i), "info": {}}
    nodes = [node(i) for i in of]
    edges = [{"source": str(i + 1), "target": str(j + 1)} for i in of for j in points.calls[i] if j in of]
    for entry in nodes:
        if entry["id"] - 1 == points.hands and points.hands in of:
            entry["info"]["subGraph"] = GRAPHS[1]
    return {"nodes": nodes, "edges": edges}


def name_of(i):
    return f"P{i}_TIME" if i else ROOT


def write(root, points, rows):
    data, heal, conf = (root / name for name in ("VRA/data/lumo/lumo_diagnose_data.db", "VRA/data/zorv/zorv_heal.db",
                                                 "VRA/zorv/conf/route_config.json"))
    for file in (data, heal, conf):
        file.parent.mkdir(parents=True, exist_ok=True)
    below = set()
    open_points = list(points.calls[points.hands]) if points.hands else []
    while open_points:
        below.add(open_points[0])
        open_points += points.calls[open_points.pop(0)]
    upper = [i for i in range(points.count) if i not in below or any(i in points.calls[j] for j in range(points.count)
                                                                      if j not in below and j != points.hands)]
    graphs = {GRAPHS[0]: graph_of(points, upper)}
    if points.hands:
        graphs[GRAPHS[1]] = graph_of(points, sorted(below))
    conf.write_text(json.dumps(graphs))
    table = "lumo_data_" + compact(END - SAMPLES * STEP)
    with sqlite3.connect(data) as connection:
        connection.execute("create table table_flag(tablename text, reporttime integer)")
        connection.execute("create table version_nmaps(locateid integer primary key, locatename text)")
        connection.execute(f"create table {table} {COLUMNS}")
        connection.execute("insert into table_flag values(?, ?)", (table, END - SAMPLES * STEP))
        connection.executemany("insert into version_nmaps values(?, ?)", [(i, name_of(i)) for i in range(points.count)])
        connection.executemany(f"insert into {table} values(?, ?, ?, ?, 0, 0, ?, ?, ?, 0, 0, 0, 0, 0)", rows)
    sqlite3.connect(heal).close()


def poisson(source, mean):
    if mean > 50:
        return max(0, round(source.gauss(mean, mean ** 0.5)))
    count, product = 0, source.random()
    while product > math.exp(-mean):
        count += 1
        product *= source.random()
    return count


def make(root, name, has_fault, seed):
    """Writes a world; returns and keeps its truth."""
    kind, source = KINDS[name], random.Random(f"{name} {has_fault} {seed}")
    points = Points(source, kind)
    length = source.choice((1, 2, 4, 8, 16, 40, 80))
    length = max(length, 4) if name in ("sparse", "idle", "few") else length
    length = min(length, kind.rows // 3)
    range_ = min(RANGE, kind.rows)
    first = SAMPLES - length if source.random() < 0.4 else SAMPLES - range_ + source.randint(5, range_ - 5 - length)
    awaited = [i for i in range(1, points.count) if i not in points.unawaited]
    at = points.shared if points.shared in awaited else source.choice(awaited)
    slow = {at}
    if kind.calls == "two":
        others = [i for i in points.leaves if i != at]
        slow |= {source.choice(others)} if others else set()
    extra = points.extra(slow, source.choice(kind.strengths)) if has_fault and kind.calls != "surge" else 0
    surge = source.uniform(1.8, 2.5) if has_fault and kind.calls == "surge" else 1
    load = strays = 0.0
    rows, busy, is_idle = [], [], False
    lasts = [0.0] * points.count
    for k in range(SAMPLES):
        is_slow = has_fault and first <= k < first + length
        load = 0.9 * load + 0.44 * source.gauss(0, 0.15)
        factor = math.exp(load) * (surge if is_slow else 1)
        is_idle = kind.idle > 0 and source.random() < (0.2 + 0.7 * is_idle if kind.idle > 0.5 else 0.1 + 0.4 * is_idle)
        counts = [0 if is_idle else poisson(source, kind.requests * factor * points.visits[0])]
        counts += [poisson(source, counts[0] * points.visits[i]) if counts[0] else 0 for i in range(1, points.count)]
        own = []
        for i in range(points.count):
            noise = source.gammavariate(max(counts[i], 1), 1 / max(counts[i], 1)) * math.exp(kind.wide * source.gauss(0, 1))
            noise *= source.uniform(1.5, 4) if source.random() < kind.outliers else 1
            lasts[i] = 0.9 * lasts[i] + 0.44 * kind.lasting * source.gauss(0, 1)
            own.append((points.wait(i, factor) + (extra if is_slow and i in slow else 0)) * noise
                       * math.exp(lasts[i]) * (1 + kind.trend * k / SAMPLES))
        for i, delay in enumerate(points.delays(own)):
            value = round(delay) if counts[i] else 0
            rows.append((i, END - (SAMPLES - k) * STEP, counts[i], counts[i], value, value * 2, value // 2))
        busy.append(counts[0] > 0)
    fault = [k for k in range(first, first + length) if busy[k]]
    write(root, points, [row for row in rows if row[1] >= END - kind.rows * STEP])
    truth = {"points": sorted(map(name_of, slow)), "load": surge > 1, "first": fault[0] if fault else first, "last": first + length - 1,
             "busy": [k for k in range(SAMPLES) if busy[k]], "fault": has_fault and bool(fault)}
    (root / "truth.json").write_text(json.dumps(truth))
    return truth


def judge(truth, analyses):
    """What counts, and the answer in words."""
    position = lambda when: (when["epoch"] - END) // STEP + SAMPLES
    claims = [one for one in analyses if is_claim(one)]
    found = collections.Counter(runs=1)
    touches = lambda one: (position(one["event"]["start"]) <= truth["last"] + NEAR
                           and position(one["event"]["end"]) >= truth["first"] - NEAR)
    if truth["fault"]:
        answers = [one for one in claims if touches(one)]
        found["seen"] = bool(answers)
        found["others"] = len(claims) - len(answers)
        if answers:
            begin = position(answers[0]["event"]["start"])
            between = sum(1 for k in truth["busy"] if min(begin, truth["first"]) <= k < max(begin, truth["first"]))
            found["begin"] = between <= NEAR
            first = answers[0]["candidates"][0]["point"]
            found["point"] = answers[0]["verdict"] == "load" if truth["load"] else (
                answers[0]["verdict"] == "point" and first in truth["points"])
            found["right"] = found["begin"] and found["point"]
            found["said " + answers[0]["certainty"]] = 1
            found["right " + answers[0]["certainty"]] = found["point"]
    else:
        found["claimed"] = bool(claims)
        found["others"] = len(claims)
    tell = lambda one: (f"{one['verdict']} " + " ".join(f"{each['point']} {each['share']:.2f}" for each in one["candidates"][:3])
                        + f" {position(one['event']['start'])}..{position(one['event']['end'])} {one['certainty']}")
    return found, "; ".join(map(tell, claims))


def look(options, name, has_fault, seed):
    with tempfile.TemporaryDirectory() as scratch:
        root = options.worlds / f"{name}-{'fault' if has_fault else 'none'}-{seed}" if options.worlds else pathlib.Path(scratch)
        file = root / "truth.json"
        truth = json.loads(file.read_text()) if file.exists() else make(root, name, has_fault, seed)
        run = subprocess.run([options.bin / "zorv-explain", "--root", root, "--json", compact(END - RANGE * STEP), compact(END)],
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if run.returncode not in (0, 1, 4):
        raise RuntimeError(f"{name}, seed {seed}: {run.returncode}, {run.stderr}")
    found, answer = judge(truth, [one for one in json.loads(run.stdout)["analyses"] if not one["weak"]])
    if options.tell and (not found["right"] if truth["fault"] else found["claimed"]):
        told = f"{truth['points']} {truth['first']}..{truth['last']}" if truth["fault"] else "no fault"
        print(f"{name}-{seed}: {told}: {answer}", file=sys.stderr, flush=True)
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default="build/release/bin")
    parser.add_argument("--worlds", type=pathlib.Path, help="where the worlds are kept")
    parser.add_argument("--kind", action="append", choices=list(KINDS), help="only this one; may be repeated")
    parser.add_argument("--seeds", type=int, default=24)
    parser.add_argument("--tell", action="store_true", help="the answers that are not right")
    options = parser.parse_args()
    total = collections.Counter()
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as workers:
        for name in options.kind or KINDS:
            for has_fault in (True, False):
                counts = collections.Counter()
                for found in workers.map(lambda seed: look(options, name, has_fault, seed), range(1, options.seeds + 1)):
                    counts.update(found)
                columns = ["runs", "seen", "begin", "point", "right", "others"] if has_fault else ["runs", "claimed"]
                print(f"{name if has_fault else '  no fault':<12}" + "  ".join(f"{column} {counts[column]:>3}" for column in columns),
                      flush=True)
                total.update(counts)
    tell_certainty(total)
    print("all: right", total["right"], "others", total["others"], "claimed", total["claimed"])


if __name__ == "__main__":
    os.environ["TZ"] = "UTC"
    sys.exit(main())
