#!/usr/bin/env python3
"""soak.py [SECONDS [SEED]]: the consoles of nodes 1 and 2 run on while their live worlds grow, are re-created, end and begin
anew, and others are killed: consoles beside them, and node 3, which keeps the switch. Answers are right, always on node 2,
whose database is replaced by renaming; beside a deletion node 1 may answer as if data were missing."""
import json
import math
import os
import random
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

BIN = Path(os.environ.get("SMARTDIAGNOSE_BIN", Path(__file__).resolve().parents[3] / "build/dev/bin"))
os.environ["TZ"] = "CST-8"
SECONDS = int((sys.argv[1:] or ["600"])[0])
SEED = int((sys.argv[2:] or [time.time_ns() % 10**6])[0])
EPOCH, SPEED = 40, 180  # seconds that a world is asked about, and how fast it goes: three of its seven hours
RANGE, POINT = " 20230105143000 20230105144500", " TGT_LUMO_HOST_READ"  # of the planted fault
GROWING = f"showgraph maplumodata{POINT} 20230105133000 20230106143000"
GUARDED = [command + RANGE for command in (
    "simudetect", "delayanal", "showallerr", "errcodeshow IORETRY ALL", "errcodeshowall", "showfaultfactor BDM")]
COMMANDS = GUARDED + [command + RANGE for command in (
    "delaydetect", "explain", "showgraph mapgraph" + POINT, "showgraph maplumodata" + POINT)]
SWITCH = {"on": "1 (on)", "on-silent": "2 (on-silent)", "off": "3 (off)"}
OFF = "\t\t[ERROR]: fault diagnose switch is off\n"
SILENCE = "did not answer"
MARK = "quit: leave; so does Ctrl-D.\n"  # what "help quit" prints, to know where a screen ends
SLACK = {"descriptors": 16, "threads": 2, "KiB": 8192}  # what may just be ending; growth of the last third's peak
USUAL = re.compile(  # beside such producers and nodes, and what the commands say about the world as it is
    r"is 0x|is \(nil\)|is nullptr|sqlite3_open faild:14|get table faild|suppressed|[Gg]raph anlaysis|new root graph|"
    r"not exsist|rstNode|not data finded|[Gg]et ?[Dd]ata failed|get lumodata from|CoveredTime index left|alarm|"
    r"node 3 did not answer|master node fail")
PIPE = {"text": True, "stdout": subprocess.PIPE}

chance = random.Random(SEED)
begin = time.monotonic()
faults = []  # what was wrong
counts = dict.fromkeys(("re-creations", "right", "excused", "masters killed", "consoles killed"), 0)


def expect(is_right, what, screen):
    if not is_right:
        faults.append(f"{time.monotonic() - begin:.1f} s, {what}:\n{screen[:2000]}")


class Node(subprocess.Popen):
    """A console; what it has open is measured after each answer."""

    def __init__(self, root, number):
        options = "--root", root / str(number), "--log", root / f"log{number}", "--cluster", root / "nodes", "--master", "3"
        super().__init__([BIN / "zorv-local", *options, "--node", str(number)], stdin=subprocess.PIPE,
                         stderr=subprocess.STDOUT, **PIPE)
        self.measures = []
        self.say("")  # until it has started

    def say(self, command):
        print(command, "help quit", sep="\n", file=self.stdin, flush=True)
        lines = list(iter(lambda: self.stdout.readline() or MARK, MARK))
        return "".join(line for line in lines if not re.match("zorv-[a-z]+: waiting to try again|alarm 0x", line))

    def measure(self):
        process = Path(f"/proc/{self.pid}")
        pages = int((process / "statm").read_text().split()[1])
        self.measures.append((len(os.listdir(process / "fd")), len(os.listdir(process / "task")), pages * 4))


class World(subprocess.Popen):
    """What node 1 or 2 diagnoses; `recreated` is when its database was there again, endless while it is not."""

    def __init__(self, root, *options):
        options += "--end", "20230105143000", "--fault-after", "300", "--period", "600", "--for", "86400", "--hours", "7"
        super().__init__([BIN / "lumo-sim", "--root", root, "--live", "--speed", str(SPEED), *options], **PIPE)
        expect(any("new table lumo_data_20230105145" in line for line in self.stdout), "lumo-sim", "ended")
        self.recreated = 0.0
        threading.Thread(target=self.listen, daemon=True).start()

    def listen(self):
        for line in self.stdout:
            if "re-created" in line:
                self.recreated = time.monotonic()
                counts["re-creations"] += 1

    def recreate(self):
        self.recreated = math.inf
        self.send_signal(signal.SIGHUP)
        time.sleep(chance.random() / 2)


def once(root, command):
    return subprocess.Popen([BIN / "zorv-local", "--root", root, *command.split()], stderr=subprocess.DEVNULL, **PIPE)


