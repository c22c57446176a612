#!/usr/bin/env python3
"""soak.py [SECONDS [SEED]]: one console runs on while its world is written again and again, the statistics are deleted,
and consoles beside it turn the switch and are killed. Answers are right or, beside a deletion, those of missing data."""
import os, random, re, subprocess, sys, tempfile, threading, time
from pathlib import Path

BIN = Path(os.environ["SMARTDIAGNOSE_BIN"])
SECONDS = int((sys.argv[1:] or ["600"])[0])
SEED = int((sys.argv[2:] or [time.time_ns() % 10**6])[0])
RANGE = " 20230105103000 20230105143000"
COMMANDS = [command + RANGE for command in (
    "delaydetect", "simudetect", "delayanal", "explain", "showallerr", "errcodeshow IOERROR ALL", "errcodeshowall",
    "showgraph mapgraph TGT_LUMO_HOST_READ", "showgraph maplumodata TGT_LUMO_HOST_READ",
    "showfaultfactor SPACE")] + ["datashow TGT_LUMO_HOST_READ" + RANGE + " 5", "showvalidtime", "help"]
SWITCH = ["switch set on", "switch set off", "switch set on-silent"]
END = re.compile(r"[123] \((on|on-silent|off)[,)].*\n|")  # the screen of switch get, or that of nobody
SLACK = {"descriptors": 0, "threads": 2, "KiB": 8192}  # a handler of the switch may just be ending; growth of the peak, the last third beside the second
USUAL = re.compile(  # beside such a producer, and what the commands say about the world as it is
    r"is 0x|is \(nil\)|is nullptr|sqlite3_open faild:14|get table faild|suppressed|[Gg]raph anlaysis|new root graph|"
    r"is not exsist|rstNode|not data finded|already exists|[Gg]et ?[Dd]ata failed|get lumodata from|CoveredTime index left|alarm")


class Console:
    def __init__(self, root):
        self.process = subprocess.Popen([BIN / "zorv-local", "--root", root, "--log", root / "log"], text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def answer(self, command):
        print(command, "switch get", sep="\n", file=self.process.stdin, flush=True)
        lines = [self.process.stdout.readline()]
        while not END.fullmatch(lines[-1]):
            lines.append(self.process.stdout.readline())
        return "".join(lines[:-1])

    def measure(self):
        proc = Path("/proc", str(self.process.pid))
        return dict(zip(SLACK, (len(os.listdir(proc / "fd")), len(os.listdir(proc / "task")),
                                int(re.search(r"VmRSS:\s*(\d+)", (proc / "status").read_text())[1]))))


def soak(root):
    chance, over, deleted, kills, writes = random.Random(SEED), threading.Event(), [0.0], 0, 0

    def write():
        subprocess.run([BIN / "lumo-sim", "--root", root, "--end", "20230105143000"], check=True, stdout=subprocess.DEVNULL)

    def keep_writing():
        nonlocal writes
        while not over.wait(chance.random()):
            if chance.random() < 0.1:
                (root / "VRA/data/lumo/lumo_diagnose_data.db").unlink()
                time.sleep(chance.random())
                write()
                deleted[0] = time.monotonic()
            write()
            writes += 1

    def keep_killing():
        nonlocal kills
        while not over.wait(chance.random()):
            other = subprocess.Popen([BIN / "zorv-local", "--root", root, *chance.choice(COMMANDS + 5 * SWITCH).split()],
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(chance.random() / 4)
            other.kill()
            kills += other.wait() == -9

    write()
    console = Console(root)
    right = {command: set() for command in COMMANDS}
    for command in SWITCH + COMMANDS + SWITCH[1:2] + COMMANDS + SWITCH[:1] + COMMANDS:
        right.setdefault(command, set()).add(console.answer(command))
    helpers = [threading.Thread(target=work) for work in (keep_writing, keep_killing)]
    begin, measures, faults, counts = time.monotonic(), [], [], {"right": 0, "excused": 0}
    for helper in helpers:
        helper.start()
    while time.monotonic() < begin + SECONDS or helpers:
        if time.monotonic() > begin + SECONDS:  # the last round is quiet
            over.set()
            while helpers:
                helpers.pop().join()
            time.sleep(3)
        for command in COMMANDS:
            asked = time.monotonic()
            screen = console.answer(command)
            is_missing = helpers and (deleted[0] > asked - 3 or not (root / "VRA/data/lumo/lumo_diagnose_data.db").exists())
            counts["right" if screen in right[command] else "excused"] += 1
            if screen not in right[command] and not is_missing:
                faults.append(f"{command}:\n{screen[:2000]}")
        measures.append(console.measure())
    faults += [line for line in (root / "log").read_text().splitlines() if not USUAL.search(line)]
    for what, slack in SLACK.items():
        values = [measure[what] for measure in measures]
        third = len(values) // 3
        peaks = [max(values[third:2 * third] or values), max(values[2 * third:])]
        print(f"{what:12} first {values[0]}, peaks of the second and last third {peaks[0]}, {peaks[1]}, last {values[-1]}")
        if peaks[1] - peaks[0] > slack:
            faults.append(f"{what} grow")
    print(f"seconds {SECONDS}, seed {SEED}, rounds {len(measures)}, answers {counts}, worlds {writes}, kills {kills}, "
          f"faults {len(faults)}", *faults[:20], sep="\n")
    console.process.stdin.close()
    return 1 if faults or console.process.wait() > 1 or counts["right"] < counts["excused"] else 0


with tempfile.TemporaryDirectory() as folder:
    sys.exit(soak(Path(folder)))
