"""Three nodes on one machine: one switch, whoever asks; and what they do without the master."""
import contextlib
import signal
import socket
import subprocess
import time
import unittest

from console import BIN, ConsoleTest, error

MARK = "quit: leave; so does Ctrl-D.\n"  # what "help quit" prints, to know where a screen ends
OFF = error("fault diagnose switch is off")
WARNING = "zorv-local: plain tcp between nodes is open to anyone who reaches it: tls+tcp:// is for nodes with a certificate\n"
SILENCE = "zorv-local: line {}: node 1, which keeps the switch, did not answer\n"


class Cluster(ConsoleTest):
    def found(self, scheme="ipc", other="tcp"):
        """Starts three nodes; 1, the master, and 2 listen at addresses of these schemes."""
        self.nodes, self.lines = {}, {}
        with socket.create_server(("127.0.0.1", 0)) as server:
            addresses = {"tcp": f"tcp://127.0.0.1:{server.getsockname()[1]}", "ipc": f"ipc://{self.root}/socket"}
        (self.root / "nodes").write_text(f"1 {addresses[scheme]}\n2 {addresses[other]}\n3 ipc://{self.root}/third\n")
        for node in (1, 2, 3):
            (self.root / str(node)).mkdir()
            self.launch(node)

    def launch(self, node):
        console = subprocess.Popen(
            [BIN / "zorv-local", "--root", self.root / str(node), "--node", str(node), "--master", "1", "--cluster",
             self.root / "nodes", "--log", self.root / f"{node}.log", "--log-level", "info"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.nodes[node], self.lines[node] = console, 0
        self.addCleanup(console.communicate)
        self.assertEqual(self.say(node, ""), WARNING if "tcp" in (self.root / "nodes").read_text() else "")

    def say(self, node, line):
        """The screen of one command line; the text of a complaint begins with its number."""
        began = time.monotonic()
        with contextlib.suppress(BrokenPipeError):  # what it said at its end tells more
            self.nodes[node].stdin.write(f"{line}\nhelp quit\n")
            self.nodes[node].stdin.flush()
        screen = ""
        while not screen.endswith(MARK):
            screen += self.nodes[node].stdout.readline() or self.fail(screen)
        self.assertLess(time.monotonic() - began, 60)  # the deadline is 3, but a machine may be busy
        self.lines[node] += 2
        return screen[:-len(MARK)].replace(f"line {self.lines[node] - 1}:", "line {}:")

    def test_one_switch(self):
        self.found("tcp", "ipc")
        self.assertIn("\nnew value: 3 (off), confirmed by node 1\n", self.say(2, "switch set off"))
        for node in self.nodes:
            self.assertEqual(self.say(node, "switch get"), "3 (off), from node 1\n")
            self.assertEqual(self.say(node, "showallerr 1"), OFF)
        self.assertEqual(self.say(3, "switch set on"), "old value: 3 (off)\nnew value: 1 (on), confirmed by node 1\n")
        self.assertNotEqual(self.say(2, "showallerr 1"), OFF)
        self.assertIn("Get fault diagnose switch(1) success.", (self.root / "2.log").read_text())
        for console in self.nodes.values():
            console.communicate()
        self.assertEqual({*self.root.glob("socket"), *self.root.glob("third")}, set())

    def test_without_master(self):
        self.found()
        self.say(1, "switch set on")
        folder = self.root / "2/VRA/coffer_log/log/heal/data"
        folder.mkdir(parents=True)
        (folder / "faultDiagSwitch.ini").write_text("[heal]\nvalue=3\n")
        self.assertNotEqual(self.say(2, "showallerr 1"), OFF)
        second = self.run_lines("", "--master", "1", "--cluster", self.root / "nodes")
        self.assertEqual(second, (3, "", second[2]))
        self.assertIn(f"zorv-local: cannot listen at ipc://{self.root}/socket: Address in use\n", second[2])
        self.assertEqual(self.say(2, "switch get"), "1 (on), from node 1\n")

        self.nodes[1].kill()
        self.nodes[1].wait()
        self.assertEqual(self.say(2, "switch get"), SILENCE)
        self.assertEqual(self.say(2, "showallerr 1"), OFF)  # says its own file
        self.assertNotEqual(self.say(3, "showallerr 1"), OFF)  # has none
        self.launch(1)
        self.assertEqual(self.say(3, "switch get"), "1 (on), from node 1\n")

    def test_slow_master(self):
        self.found()
        self.say(1, "switch set on")
        self.nodes[1].send_signal(signal.SIGSTOP)
        self.assertEqual(self.say(2, "switch set off"), SILENCE)
        self.nodes[1].send_signal(signal.SIGCONT)
        self.assertEqual(self.say(2, "switch get"), "1 (on), from node 1\n")


if __name__ == "__main__":
    unittest.main()