def turn_switch(root, nodes, value):
    """Turns it on one node and asks another; the master may be killed meanwhile. Returns what it is now."""
    wanted = chance.choice(list(SWITCH))
    setter, reader = chance.sample((1, 2), 2)
    is_killed = chance.random() < 0.5
    if is_killed:
        threading.Timer(chance.random() / 100, nodes[3].kill).start()
    screen = nodes[setter].say(f"switch set {wanted}")
    is_set = f"new value: {SWITCH[wanted]}, confirmed by node 3\n" in screen
    expect(is_set or is_killed and SILENCE in screen, f"switch set {wanted}", screen)
    if is_killed:
        counts["masters killed"] += nodes[3].wait() == -signal.SIGKILL
        screen = nodes[reader].say("switch get")
        expect(SILENCE in screen, "switch get of nobody", screen)
        nodes[3] = Node(root, 3)
    screen = nodes[reader].say("switch get")
    now = next((word for word, text in SWITCH.items() if screen == f"{text}, from node 3\n"), None)
    expect(now == wanted or not is_set and now == value, f"{value}, switch set {wanted}, switch get", screen)
    return now


class Epoch:
    """The time of a world on each node."""

    def __init__(self, root, nodes):
        self.root, self.nodes = root, nodes
        self.worlds = {1: World(root / "1"), 2: World(root / "2", "--wal", "--recreate-by", "rename")}
        self.grown = {1: "", 2: ""}  # what was shown of the table that grows
        self.right = {command: once(root / "1", command).communicate()[0] for command in COMMANDS}
        fault = json.loads((root / "1/truth.json").read_text())["fault"]
        expect(fault["peak_local"] in self.right["delaydetect" + RANGE]
               and fault["point"] in self.right["delayanal" + RANGE], "truth", str(self.right))

    def end_worlds(self):
        """A producer ends, one is killed."""
        self.worlds[1].terminate()
        self.worlds[2].kill()
        ends = self.worlds[1].wait(), self.worlds[2].wait()
        expect(ends == (0, -signal.SIGKILL), "lumo-sim", "ended by itself")
        time.sleep(3)

    def is_grown(self, number, screen, is_over):
        """Whether it goes on where it ended, and ends where the world did."""
        if not screen.startswith(self.grown[number]):
            return False
        if is_over and screen != once(self.root / str(number), GROWING).communicate()[0]:
            return False
        self.grown[number] = screen
        return True

    def ask(self, number, command, value, is_over):
        """Asks beside another console, which is killed."""
        with once(self.root / str(number), chance.choice(COMMANDS)) as beside:
            asked, screen = time.monotonic(), self.nodes[number].say(command)
            beside.kill()
        counts["consoles killed"] += beside.returncode == -signal.SIGKILL
        if command == GROWING:
            is_right = self.is_grown(number, screen, is_over)
        else:
            is_right = screen == (OFF if command in GUARDED and value == "off" else self.right[command])
        is_excused = number == 1 and not is_over and asked < self.worlds[1].recreated + 3
        counts["right" if is_right else "excused"] += 1
        expect(is_right or is_excused, f"{number}: {command}", screen)
        self.nodes[number].measure()

    def run(self, value, seconds):
        """Returns what the switch is then."""
        end, is_over = time.monotonic() + seconds, False
        while not is_over:
            value, is_over = turn_switch(self.root, self.nodes, value), time.monotonic() > end
            if is_over:  # the last round
                self.end_worlds()
            for number, world in self.worlds.items():
                for command in [*COMMANDS, GROWING]:
                    if not is_over and world.recreated < math.inf and chance.random() < 0.05:
                        world.recreate()
                    self.ask(number, command, value, is_over)
        return value


def check_growth(number, measures, slack=None):
    for what, column in zip(SLACK, zip(*measures)):
        third = len(column) // 3
        peaks = max(column[third:2 * third] or column), max(column[2 * third:])
        print(f"node {number} {what:12} first {column[0]}, peaks of the second and last third {peaks}, last {column[-1]}")
        expect(peaks[1] - peaks[0] <= (slack or SLACK)[what], f"node {number}", f"{what} grow")


def soak(root):
    (root / "nodes").write_text("\n".join(f"{number} ipc://{root}/socket{number}" for number in (1, 2, 3)))
    for number in (1, 2, 3):  # they read the configuration when they start
        subprocess.run([BIN / "lumo-sim", "--root", root / str(number)], check=True, stdout=subprocess.DEVNULL)
    nodes, value = {number: Node(root, number) for number in (3, 1, 2)}, None
    while (left := begin + SECONDS - time.monotonic()) > 0:
        value = Epoch(root, nodes).run(value, min(EPOCH, left))
    for log in root.glob("log*"):
        faults.extend(line for line in log.read_text().splitlines() if not USUAL.search(line))
    for number in (1, 2):
        check_growth(number, nodes[number].measures)
    for node in nodes.values():
        node.communicate()
        expect(node.returncode in (0, 1), "a node", "ends badly")
    print(*faults[:20], f"{SECONDS} s, seed {SEED}, {len(faults)} faults, {counts}", sep="\n")
    return 1 if faults or counts["right"] < counts["excused"] else 0


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as folder:
        sys.exit(soak(Path(folder)))
