"""What the tests of whole consoles share: worlds in temporary directories, and programs run on them."""
import json
import os
import sqlite3
import subprocess
import tempfile
import time
import unicodedata
import unittest
from contextlib import closing
from fractions import Fraction
from pathlib import Path
from statistics import median

import jsonschema

SCHEMA, HOST_SCHEMA = (jsonschema.Draft7Validator(json.loads((Path(__file__).parents[2] / f"docs/{name}.schema.json").read_text()))
                       for name in ("explain", "zorv-local"))
BIN = Path(os.environ["SMARTDIAGNOSE_BIN"])
ZONE = 8 * 3600  # the tests run in CST-8
DATABASE = "VRA/data/lumo/lumo_diagnose_data.db"
HEAL_DATABASE = "VRA/data/zorv/zorv_heal.db"
CONFIG = "VRA/zorv/conf/route_config.json"
POINTS = ["TGT_LUMO_HOST_READ", "TGT_LUMO_HOST_WRITE", "TGT_LUMO_HOST_CMD", "NAS_TRANS_ALL"]

TITLE = "\nSmartDiagnose Anomaly Point\n"
DELAY_HEADER = TITLE + "lumoLocName                        anomalyTime               anomalyValue\n"
SIMU_HEADER = TITLE + "lumoLocName                        timeStamp               nomalyVal\n"


def error(text):
    return f"\t\t[ERROR]: {text}\n"


def compact(seconds):
    return time.strftime("%Y%m%d%H%M%S", time.gmtime(seconds + ZONE))


def readable(seconds):
    local = time.gmtime(seconds + ZONE)
    return f"{local[0]}/{local[1]}/{local[2]} {local[3]}:{local[4]}:{local[5]}"


def delay_listing(rows):
    return DELAY_HEADER + "".join(f"{point:<35}{readable(when):<24}{value:<20}\n" for point, when, value in rows)


def worst_anomaly(samples):
    """Of [(time, delay)] the first largest one beyond three deviations to either side: exactly, in fractions."""
    if len(samples) < 2:
        return []
    mean = Fraction(sum(delay for _, delay in samples), len(samples))
    variance = sum((delay - mean) ** 2 for _, delay in samples) / (len(samples) - 1)
    flagged = [(-delay, when) for when, delay in samples if (delay - mean) ** 2 > 9 * variance]
    return [(when, -negative) for negative, when in sorted(flagged)[:1]]


def host_samples(database, start, end):
    tables = [name for name, in database.execute("select tablename from table_flag")]
    return {point: [row for table in tables for row in database.execute(
        f"select curtime, avgdelay from {table} join version_nmaps using (locateid) "
        "where locatename = ? and curtime between ? and ?", (point, start, end))] for point in POINTS}


def is_covered(samples, start, end):
    """No more than two steps are missing at either end, and less than a fifth of the intervals between."""
    times = sorted({when for rows in samples.values() for when, _ in rows})
    step = median(after - before for before, after in zip(times, times[1:]))
    between = (times[-1] - times[0]) / step + 1
    return max(times[0] - start, end - times[-1]) <= 2 * step and (between - len(times)) * 5 < between


def cells(line):
    return sum(2 if unicodedata.east_asian_width(letter) in "WF" else 1 for letter in line)


def eventually(condition, seconds=60):
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.01)
    return True


class ConsoleTest(unittest.TestCase):
    """Each test has an empty world: the folders at their fixed paths."""
    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.root = Path(holder.name)
        for file in (DATABASE, HEAL_DATABASE, CONFIG):
            (self.root / file).parent.mkdir(parents=True)

    def simulate(self, *options):
        """Writes a world with lumo-sim; returns the truth about it."""
        subprocess.run([BIN / "lumo-sim", "--root", self.root, *options], check=True, stdout=subprocess.DEVNULL)
        return json.loads((self.root / "truth.json").read_text())

    def worlds(self):
        """Plays one scenario after the other: yields its name and its truth."""
        scenarios = subprocess.run([BIN / "lumo-sim", "--list"], check=True, stdout=subprocess.PIPE, text=True).stdout
        for scenario in (line.split()[0] for line in scenarios.splitlines()):
            yield scenario, self.simulate("--scenario", scenario, "--end", "20230105143000")

    def statistics(self, tables, to=DATABASE):
        """Writes a new database: {table: [(point, time, delay), ...]}, cells as they are; deletes the old one."""
        (self.root / to).unlink(missing_ok=True)
        database = sqlite3.connect(self.root / to, isolation_level=None)
        database.execute("pragma synchronous = off")
        database.execute("begin")
        database.execute("create table version_nmaps(locateid, locatename)")
        database.executemany("insert into version_nmaps values(?, ?)", enumerate(POINTS))
        database.execute("create table table_flag(tablename, reporttime)")
        for number, (table, rows) in enumerate(tables.items()):
            database.execute("insert into table_flag values(?, ?)", (table, number))
            database.execute(f'create table "{table}"(locateid, curtime, avgdelay)')
            database.executemany(f'insert into "{table}" values(?, ?, ?)',
                                 [(POINTS.index(point), when, delay) for point, when, delay in rows])
        database.execute("commit")
        database.close()
        sqlite3.connect(self.root / HEAL_DATABASE).close()
        (self.root / HEAL_DATABASE).touch()

    def start(self, *options, **streams):
        return subprocess.Popen([BIN / "zorv-local", "--root", self.root, *options], stdin=subprocess.PIPE, **streams)

    def run_lines(self, lines, *options):
        """Runs command lines from a pipe: status, stdout, stderr."""
        console = self.start(*options, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        out, err = console.communicate(lines if isinstance(lines, bytes) else lines.encode())
        return console.returncode, out.decode(errors="replace"), err.decode(errors="replace")

    def expect(self, lines, status, screen):
        """Compares the whole screen and the exit status; returns what went to stderr."""
        found_status, out, err = self.run_lines(lines)
        self.assertEqual((out, found_status), (screen, status), err)
        return err

    def answer(self, words, *options):
        """The exit status, and the answer of a command's document, or its problem."""
        status, document, _ = self.run_lines(words + " --json\n", *options)
        found = json.loads(document, parse_constant=self.fail)
        HOST_SCHEMA.validate(found)
        self.assertEqual((document.isascii(), found["command"]), (True, words.split()[0]))
        return status, found["problem"] or found["answer"]

    def expect_anomalies(self, start, end):
        with closing(sqlite3.connect(self.root / DATABASE)) as database:
            samples = host_samples(database, start, end)
        listed = [(point, when, delay) for point in POINTS for when, delay in worst_anomaly(samples[point])]
        covered = is_covered(samples, start, end)
        err = self.expect(f"delaydetect {compact(start)} {compact(end)}\n", int(not covered), delay_listing(listed))
        self.assertEqual("the answer rests on a part of the range: rows from " in err, not covered, err)
        return covered

    def run_explain(self, *options, root=None, zone="CST-8"):
        done = subprocess.run([BIN / "zorv-explain", "--root", root or self.root, *options], capture_output=True,
                              env={**os.environ, "TZ": zone})
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def explain(self, *times):
        """The exit status, the text and the document, each checked for its form."""
        status, text, err = self.run_explain(*times)
        self.assertEqual([line for line in text.split("\n") if cells(line) > 80 or not line.isprintable()], [], err)
        (json_status, document, _), again = (self.run_explain("--json", *times) for _ in range(2))
        self.assertEqual((json_status, document, document.isascii()), (status, again[1], True))
        found = json.loads(document, parse_constant=self.fail)
        SCHEMA.validate(found)
        return status, text, found
