"""A console that goes on running while its statistics database is deleted and created anew."""
import os
import subprocess
import unittest

from console import DATABASE, DELAY_HEADER, POINTS, ConsoleTest, compact, delay_listing, eventually

START = 1672885800
DETECT = f"delaydetect {compact(START)} {compact(START + 3600)}"
END = "2 (on-silent, the default: no value is stored), from node 1\n"  # what "switch get" prints, to know where a screen ends
CYCLES = 1000


def generation(number):
    """A database whose only anomaly tells which one it is."""
    return {"lumo_data_" + compact(START): [
        (POINTS[3], START + 30 * i, 10000 + number if i == 7 else 100) for i in range(20)]}


def listing(number):
    return delay_listing([(POINTS[3], START + 210, 10000 + number)])


class Running(ConsoleTest):
    def setUp(self):
        super().setUp()
        self.statistics(generation(0))
        self.log = self.root / "log"
        self.console = self.start("--log", self.log, stdout=subprocess.PIPE, text=True)
        self.assertEqual(self.answer(), listing(0))

    def tearDown(self):
        self.console.stdin.close()
        self.assertEqual(self.console.wait(), 0)
        self.console.stdout.close()

    def ask(self):
        self.console.stdin.write(DETECT + "\nswitch get\n")
        self.console.stdin.flush()

    def screen(self):
        lines = list(iter(self.console.stdout.readline, END))
        return "".join(lines)

    def answer(self):
        self.ask()
        return self.screen()

    def descriptors(self):
        return len(os.listdir(f"/proc/{self.console.pid}/fd"))

    def is_watching(self):
        return any("inotify" in os.path.realpath(link.path) for link in os.scandir(f"/proc/{self.console.pid}/fd"))

    def failed_openings(self):
        return self.log.read_text().count("sqlite3_open faild:14")

    def create_anew(self, number):
        if number % 2 == 0:
            self.statistics(generation(number))
        else:
            self.statistics(generation(number), to="new.db")
            (self.root / "new.db").replace(self.root / DATABASE)

    def test_answers_come_from_the_file_of_the_moment(self):
        for number in range(1, 5):
            self.create_anew(number)
            with self.subTest(number):
                if number % 2 == 1:  # renamed into place: there is a file at every moment
                    self.assertEqual(self.answer(), listing(number))
                else:  # between the two the plug-in may see that there is none, and has to see the new one
                    self.assertTrue(eventually(lambda: self.answer() == listing(number)))
        before = self.failed_openings()
        (self.root / DATABASE).unlink()
        self.assertTrue(eventually(lambda: self.failed_openings() > before))
        self.assertEqual(self.answer(), DELAY_HEADER)

    def test_a_thousand_new_files_under_queries_leak_nothing(self):
        self.assertTrue(eventually(self.is_watching))  # the watcher begins beside the first answers
        before = self.descriptors()
        asked = 0
        for number in range(1, CYCLES + 1):
            self.create_anew(number)
            if number % 50 == 0:
                self.ask()
                asked += 1
        possible = {DELAY_HEADER, *(listing(number) for number in range(CYCLES + 1))}
        for _ in range(asked):
            self.assertIn(self.screen(), possible)
        self.assertTrue(eventually(lambda: self.answer() == listing(CYCLES)))
        self.assertTrue(eventually(lambda: self.descriptors() == before), self.descriptors() - before)


if __name__ == "__main__":
    unittest.main()
