"""README.md: what it shows is what its commands print. In a block that begins with "$ ", every command is run in a
fresh folder, in the order of the page; "(...)" stands for lines that are left out."""
import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

from console import BIN, ConsoleTest, eventually

README = Path(__file__).parents[2] / "README.md"


class Readme(ConsoleTest):
    def start_first_node(self):
        """The page shows what two nodes see of a third."""
        for node in "123":
            (self.root / f"w{node}").mkdir()
        (self.root / "nodes").write_text("".join(f"{node} ipc://{self.root}/{node}.socket\n" for node in "123"))
        first = subprocess.Popen([BIN / "zorv-local", "--root", "w1", "--master", "1", "--cluster", "nodes"],
                                 cwd=self.root, stdin=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(first.communicate)
        self.assertTrue(eventually((self.root / "1.socket").exists))

    def test_screens(self):
        blocks = re.findall(r"^```\n(\$ .*?)^```$", README.read_text(), re.M | re.S)
        screens = [screen for block in blocks for screen in re.split(r"^\$ ", block, flags=re.M)[1:]]
        self.assertGreater(len(screens), 4)
        self.start_first_node()
        environment = {**os.environ, "PATH": f"{BIN}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
        for command, _, shown in (screen.partition("\n") for screen in screens):
            with self.subTest(command=command):
                printed = subprocess.run(command, shell=True, cwd=self.root, env=environment, stdout=subprocess.PIPE,
                                         stderr=subprocess.DEVNULL, text=True, stdin=subprocess.DEVNULL).stdout
                parts = (shown.strip("\n") + "\n").split("(...)\n")
                pattern = r"(?:.*\n)*?".join(map(re.escape, parts))
                self.assertTrue(re.fullmatch(pattern, printed.strip("\n") + "\n"), f"{command}\n{printed}")

    def test_picture(self):
        docs = README.parent / "docs"
        subprocess.run([sys.executable, docs / "page_picture.py", BIN, self.root / "page.svg"], check=True)
        self.assertTrue((self.root / "page.svg").read_text() == (docs / "page.svg").read_text(), "docs/page_picture.py renews it")


if __name__ == "__main__":
    unittest.main()
