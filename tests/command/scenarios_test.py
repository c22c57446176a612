"""Every scenario, one world each: detection, analysis and explanation tell what was planted, with figures that are computed
independently over the same database."""
import json
import os
import re
import sqlite3
import subprocess
import unittest
from contextlib import closing
from statistics import correlation

from console import BIN, CONFIG, DATABASE, DELAY_HEADER, ConsoleTest, compact

EQUALS = 67 * "=" + "\n"
HEALED = ("\n                   IoAbnormal Analysis\n" + EQUALS
          + "time             ioabnType       modulename      infercause\n")
ANALYSIS = "\n                   CausalityGraph Analysis\n"
HEAD = EQUALS + "AnomalyNodeName                  RootGraphName\n{:<32}{:<32}\n" + 69 * "-" + (
    "\nioPointid      locName                         coff         avgdelay(us)\n")


class Scenarios(ConsoleTest):
    def check_detection(self, start, end):
        covered = [self.expect_anomalies(*ends) for ends in ((start, end), (start + 2000, end - 4321), (start, start + 600))]
        self.expect("showvalidtime\n", 0, f"\t\tThe earliest timestamp that can be diagnosed is {compact(start)}.\n")
        return covered[0]

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

    def expect_paths(self, screen, fault, others):
        walk = [(part["graph"], part["points"]) for part in fault["walk"]]
        self.assertEqual(walk[-1][1][-1], fault["answer"])
        expected = "".join(self.path(graph, points, fault["peak_epoch"]) for graph, points in walk)
        analyses = screen.split(ANALYSIS)
        self.assertEqual(analyses[:2], ["", expected])
        # In the graphs without a fault the walk follows noise, but nothing below its first point is to blame.
        for found, graph in zip(analyses[2:], others, strict=True):
            self.assertTrue(found.startswith(self.path(graph, [fault["detector_point"]], fault["peak_epoch"])), found)
            self.assertEqual(found.count(EQUALS), 1)

    def check_analysis(self, truth, graphs, covered):
        """Of the graphs that were analysed the first one has the fault."""
        dates, fault = (truth["start"], truth["end"]), truth["fault"] or {}
        status, screen, err = self.run_lines("delayanal {} {}\n".format(*dates))
        self.assertEqual(status, int(not covered), err)
        if truth["heal_events"]:
            self.assertEqual(screen, HEALED + "".join(
                "{healtime:<17}{healcause:<16}{modulename:<16}{infercause:<16}\n".format(**event)
                for event in truth["heal_events"]))
        elif not fault.get("detector_point") or not fault.get("flagged", True):
            self.assertEqual(screen, "There's no detect result in this time interval(from {} to {})!\n".format(*dates))
        elif fault["walk"]:
            self.expect_paths(screen, fault, graphs[1:])
        else:  # what the walk by correlation comes to is a matter of chance
            self.assertTrue(screen.startswith(ANALYSIS), screen)

    def check_explanation(self, truth, status, text, analyses):
        expected, fault = truth["explain"], truth["fault"] or {}
        verdicts = {one["verdict"] for one in analyses} or {"nothing"}
        is_all_clear = expected["verdict"] == "nothing" and not fault.get("error_type")
        self.assertEqual((verdicts, status), ({expected["verdict"]}, int(is_all_clear)))
        self.assertEqual({one["point"] for one in analyses}, {fault.get("detector_point")} - {None})
        told = set()  # graphs; of each the most urgent event comes first
        for one in analyses if expected["verdict"] == "point" else []:
            first = one["candidates"][0]
            if one["graph"] == expected["graph"] and one["graph"] not in told:
                told.add(one["graph"])
                self.assertEqual([one["point"] for one in one["candidates"]][:len(expected["points"])], expected["points"])
                self.assertTrue(not fault["walk"] or one["walk"]["point"] == fault["answer"], one["walk"])
            self.assertAlmostEqual(sum(node["share"] for node in one["nodes"]), 1, 6)
            self.assertIn(f"{first['share'] * 100:.1f} %  ", text)
            advised = [each for each in one["candidates"] if each["share"] > 0.1]
            for each in advised:
                lead = "" if len(advised) == 1 else each["point"] + ": "
                self.assertIn(" ".join((lead + each["advice"]).split()), " ".join(text.split()))
            self.assertIn(f"same point in {one['agreements']} of 6 baselines", text)
            self.assertEqual(one["walk"]["agrees"], one["walk"]["point"] == first["point"])
            peaks = [event["peak"] for event in one["events"]]
            self.assertIn(fault["peak_epoch"], [peak["epoch"] for peak in peaks])
            self.assertEqual(re.sub("[^0-9]", "", peaks[0]["local"])[:14], compact(peaks[0]["epoch"]))

    def check_overview(self, truth, analyses):
        """A screen of ASCII that names the planted point, and leads to an explanation that does, too."""
        overview = self.run_explain("--overview", truth["start"], truth["end"])[1]
        self.assertEqual([line for line in overview.split("\n") if len(line) > 80 or not line.isascii()], [])
        self.assertRegex(overview, r"^\d+ of \d+ intervals, newest row 14:29:30\s+2023-01-0\d \d\d:\d\d to (2023-01-05 )?14:30\n")
        head, _, events = overview.partition("Events, the newest first\n")
        self.assertEqual("No point was slow" in head, not analyses)
        for point in truth["explain"]["points"][:1]:
            self.assertIn(point, head.partition("Delay, ")[0])
            command = re.search(r"^    (zorv-explain (?:.*\\\n)*.*)", events, re.M)[1]
            self.assertIn(point, subprocess.check_output(command, shell=True, text=True, cwd=BIN, env={**os.environ, "PATH": f"{BIN}:/bin"}))

    def check_told_errors(self, truth, errors):
        """What was planted holds the errors, and nothing else is claimed."""
        fault = truth["fault"] or {}
        planted = [(fault["error_type"], fault["point"], fault["start_epoch"])] if fault.get("error_type") else []
        self.assertEqual([(one["type"]["name"], one["points"][0]["point"], one["event"]["start"]["epoch"])
                          for one in errors["analyses"]], planted)

    def check_errors(self, truth):
        """The point at the top is listed with its count, and the walk to the planted one has the planted points."""
        fault, dates = truth["fault"], f"{truth['start']} {truth['end']}"

        def counted(point):
            with closing(sqlite3.connect(self.root / DATABASE)) as database:
                tables = database.execute("select tablename from table_flag").fetchall()
                count = sum(number for table, in tables for number, in database.execute(
                    f"select {fault['error_column']} from {table} natural join version_nmaps where locatename = ? "
                    "and curtime between ? and ?", (point, truth["start_epoch"], truth["end_epoch"])))
            return rf"^\d+ +{point} +{count} +"

        listed = self.run_lines(f"showallerr {dates}\n")[1].split("-" * 100 + "\n")
        part = next(part for part in listed if f"Error Code Type:{fault['error_type']} " in part)
        self.assertRegex(part, re.compile(counted(fault["path"][0]), re.M))
        if fault["answer"]:
            screen = self.run_lines(f"errcodeshow {fault['error_type']} ALL {dates}\n")[1]
            section = screen.partition(f"\n{fault['point']:<32}{fault['graph']:<32}\n")[2].partition(EQUALS)[0]
            rows = re.findall(r"^\d.*", section, re.M)
            self.assertEqual([row.split()[1] for row in rows], fault["walk"][-1]["points"])
            self.assertRegex(rows[-1], f"{counted(fault['point'])}{fault['advice'] or '---'}$")

    def test_errors_of_any_kind_and_point(self):
        for kind, point, is_answer in (
                ("IORETRY", "SPACE_BLOCK_VOL_LOC_WRITE", True),  # with points below it
                ("IOACCESSDENY", "SMB_KERBEROS_TICKET_FAIL", True),  # below a hand-over
                ("IOERROR", "BDM_DISK_PATH_LOST", True),  # below two
                ("IOERROR", "ZONETASK_ALLOC_CKG", False)):  # in a graph to which nothing hands over
            with self.subTest(kind=kind, point=point):
                truth = self.simulate("--scenario", "error-burst", "--end", "20230105143000",
                                      "--error-type", kind, "--error-point", point)
                fault = truth["fault"]
                self.assertEqual((fault["error_type"], fault["point"], fault["answer"]), (kind, point, point if is_answer else None))
                self.check_errors(truth)
                self.check_told_errors(truth, self.explain(truth["start"], truth["end"])[2]["errors"])

    def test_every_scenario(self):
        for scenario, truth in self.worlds():
            with self.subTest(scenario=scenario):
                covered = self.check_detection(truth["start_epoch"], truth["end_epoch"])
                status, text, found = self.explain(truth["start"], truth["end"])
                self.check_explanation(truth, status, text, found["analyses"])
                self.check_overview(truth, found["analyses"])
                self.check_told_errors(truth, found["errors"])
                self.check_analysis(truth, [one["graph"] for one in found["analyses"]], covered)
                _, screen, err = self.run_lines(f"delaydetect {truth['start']} {truth['end']}\n", "--hints")
                is_unflagged = screen == DELAY_HEADER and any(look["samples_in_events"] for look in found["looks"])
                self.assertEqual("an event that the detector cannot flag: see explain\n" in err, is_unflagged, err)
                if (truth["fault"] or {}).get("error_type"):
                    self.check_errors(truth)


if __name__ == "__main__":
    unittest.main()
