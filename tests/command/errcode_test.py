"""The commands on errors on whole worlds, against sums over the same database."""
import collections
import contextlib
import json
import re
import sqlite3
import unittest

from console import CONFIG, DATABASE, ConsoleTest

TYPES = ["IOERROR", "IORETRY", "IOACCESSDENY"]
POOL_GRAPHS = ["POOL_ERRCODE_READ", "MKV_IO_READ", "POOL_ERRCODE_WRITE", "MKV_IO_WRITE"]
# In the order in which they are searched.
SEARCHED = ["ERRCODE_NAS_PROTO", *POOL_GRAPHS, "ERRCODE_SMB", "ERRCODE_SAN_PROTO"]


class ErrorCodes(ConsoleTest):
    def load(self, scenario, *options):
        self.truth = self.simulate("--scenario", scenario, "--end", "20230105143000", *options)
        self.range = f"{self.truth['start']} {self.truth['end']}"
        self.graphs = json.loads((self.root / CONFIG).read_text())
        self.sums = collections.defaultdict(lambda: [0, 0, 0])
        bounds = (self.truth["start_epoch"], self.truth["end_epoch"])
        with contextlib.closing(sqlite3.connect(self.root / DATABASE)) as database:
            for table, in database.execute("select tablename from table_flag").fetchall():
                for point, *errors in database.execute(
                        f"select locatename, errCode0, errCode1, errCode2 from {table} "
                        "join version_nmaps using (locateid) where curtime between ? and ?", bounds):
                    self.sums[point] = [total + error for total, error in zip(self.sums[point], errors)]

    def screen(self, command):
        status, out, err = self.run_lines(command + "\n")
        self.assertEqual(status, 0, err)
        return out

    def errors_of(self, graph):
        """{point: [sums per type]} of a graph's points with errors, in the order of their ids."""
        found = {}
        for node in sorted(self.graphs[graph]["nodes"], key=lambda node: node["id"]):
            info = node.get("info", {})
            atomic = "automic" in info.get("attr", "") and "whole" not in info.get("attr", "")
            if "MODULE" not in node["description"]:
                found.setdefault(node["label"], self.sums[info.get("qname", "") if atomic else node["label"]])
        return found

    def check_lists(self):
        listed = {}
        for graph in SEARCHED:
            for point, sums in self.errors_of(graph).items():
                for number, total in enumerate(sums):
                    listed.setdefault((number, point), total)
        sections = self.screen(f"showallerr {self.range}").split("-" * 100 + "\n")
        self.assertEqual(len(sections), 4)
        for number, name in enumerate(TYPES):
            expected = sorted(((-total, order, point) for order, ((kind, point), total) in enumerate(listed.items())
                               if kind == number and total))
            found = re.findall(r"^(\d+) +(\S+) +(\d+)  ", sections[number], re.M)
            self.assertIn(f"{name:<20} total:{len(expected)}\n", sections[number])
            self.assertEqual(found, [(str(row + 1), point, str(-negative))
                                     for row, (negative, _, point) in enumerate(expected[:101])])
            self.assertEqual("too many records" in sections[number], len(expected) >= 101)

    def check_walk(self, kind, point):
        fault = self.truth["fault"]
        screen = self.screen(f"errcodeshow {kind} ALL {self.range}")
        section = screen.partition(f"\n{point:<32}{fault['graph']:<32}\n")[2].partition("=====")[0]
        rows = re.findall(r"^\d.*", section, re.M)
        self.assertEqual([row.split()[1] for row in rows], fault["walk"][-1]["points"])
        self.assertRegex(rows[-1], rf"^\d+ +{point} +[1-9]\d* +{fault['advice'] or '---'}$")

    def test_errors(self):
        cases = [
            ("error-burst", "IOERROR", "BDM_DISK_MEDIUM_ERROR"),
            ("error-burst", "IORETRY", "SPACE_BLOCK_VOL_LOC_WRITE"),  # with points below it
            ("error-burst", "IOACCESSDENY", "SMB_KERBEROS_TICKET_FAIL"),  # below a hand-over
            ("error-burst", "IOERROR", "BDM_DISK_PATH_LOST"),  # below two
            ("error-burst", "IOERROR", "ZONETASK_ALLOC_CKG"),  # in a graph to which nothing hands over
            ("retry-storm", None, None),
        ]
        for number, (scenario, kind, point) in enumerate(cases):
            with self.subTest(scenario=scenario, kind=kind, point=point):
                chosen = ["--error-type", kind, "--error-point", point]
                self.load(scenario, *(chosen if kind and number else ()))
                self.check_lists()
                fault = self.truth["fault"] or {}
                self.assertEqual((fault.get("error_type"), fault.get("point")), (kind, point))
                self.assertEqual(fault.get("answer"), point if point != "ZONETASK_ALLOC_CKG" else None)
                if fault.get("answer"):
                    self.check_walk(kind, point)
                if number == 0:  # all that an error graph can say of a point is on the way
                    attrs = {node["info"]["attr"] for node in self.graphs["ERRCODE_SAN_PROTO"]["nodes"]
                             if node["label"] in fault["path"][:-1]}
                    self.assertEqual(attrs, {"whole", "automic", "whole follow"})
        self.assertTrue("too many records" in self.screen(f"showallerr {self.range}"))


if __name__ == "__main__":
    unittest.main()
