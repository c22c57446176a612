"""delaydetect on every scenario against an independent computation over the same database; simudetect; alarms."""
import contextlib
import random
import sqlite3
import unittest

from console import DATABASE, POINTS, SIMU_HEADER, ConsoleTest, compact, delay_listing, worst_anomaly

ALARM = "alarm 0xF00C90150 of module 422, type 1: faultDiagnose\n"
# At a quarter of the half hour; the synthetic series is shifted by the zone's eight hours.
SPIKES = "".join(f"{point:<35}2021/8/3 7:7:30     20010               \n" for point in POINTS)


def anomalies(database, start, end):
    tables = [name for name, in database.execute("select tablename from table_flag")]
    for point in POINTS:
        samples = [row for table in tables for row in database.execute(
            f"select curtime, avgdelay from {table} join version_nmaps using (locateid) "
            "where locatename = ? and curtime between ? and ?", (point, start, end))]
        for when, delay in worst_anomaly(samples):
            yield point, when, delay


class Detect(ConsoleTest):
    def expect_anomalies(self, start, end):
        with contextlib.closing(sqlite3.connect(self.root / DATABASE)) as database:
            expected = delay_listing(anomalies(database, start, end))
        self.expect(f"delaydetect {compact(start)} {compact(end)}\n", 0, expected)

    def test_every_scenario(self):
        for scenario, truth in self.worlds():
            start, end = truth["start_epoch"], truth["end_epoch"]
            for first, last in ((start, end), (start + 2000, end - 4321), (start, start + 600)):
                with self.subTest(scenario=scenario, first=first, last=last):
                    self.expect_anomalies(first, last)
            with self.subTest(scenario=scenario):
                self.expect("showvalidtime\n", 0, "\t\tThe earliest timestamp that can be diagnosed is "
                                                  f"{truth['start']}.\n")
                self.expect(f"datashow NAS_TRANS_ALL {truth['start']} {truth['end']} 10\n", 0,
                            "\nSmartDiagnose DetectData Show\n")

    def test_random_series(self):
        """The worlds above are clean; here much lies close to three deviations, on both sides."""
        for seed in range(10):
            noise = random.Random(seed)
            self.statistics({"lumo_data_" + compact(0): [
                (point, when, int(noise.gauss(1000, 100))) for point in POINTS for when in range(300)]})
            with self.subTest(seed=seed):
                self.expect_anomalies(0, 300)

    def test_simudetect_raises_the_alarm_with_switch_value_1_only_and_three_times_a_day(self):
        simulate = "simudetect 20210803150000 20210803153000\n"
        for value, alarms in (("on-silent", 0), ("on", 3)):
            self.run_lines(f"switch set {value}\n")
            err = self.expect(4 * simulate, 0, 4 * (SIMU_HEADER + SPIKES))
            self.assertEqual(err.count(ALARM), alarms, err)
        self.run_lines("switch set off\n")
        self.expect(simulate, 1, "\t\t[ERROR]: fault diagnose switch is off\n")


if __name__ == "__main__":
    unittest.main()
