"""delayanal on every scenario: paths to what was planted, with coefficients computed independently."""
import json
import sqlite3
import unittest
from contextlib import closing
from statistics import correlation

from console import CONFIG, DATABASE, ConsoleTest

EQUALS = 67 * "=" + "\n"
HEALED = ("\n                   IoAbnormal Analysis\n" + EQUALS
          + "time             ioabnType       modulename      infercause\n")
ANALYSIS = "\n                   CausalityGraph Analysis\n"
HEAD = EQUALS + "AnomalyNodeName                  RootGraphName\n{:<32}{:<32}\n" + 69 * "-" + (
    "\nioPointid      locName                         coff         avgdelay(us)\n")

DISK = ["SAN_IO_READ BDM_DISK_READ"]
# What an operator is told of what is flagged: graph and anomalous point of each path.
ANSWERS = {
    "slow-disk": DISK,
    "gaps": DISK,
    "graph-circle": DISK,
    "self-handover": DISK,
    "slow-network": ["SAN_IO_WRITE SPACE_IOTUNNEL_UC_ACK_WRITE"],
    "locked-volume": ["SAN_IO_CMD SPACE_BLOCK_LUN_ALL_LOCK"],
    "slow-pool": ["SAN_IO_READ POOL_DOP_READ_TIME_IN_POOL", "POOL_READ BDM_POOL_DISK_READ"],
    "long-queue": ["SAN_IO_READ SPACE_BLOCK_BDM_READ"],
    "equal-points": ["SAN_IO_READ SPACE_IOTUNNEL_UC_RSP_READ"],
    "nas-slow": ["NAS_IO_NFSV3 FS_NFSV3_LOG_COMMIT", "NAS_IO_NFSV4 NAS_TRANS_ALL", "NAS_IO_SMB2 NAS_TRANS_ALL"],
}
# Why the analysis ended there, where it could have gone on for ever.
REASONS = {
    "graph-circle": "node 1 is on the path already, the walk ends.",
    "self-handover": "graph SAN_IO_READ has been analysed already, the analysis ends.",
}


class Analyse(ConsoleTest):
    def delays(self, point, peak):
        with closing(sqlite3.connect(self.root / DATABASE)) as database:
            tables = [name for name, in database.execute("select tablename from table_flag order by reporttime")]
            return [delay for table in tables for delay, in database.execute(
                f"select avgdelay from {table} natural join version_nmaps where locatename = ? "
                "and curtime between ? and ? order by curtime", (point, peak - 480, peak + 480))]

    def path(self, graph, points, peak):
        ids = {node["label"]: node["id"] for node in json.loads((self.root / CONFIG).read_text())[graph]["nodes"]}
        series = [self.delays(point, peak) for point in points]
        coefficients = [1] + [correlation(above, own) for above, own in zip(series, series[1:])]
        return HEAD.format(points[-1], graph) + "".join(
            f"{ids[point]:<12}{point:<32}{coefficient:<13f}{sum(delay // len(own) for delay in own):<30}\n"
            for point, coefficient, own in zip(points, coefficients, series))

    def expect_paths(self, screen, answers, fault):
        walk = [(part["graph"], part["points"]) for part in fault["walk"]]
        self.assertEqual([f"{graph} {points[-1]}" for graph, points in walk], answers[:len(walk)])
        expected = "".join(self.path(graph, points, fault["peak_epoch"]) for graph, points in walk)
        analyses = screen.split(ANALYSIS)
        self.assertEqual(analyses[:2], ["", expected])
        # In the graphs without a fault the walk follows noise, but nothing below its first point is to blame.
        for found, answer in zip(analyses[2:], answers[len(walk):], strict=True):
            graph, point = answer.split()
            self.assertTrue(found.startswith(self.path(graph, [point], fault["peak_epoch"])), found)
            self.assertEqual(found.count(EQUALS), 1)

    def test_every_scenario(self):
        for scenario, truth in self.worlds():
            with self.subTest(scenario=scenario):
                dates = truth["start"], truth["end"]
                status, screen, err = self.run_lines("delayanal {} {}\n".format(*dates))
                self.assertEqual(status, 0)
                self.assertIn(REASONS.get(scenario, ""), err)
                if scenario == "healed":
                    self.assertEqual(screen, HEALED + "".join(
                        "{healtime:<17}{healcause:<16}{modulename:<16}{infercause:<16}\n".format(**event)
                        for event in truth["heal_events"]))
                elif truth["explain"]["graph"] and truth["fault"]["flagged"] and not truth["fault"]["walk"]:
                    self.assertTrue(screen.startswith(ANALYSIS), screen)
                    self.skipTest("what the walk by correlation comes to is a matter of chance")
                elif ANSWERS.get(scenario):
                    self.expect_paths(screen, ANSWERS[scenario], truth["fault"])
                else:
                    self.assertEqual(screen, "There's no detect result in this time interval"
                                             "(from {} to {})!\n".format(*dates))


if __name__ == "__main__":
    unittest.main()
