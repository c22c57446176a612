"""delaydetect on random series, beside what is wrong with a database or a command; simudetect and its alarms."""
import random
import unittest

from console import DATABASE, DELAY_HEADER, POINTS, SIMU_HEADER, ConsoleTest, compact, delay_listing, error

ALARM = "alarm 0xF00C90150 of module 422, type 1: faultDiagnose\n"
# At a quarter of the half hour; the synthetic series is shifted by the zone's eight hours.
SPIKES = "".join(f"{point:<35}2021/8/3 7:7:30     20010               \n" for point in POINTS)
START = 1672885800  # 2023-01-05 10:30 local time
RANGE = f"{compact(START)} {compact(START + 600)}"
TABLE = "lumo_data_" + compact(START)
SERIES = [(POINTS[0], START + 30 * number, 5000 if number == 7 else 100) for number in range(20)]
FOUND = delay_listing([(POINTS[0], START + 210, 5000)])
SWITCH = "VRA/coffer_log/log/heal/data/faultDiagSwitch.ini"
SHOW = "\nSmartDiagnose DetectData Show\n"


class Detect(ConsoleTest):
    def test_random_series(self):
        """The worlds of lumo-sim are clean; here much lies close to three deviations, on both sides."""
        for seed in range(10):
            noise = random.Random(seed)
            self.statistics({"lumo_data_" + compact(0): [
                (point, when, int(noise.gauss(1000, 100))) for point in POINTS for when in range(300)]})
            with self.subTest(seed=seed):
                self.expect_anomalies(0, 300)

    def test_databases(self):
        rests = "zorv-local: line 1: the answer rests on "
        part = rests + "a part of the range: rows from 2023-01-05 10:3"
        cases = [  # tables, exit status, screen, what is said of the answer
            (None, 1, DELAY_HEADER, rests + "no rows: no database is open"),
            ({}, 1, DELAY_HEADER, rests + "no rows: the statistics have none\n"),
            ({TABLE: [(POINTS[0], START - 30, 1)]}, 1, DELAY_HEADER, rests + "no rows: the statistics have rows from"),
            ({TABLE: [(POINTS[3], START + 1800, 1)]}, 1, DELAY_HEADER, rests + "no rows: the statistics have rows from"),
            ({"lumo": SERIES}, 1, error("inner err"), ""),
            ({TABLE: [(POINTS[3], None, 1), *SERIES]}, 0, FOUND, ""),
            ({TABLE: [*SERIES, (POINTS[3], START, None)]}, 1, error("inner err"), ""),
            ({TABLE: [*SERIES, (POINTS[3], START, "x")]}, 1, error("inner err"), ""),
            ({TABLE: [*SERIES, (POINTS[3], START, "9" * 30)]}, 1, error("inner err"), ""),
            ({TABLE: [], "lumo_data_" + compact(START + 1): SERIES[::-1]}, 0, FOUND, ""),
            ({TABLE: SERIES[2:19]}, 0, FOUND, ""),
            ({TABLE: SERIES[3:]}, 1, FOUND, part + "1:30 to 2023-01-05 10:39:30, 17 of 20 intervals\n"),
            ({TABLE: SERIES[:18]}, 1, FOUND, part + "0:00 to 2023-01-05 10:38:30, 18 of 20 intervals\n"),
            ({TABLE: SERIES[:9] + SERIES[12:]}, 0, FOUND, ""),
            ({TABLE: SERIES[:9] + SERIES[13:]}, 1, FOUND, part + "0:00 to 2023-01-05 10:39:30, 16 of 20 intervals\n"),
            ({TABLE: [(point, when + shift, delay) for shift, point in enumerate(POINTS[:2]) for _, when, delay in SERIES]},
             0, FOUND + delay_listing([(POINTS[1], START + 211, 5000)])[len(DELAY_HEADER):], ""),
        ]
        for tables, status, screen, said in cases:
            with self.subTest(tables=tables):
                (self.root / DATABASE).unlink(missing_ok=True)
                if tables is not None:
                    self.statistics(tables)
                err = self.expect(f"delaydetect {RANGE}\n", status, screen)
                self.assertEqual((said in err, "rests" in err), (True, said != ""), err)

    def test_mistakes(self):
        huge, binary = "7" * (1 << 20), "\xff\x01\x80%s%n"
        answers = {
            error("input err"): ["delaydetect", "delaydetect 1 2 3", "delaydetect -1", "delaydetect ''", f"delaydetect {huge}"],
            error("date input err"): [f"delaydetect {9 * huge[:20]} {huge}", f"delaydetect {binary} {binary}"],
            error("input datetime err"): ["simudetect 2021 2022", f"simudetect {huge} {binary}"],
            error("inner err"): ["simudetect 20210803150000 20210903150000"],
            SHOW + error("inner err"): [f"datashow {binary} {RANGE} 99999999999", f"datashow {huge} {RANGE} {huge}"],
            FOUND: [f"delaydetect {RANGE}"],  # nothing is left behind of all that
        }
        self.statistics({TABLE: SERIES})
        lines = "\n".join(line for mistakes in answers.values() for line in mistakes)
        screen = "".join(answer * len(mistakes) for answer, mistakes in answers.items())
        self.expect(lines.encode("latin-1"), 1, screen)

    def test_simudetect_raises_the_alarm_with_switch_value_1_only_and_three_times_a_day(self):
        simulate = "simudetect 20210803150000 20210803153000\n"
        for value, alarms in (("on-silent", 0), ("on", 3)):
            self.run_lines(f"switch set {value}\n")
            err = self.expect(4 * simulate, 0, 4 * (SIMU_HEADER + SPIKES))
            self.assertEqual(err.count(ALARM), alarms, err)
        (self.root / SWITCH).write_text("[heal]\nvalue=2147483648\n")
        self.expect("switch get\n", 0, "2 (on-silent, the default: what is stored is no value of the switch), from node 1\n")
        self.run_lines("switch set off\n")
        self.expect(simulate, 1, error("fault diagnose switch is off"))


if __name__ == "__main__":
    unittest.main()
