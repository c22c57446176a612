"""How zorv-explain ends, by itself and as a command of zorv-local."""
import json
import os
import subprocess
import unittest

from console import BIN, ConsoleTest, compact


class ExplainStatus(ConsoleTest):
    def test_statuses(self):
        self.simulate("--scenario", "slow-disk", "--end", "20230105143000")
        truth = json.loads((self.root / "truth.json").read_text())
        times = [truth["start"], truth["end"]]
        point = ["--point", "TGT_LUMO_HOST_READ"]
        quiet, first = compact(truth["start_epoch"] + 3600), compact(truth["start_epoch"] + 60)
        ten = [quiet, compact(truth["start_epoch"] + 3600 + 270)]  # samples, of which none can be flagged
        for arguments, status in ((times, 0), ([*point, "--at", quiet, *times], 1), ([truth["start"], quiet], 1),
                                  (times[::-1], 2), (["20230105096000", times[1]], 2), (["0"], 2),
                                  (["20221231000000", times[1]], 2), (["--zone", "+2500", *times], 2),
                                  ([*point, "--at", "20230105000000", *times], 2),
                                  (["20230101000000", "20230102000000"], 3), (ten, 3), ([*point, *ten], 4),
                                  ([*point, "--at", first, *times], 4)):
            with self.subTest(arguments=arguments):
                alone = subprocess.run([BIN / "zorv-explain", "--root", self.root, *arguments], capture_output=True)
                self.assertEqual(alone.returncode, status, alone.stderr)
                self.assertEqual(bool(alone.stderr), status in (2, 3))
                console = self.start("explain", *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                self.assertEqual(console.communicate(), (alone.stdout, alone.stderr))
                self.assertEqual(console.returncode, status)
                piped = self.run_lines(" ".join(["explain", *arguments]))
                self.assertEqual(piped, (int(status > 0), alone.stdout.decode(), alone.stderr.decode()))
        self.assertEqual(os.system(f"{BIN}/zorv-explain --root {self.root} {' '.join(times)} 2>&- >&-") >> 8, 3)
        for program in "zorv-explain", "zorv-local", "lumo-sim":
            self.assertEqual(os.system(f"{BIN}/{program} --help 2>&- >/dev/full") >> 8, 1, program)


unittest.main()
