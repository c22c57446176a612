#!/usr/bin/env python3
"""Plants the faults of faults.txt one at a time: the tests that each of them names must fail.

Works on a copy of the tree in a temporary directory, which goes away at the end; the tree itself is only read. Exit
status 0 when all faults were caught; 1 when one survived, no longer applies or does not compile, or when a named test
fails without any fault; 2 for wrong usage.
"""
import argparse
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from collections import Counter
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
TESTS_FAILED = 8  # ctest's own status
TEST_SECONDS = 60  # then a test hangs, which is a failure too


class Fault:
    """A block of faults.txt."""

    def __init__(self, block):
        fields = [line.split(": ", 1) for line in block.replace(":\n", ": \n").splitlines() if line[0] != "#"]
        values = {key: [text.replace("\\n", "\n") for other, text in fields if other == key] for key, _ in fields}
        self.name, self.file, test = values["fault"][0], values["file"][0], values["test"][0]
        self.changes = dict(zip(values["old"], values["new"]))
        self.target, self.tests = test.split(" ", 1)
        self.preset = values.get("preset", ["dev"])[0]

    def broken(self, text):
        """The file with the fault, or None when an old text is not there exactly once."""
        if any(text.count(old) != 1 for old in self.changes):
            return None
        return re.sub("|".join(map(re.escape, self.changes)), lambda found: self.changes[found[0]], text)


class Copy:
    """The tree's copy, and its build directories."""

    def __init__(self, path, jobs):
        self.path, self.jobs = path, str(jobs)
        unwanted = shutil.ignore_patterns("build", ".git", "__pycache__")
        shutil.copytree(ROOT, path, ignore=unwanted, symlinks=True)

    def run(self, *command):
        return subprocess.run(command, cwd=self.path, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True)

    def build(self, preset, targets):
        run = self.run("cmake", "--build", "--preset", preset, "-j", self.jobs, "--target", *sorted(targets))
        return run.stdout if run.returncode else None

    def test(self, preset, tests):
        # Sanitizers want their memory where address randomisation may have put something else.
        prefix = ["setarch", "-R"] if preset.endswith("san") else []
        return self.run(*prefix, "ctest", "--preset", preset, "-j", self.jobs, "--timeout", str(TEST_SECONDS), "-R", tests)

    def prepare(self, preset, faults):
        """Builds the copy without a fault; what is wrong with the faults' tests there, or None."""
        # A fault may leave a variable unused: the compiler must not be the one to catch it.
        run = self.run("cmake", "--preset", preset, "-DCMAKE_CXX_FLAGS=-O0", "-DCMAKE_COMPILE_WARNING_AS_ERROR=OFF")
        output = run.stdout if run.returncode else self.build(preset, {fault.target for fault in faults})
        if output:
            return output
        listed = self.run("ctest", "--preset", preset, "--show-only=json-v1").stdout
        names = [test["name"] for test in json.loads(listed[listed.index("{"):])["tests"]]
        empty = [fault.name for fault in faults if not any(re.search(fault.tests, name) for name in names)]
        if empty:
            return f"no such tests: {', '.join(empty)}"
        run = self.test(preset, "|".join(sorted({fault.tests for fault in faults})))
        return run.stdout if run.returncode else None

    def plant(self, fault):
        """What became of the fault, and whether it was caught."""
        path = self.path / fault.file
        text = path.read_text()
        path.write_text(fault.broken(text))
        try:
            if self.build(fault.preset, {fault.target}):
                return "does not compile", False
            run = self.test(fault.preset, fault.tests)
        finally:
            path.write_text(text)
        failed = re.findall(r"^\s*\d+ - (\S+) \(", run.stdout, re.M)
        if run.returncode == TESTS_FAILED and failed:
            return f"{len(failed)}: {failed[0]}", True
        return ("SURVIVES" if run.returncode == 0 else run.stdout[-500:]), False


def read_faults(only):
    blocks = re.split(r"\n\s*\n", (HERE / "faults.txt").read_text().strip())
    faults = [Fault(block) for block in blocks if "\nfile: " in block]
    twice = [name for name, count in Counter(fault.name for fault in faults).items() if count > 1]
    unknown = sorted(set(only) - {fault.name for fault in faults})
    if twice or unknown:
        sys.exit(f"seeded.py: no such fault, or several: {', '.join(twice + unknown)}")
    return [fault for fault in faults if not only or fault.name in only]


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--only", metavar="NAME", action="append", default=[], help="this fault; may be repeated")
    options.add_argument("--jobs", metavar="N", type=int, default=os.cpu_count(), help="compilers and tests at a time")
    options.add_argument("--list", action="store_true", help="only tell the faults")
    arguments = options.parse_args()
    faults = read_faults(arguments.only)
    if arguments.list:
        print("\n".join(f"{fault.name:32}{fault.file}" for fault in faults))
        return 0
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # the copy must go
    began = time.monotonic()
    caught = 0
    gone = [fault for fault in faults if fault.broken((ROOT / fault.file).read_text()) is None]
    for fault in gone:
        print(f"{fault.name:32}NO LONGER APPLIES to {fault.file}", flush=True)
    with tempfile.TemporaryDirectory(prefix="seeded-") as scratch:
        copy = Copy(Path(scratch) / "tree", arguments.jobs)
        for preset in dict.fromkeys(fault.preset for fault in faults):
            planted = [fault for fault in faults if fault.preset == preset and fault not in gone]
            if planted and (wrong := copy.prepare(preset, planted)):
                print(f"without a fault, preset {preset}:\n{wrong}")
                return 1
            for fault in planted:
                start = time.monotonic()
                outcome, is_caught = copy.plant(fault)
                caught += is_caught
                print(f"{fault.name:32}{outcome} ({time.monotonic() - start:.0f} s)", flush=True)
    print(f"{caught} of {len(faults)} faults were caught ({time.monotonic() - began:.0f} s).")
    return 0 if caught == len(faults) else 1


sys.exit(main())
