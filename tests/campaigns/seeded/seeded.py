#!/usr/bin/env python3
"""Plants the faults of faults.txt one at a time: of the tests that each of them names at least one must fail.

Works on a copy in a temporary directory; the tree itself is only read. Exit status 0 when all faults were caught; 1 when
one survived or does not compile, or, before any is planted, when one no longer applies or a named test fails without it.
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
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[2]
TESTS_FAILED = 8  # ctest's own status


class Fault:
    """A block of faults.txt."""

    def __init__(self, block):
        values = {}
        for key, text in re.findall(r"^(\w+):(?: (.*))?$", block, re.M):
            values.setdefault(key, []).append(text.replace("\\n", "\n"))
        self.name, self.file = values["fault"][0], values["file"][0]
        self.changes = dict(zip(values["old"], values["new"]))
        self.preset = values.get("preset", ["dev"])[0]
        *self.targets, self.tests = values["test"][0].split()

    def applies(self):
        """Whether each old text is there exactly once."""
        text = (ROOT / self.file).read_text()
        return all(text.count(old) == 1 for old in self.changes)

    def broken(self, text):
        """The file with the fault."""
        return re.sub("|".join(map(re.escape, self.changes)), lambda found: self.changes[found[0]], text)


class Copy:
    """The tree's copy, with its build directories."""

    def __init__(self, path, jobs):
        self.path, self.jobs = path, str(jobs)
        shutil.copytree(ROOT, path, ignore=shutil.ignore_patterns("build", ".git"), symlinks=True)

    def run(self, *command):
        return subprocess.run(command, cwd=self.path, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True)

    def build(self, preset, targets):
        return self.run("cmake", "--build", "--preset", preset, "-j", self.jobs, "--target", *targets)

    def test(self, preset, tests):
        # Sanitizers want their memory where address randomisation may have put something else.
        fixed = preset.endswith("san") and self.run("setarch", "-R", "true").returncode == 0
        prefix = ["setarch", "-R"] if fixed else []
        return self.run(*prefix, "ctest", "--preset", preset, "-j", self.jobs, "-R", tests)

    def prepare(self, preset, faults):
        """Builds the copy without a fault; what is wrong with the faults' tests there, or None."""
        # A fault may leave a variable unused: the compiler must not be the one to catch it.
        run = self.run("cmake", "--preset", preset, "-DCMAKE_CXX_FLAGS=-O0", "-DCMAKE_COMPILE_WARNING_AS_ERROR=OFF")
        targets = {target for fault in faults for target in fault.targets}
        if run.returncode or (run := self.build(preset, targets)).returncode:
            return run.stdout
        listed = self.run("ctest", "--preset", preset, "--show-only=json-v1").stdout
        names = [test["name"] for test in json.loads(listed[listed.index("{"):])["tests"]]
        empty = [fault.name for fault in faults if not any(re.search(fault.tests, name) for name in names)]
        run = self.test(preset, "|".join({fault.tests for fault in faults}))
        return run.stdout if run.returncode else f"no such tests: {', '.join(empty)}" if empty else None

    def plant(self, fault):
        """Whether the fault was caught, and what became of it."""
        path = self.path / fault.file
        text = path.read_text()
        path.write_text(fault.broken(text))
        run = self.build(fault.preset, fault.targets)
        built = run.returncode == 0
        if built:
            run = self.test(fault.preset, fault.tests)
        path.write_text(text)
        failed = re.findall(r"^\s*\d+ - (\S+ \([\w ]+\))", run.stdout, re.M)  # with the reason: Failed, Timeout
        if built and run.returncode == TESTS_FAILED and failed:
            return True, f"{len(failed)}: {failed[0]}"
        return False, "does not compile" if not built else "SURVIVES" if run.returncode == 0 else run.stdout


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--only", metavar="NAME", action="append", help="this fault; may be repeated")
    options.add_argument("--jobs", metavar="N", default=os.cpu_count(), help="compilers and tests at a time")
    options.add_argument("--list", action="store_true", help="only tell the faults, and whether all apply")
    arguments = options.parse_args()
    blocks = (HERE / "faults.txt").read_text().split("\n\n")[1:]
    faults = [fault for fault in map(Fault, blocks) if not arguments.only or fault.name in arguments.only]
    if not faults:
        print("no such fault")
        return 1
    stale = [fault for fault in faults if not fault.applies()]
    if arguments.list or stale:
        for fault in faults if arguments.list else stale:
            print(f"{fault.name:34}{fault.file}" + ("  NO LONGER APPLIES" if fault in stale else ""))
        return 1 if stale else 0
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # the copy must go
    began = time.monotonic()
    caught = 0
    with tempfile.TemporaryDirectory(prefix="seeded-") as scratch:
        copy = Copy(Path(scratch) / "tree", arguments.jobs)
        for preset in dict.fromkeys(fault.preset for fault in faults):
            planted = [fault for fault in faults if fault.preset == preset]
            if wrong := copy.prepare(preset, planted):
                print(f"Without a fault, preset {preset}:\n{wrong}")
                return 1
            for fault in planted:
                start = time.monotonic()
                is_caught, outcome = copy.plant(fault)
                caught += is_caught
                print(f"{fault.name:34}{outcome} ({time.monotonic() - start:.0f} s)", flush=True)
    print(f"{caught} of {len(faults)} faults were caught ({time.monotonic() - began:.0f} s).")
    return 0 if caught == len(faults) else 1


sys.exit(main())
