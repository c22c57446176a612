"""Whole screens and exit statuses of everything that goes wrong, and of the switch."""
import subprocess
import unittest

from console import BIN, CONFIG, DATABASE, DELAY_HEADER, POINTS, ConsoleTest, compact, delay_listing, error

START = 1672885800  # 2023-01-05 10:30 local time
RANGE = f"{compact(START)} {compact(START + 3600)}"
TABLE = "lumo_data_" + compact(START)
SHOW = "\nSmartDiagnose DetectData Show\n"
SERIES = [(POINTS[0], START + 30 * number, 5000 if number == 7 else 100) for number in range(20)]
FOUND = delay_listing([(POINTS[0], START + 210, 5000)])


class Screens(ConsoleTest):
    def test_databases(self):
        cases = [
            # what it is about, tables (None: no database), command, exit status, screen
            ("sound", {TABLE: SERIES}, "delaydetect", 0, FOUND),
            ("no database", None, "delaydetect", 0, DELAY_HEADER),
            ("no database, without effect on datashow", None, "datashow X", 0, SHOW),
            ("no tables", {}, "delaydetect", 0, DELAY_HEADER),
            ("name shorter than the prefix", {"lumo": SERIES}, "delaydetect", 1, error("inner err")),
            ("name without a time", {"lumo_data_x": SERIES}, "delaydetect", 1, error("inner err")),
            ("null time", {TABLE: [(POINTS[3], None, 1), *SERIES]}, "delaydetect", 0, FOUND),
            ("null delay", {TABLE: [*SERIES, (POINTS[3], START, None)]}, "delaydetect", 1, error("inner err")),
            ("no number", {TABLE: [*SERIES, (POINTS[3], START, "x")]}, "delaydetect", 1, error("inner err")),
            ("too large", {TABLE: [*SERIES, (POINTS[3], START, "9" * 30)]}, "delaydetect", 1, error("inner err")),
        ]
        for name, tables, command, status, screen in cases:
            with self.subTest(name):
                (self.root / DATABASE).unlink(missing_ok=True)
                if tables is not None:
                    self.statistics(tables)
                count = " 10" if command.startswith("datashow") else ""
                self.expect(f"{command} {RANGE}{count}\n", status, screen)
                if tables == {}:
                    self.expect("showvalidtime\n", 1, error("inner err"))

    def test_configurations(self):
        for name, text in (("missing", None), ("malformed", '{"SAN_IO_READ": '), ("no object", "[1]"),
                           ("deep", "[" * 1_000_000), ("binary", "\0\x7f{"), ("empty", "")):
            with self.subTest(name):
                if text is not None:
                    (self.root / CONFIG).write_text(text)
                self.assertIn("Json spectrum pasrse failed.", self.expect(f"delaydetect {RANGE}\n", 0, DELAY_HEADER))

    def test_arguments(self):
        huge, binary = "7" * (1 << 20), b"\xff\x01\x80%s%n".decode("latin-1")
        cases = [
            ("delaydetect", error("input err")),
            ("delaydetect 1 2 3", error("input err")),
            ("delaydetect 2147483648", error("input err")),
            ("delaydetect -1", error("input err")),
            ("delaydetect ''", error("input err")),
            ("delaydetect 99999999999999999999 99999999999999999999", error("date input err")),
            (f"delaydetect {huge}", error("input err")),
            (f"delaydetect {huge} {huge}", error("date input err")),
            (f"delaydetect {binary} {binary}", error("date input err")),
            ("delaydetect 20210803150000 20210803150000", error("date input err")),
            ("delaydetect 20210803150000 20210805150001", error("Time range beyond two days")),
            ("simudetect", error("input err")),
            ("simudetect 2021 2022", error("input datetime err")),
            ("simudetect 20210803150000 20210903150000", error("inner err")),
            (f"simudetect {huge} {binary}", error("input datetime err")),
            (f"datashow {binary} {RANGE} 99999999999", SHOW + error("inner err")),
            (f"datashow {huge} {RANGE} {huge}", SHOW + error("inner err")),
            ("datashow", error("input err")),
            ("showvalidtime now", error("input err")),
        ]
        for line, screen in cases:
            with self.subTest(line[:60]):
                self.expect(line.encode("latin-1") + b"\n", 1, screen)
        # One console for all: what went wrong before leaves nothing behind.
        self.statistics({TABLE: SERIES})
        lines = [line.encode("latin-1") for line, _ in cases] + [f"delaydetect {RANGE}\n".encode()]
        self.expect(b"\n".join(lines), 1, "".join(screen for _, screen in cases) + FOUND)

    def test_lines_of_a_pipe(self):
        cases = [
            ("", 0, "", ""),
            ("# a comment\n\n  # another\n", 0, "", ""),
            ("# worst of three\nswitch get\nshowvalidtime now\nswitch get", 1,
             "{unset}" + error("input err") + "{unset}", ""),
            ("showvalidtime now\ndelaydetct 1\nswitch get\n", 2, error("input err") + "{unset}",
             "did you mean 'delaydetect'?"),
            ("quit\nshowvalidtime now\n", 0, "", ""),
            ("switch set on\nswitch get\nswitch set off\nswitch set on-silent\n", 0,
             "old value: {none}\nnew value: 1 (on), confirmed by node 1\n1 (on), from node 1\n"
             "old value: 1 (on)\nnew value: 3 (off), confirmed by node 1\n"
             "old value: 3 (off)\nnew value: 2 (on-silent), confirmed by node 1\n", ""),
            ("switch set sideways\n", 2, "", "on, on-silent or off"),
        ]
        for lines, status, screen, complaint in cases:
            with self.subTest(lines):
                screen = screen.replace("{unset}", "{none}, from node 1\n")
                screen = screen.replace("{none}", "2 (on-silent, the default: no value is stored)")
                self.assertIn(complaint, self.expect(lines, status, screen))

    def test_what_cannot_start(self):
        for options in (["--root", "/no/such/root"], ["--root", self.root, "--plugin", "/no/such/file.so"]):
            with self.subTest(options):
                run = subprocess.run([BIN / "zorv-local", *options, "showvalidtime"], capture_output=True, text=True)
                self.assertEqual((run.returncode, run.stdout), (3, ""))
                self.assertIn("/no/such/", run.stderr)


if __name__ == "__main__":
    unittest.main()
