"""Captures: the answers are those of the node, and of the captured files no byte, name or time changes."""
import hashlib
import io
import json
import os
import re
import resource
import shutil
import signal
import sqlite3
import subprocess
import tarfile
import unittest
from contextlib import closing
from pathlib import Path

import jsonschema

from console import BIN, CONFIG, DATABASE, HEAL_DATABASE, ConsoleTest, eventually

MANIFEST = jsonschema.Draft7Validator(json.loads((Path(__file__).parents[2] / "docs/manifest.schema.json").read_text()))
RANGE, WORDS = "20230105103000 20230105143000", "2023/1/5 10:30:0 '2023-01-05 14:30'"
POINT = "TGT_LUMO_HOST_READ"
LINES = "\n".join(["switch set on", f"simudetect {RANGE}", f"delaydetect {RANGE}", f"delayanal {RANGE}", "showvalidtime",
                   f"showallerr {RANGE}", f"errcodeshow IOERROR ALL {RANGE}", f"errcodeshowall {RANGE}",
                   f"showgraph maplumodata {POINT} {RANGE}", f"showfaultfactor POOL {RANGE}", f"datashow {POINT} {RANGE} 10",
                   f"explain {RANGE}", "switch set off", f"delaydetect {RANGE}"])
COPY, NEXT, CHANGED = ": working on a copy of ", ". Copy it from the node again.", " is not what the manifest tells of: it was changed, damaged or left out"
CHANGE = "begin; update lumo_data_20230105120000 set avgdelay = 77777 where curtime <= 1672893300;"
HOT, WAL = "pragma cache_size = 1;" + CHANGE, "pragma journal_mode = wal; pragma wal_autocheckpoint = 0;"
STALE = WAL + "drop table if exists more; create table more as select * from lumo_data_20230105120000; pragma wal_checkpoint(restart);"  # old frames stay
ENDLESS = "view table_flag as with recursive c(x) as (select 1 union all select x from c) select count(*) as tablename from c"
TWICE = STALE + 2 * "insert into more select * from more limit 999;"


class Capture(ConsoleTest):
    def setUp(self):
        super().setUp()
        self.temporary, self.capture = self.root / "tmp", self.root / "capture"
        self.temporary.mkdir()
        self.database, self.limit = self.capture / DATABASE, None
        self.environment = {**os.environ, "TZ": "EST5", "TMPDIR": str(self.temporary)}
        self.simulate("--scenario", "slow-disk", "--step", "60", "--end", "20230105143000")

    def seize(self, script="", closes=False):
        """Copies the files of the node while, or after, a writer runs the script; what it left open is rolled back."""
        shutil.rmtree(self.capture, ignore_errors=True)
        node = sqlite3.connect(self.root / DATABASE)
        node.executescript(script)
        closes and node.close()
        shutil.copytree(self.root / "VRA", self.capture / "VRA")
        node.close()

    def picture(self):
        """Of everything in the capture: name, time, size and bytes."""
        return {str(path): (path.lstat().st_mtime_ns, path.lstat().st_size, path.is_file() and path.stat().st_size < 1 << 30
                            and hashlib.sha256(path.read_bytes()).digest()) for path in [self.capture, *self.capture.rglob("*")]}

    def run_program(self, program, *words, lines="", zone="+0800"):
        before = self.capture.exists() and self.picture()
        done = subprocess.run([BIN / program, *(zone and ["--zone", zone]), *words], input=lines, capture_output=True, text=True,
                              env=self.environment, preexec_fn=self.limit)
        self.assertEqual(self.capture.exists() and self.picture(), before)
        self.assertEqual(self.temporary.exists() and os.listdir(self.temporary), self.temporary.exists() and [])
        return done.returncode, done.stdout, done.stderr

    def test_answers_are_those_of_the_node(self):
        lone, missing = "is in WAL mode" + COPY, "-wal is missing or empty: unless the node had closed the database, "
        for name, script, closes, sentences in (
                ("rolled back", HOT, False, ["left unfinished, it is rolled back" + COPY]),
                ("persistent", "pragma journal_mode = persist; create table more(a);", False, []),
                ("closed wal", WAL, True, [lone, missing]), ("wal", STALE + CHANGE + "commit", False, [lone])):
            with self.subTest(name):
                sound = (self.root / DATABASE).read_bytes()
                self.seize(script, closes)
                self.assertTrue(name != "rolled back" or self.database.read_bytes() != sound, "nothing was spilled")
                *expected, _ = self.run_program("zorv-local", "--root", self.root, lines=LINES)
                *found, err = self.run_program("zorv-local", "--capture", self.capture, lines=LINES.replace(RANGE, WORDS))
                self.assertEqual((found, "77777" in found[1], "alarm 0xF00C90150" in err), (expected, name == "wal", True))
                self.assertEqual("-wal " in err, missing in sentences, err)
                self.assertEqual((err.count(COPY), [sentence in err for sentence in sentences]),
                                 (len(sentences[:1]), [True] * len(sentences)), err)
                for program, *words in (["zorv-local", "explain"], ["zorv-explain"]):
                    _, text, err = self.run_program(program, "--capture", self.capture, *words, "2023/1/5", "10:30", "2023-01-05 14:30")
                    self.assertTrue(text and text in expected[1], err)
                    self.assertIn("2023-01-05 10:30:00 to 2023-01-05 14:30:00, zone +08:00\n", err)
                json = self.run_program("zorv-explain", "--capture", self.capture, "--json", *RANGE.split())[1]
                self.assertIn(hashlib.sha256(self.database.read_bytes()).hexdigest(), json)
            shutil.rmtree(self.root / "VRA/coffer_log")

    def test_captures_that_are_taken(self):
        """They are whole, of one moment, and told apart by their manifest; the node stays as it is."""
        expected = self.run_program("zorv-explain", "--root", self.root, *RANGE.split())[1]
        os.makedirs(self.root / "VRA/coffer_log/log/heal/data")
        (self.root / "VRA/coffer_log/log/heal/data/faultDiagSwitch.ini").write_text("[zorvmode]\nvalue=3\n")
        node, archive, flat = (self.temporary.parent / name for name in ("node", "rack 7.tar.zst", "flat"))
        for script, target, name in (("", node, ["--name", "san-7"]), (WAL + "create table more(a);", archive, [])):
            writer = sqlite3.connect(self.root / DATABASE)
            writer.executescript(script)
            files = {path: path.read_bytes() for path in (self.root / "VRA").rglob("*") if path.is_file() and path.suffix != ".db-shm"}
            words = ["capture", *name, "--timeout", "9", target]
            status, out, err = self.run_program("zorv-local", "--root", self.root, "--node", "7", *([] if script else words),
                                                lines=" ".join(f"'{word}'" for word in words))
            self.assertEqual((status, "; 4 files of " in out, err), (0, True, ""))
            self.assertEqual({path: path.read_bytes() for path in files}, files)
            writer.close()
        self.assertEqual(list(self.root.glob(".*")), [])
        with tarfile.open(fileobj=io.BytesIO(subprocess.run(["zstd", "-dc", archive], check=True, capture_output=True).stdout)) as packed:
            self.assertIn("rack 7/VRA/data/zorv/zorv_heal.db", packed.getnames())
        manifest = json.loads((node / "manifest.json").read_text())
        MANIFEST.validate(manifest)
        self.assertEqual((manifest["node"], manifest["number"], manifest["statistics"]["start"]["epoch"]), ("san-7", 7, 1672885800))
        self.assertEqual([file["sha256"] for file in manifest["files"]],
                         [hashlib.sha256((node / file["path"][1:]).read_bytes()).hexdigest() for file in manifest["files"]])
        (flat / "a/b").mkdir(parents=True)
        for file in (DATABASE, HEAL_DATABASE, CONFIG):
            shutil.copy(node / file, flat / "a/b")
        manifests, tables = "node 7, san-7; zone +08:00, by the manifest", "zone +08:00, in which the tables' names fit the times"
        for place, said in ((node, manifests), (archive, "; zone +08:00, by the manifest"), (flat, tables), (flat / "a", tables)):
            for program, *words in (["zorv-explain"], ["zorv-local", "explain"]):
                status, out, err = self.run_program(program, "--capture", place, *words, *RANGE.split(), zone="")
                self.assertEqual((status, re.sub("  node        .*\n", "", out), "node        san-7" in out, err.count(said), COPY in err or CHANGED in err), (0, expected, place == node, 1, False), err)
        status, out, err = self.run_program("zorv-local", "--capture", flat, "status")
        self.assertIn(f"statistics     {flat}/a/b/lumo_diagnose_data.db\n", out)
        self.assertEqual(json.loads(self.run_program("zorv-fleet", "--json", node, *RANGE.split())[1])["nodes"][0]["node"], "san-7")
        for changed, as_long in ((CONFIG, False), (HEAL_DATABASE, True)):
            (node / changed).write_bytes((node / changed).read_bytes()[:-1] + b"\n" + b"\n" * (not as_long))
            self.assertIn(f"zorv-local: {node / changed}{CHANGED}", self.run_program("zorv-local", "--capture", node, "status")[2])
        (flat / "a/b/zorv_heal.db").unlink()
        err = self.run_program("zorv-explain", "--capture", flat, *RANGE.split())[2]
        self.assertIn(f"{flat}/{HEAL_DATABASE} is missing:", err)
        self.assertIn(f"Looked for a folder VRA and for a file zorv_heal.db in {flat} and up to two levels below.", err)

    def test_captures_that_cannot_be_taken(self):
        """Why not is told, and nothing half is left."""
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 18, 1 << 18))

        (self.root / "there").mkdir()
        (self.root / "there/file").touch()
        before = sorted(self.root.rglob("*"))
        for target, status, said in (("there", 1, "' is there already: nothing is replaced. Name another target."), ("x.tar.gz", 1, "an archive is packed as .tar.zst"),
                                     ("no/x", 1, " is not there."), ("full", 1, "Is there space where the capture goes?"), ("x", 2, "--timeout is a number of seconds")):
            self.limit = limit if target == "full" else None
            words = ["capture", self.root / target, *(["--timeout", "soon"] if status == 2 else [])]
            found, _, err = self.run_program("zorv-local", "--root", self.root, *words)
            self.assertEqual((found, said in err, sorted(self.root.rglob("*"))), (status, True, before), err)
        writer = sqlite3.connect(self.root / DATABASE)
        writer.execute("begin exclusive")  # so it waits
        with subprocess.Popen([BIN / "zorv-local", "--root", self.root, "capture", self.root / "x"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as taking:
            self.assertTrue(eventually(lambda: list(self.root.glob(".x.*"))))
            taking.send_signal(signal.SIGTERM)
            self.assertEqual(taking.wait(), -signal.SIGTERM)
        writer.close()
        self.assertEqual(sorted(self.root.rglob("*")), before)

    def test_captures_beside_a_writer(self):
        """Every instant that they hold has all points."""
        with subprocess.Popen([BIN / "lumo-sim", "--root", self.root, "--live", "--hours", "4", "--speed", "86400", "--end", "20230105143000"],
                              stdout=subprocess.PIPE, text=True) as producer:
            self.assertIn("started", producer.stdout.readline())
            for number in range(3):
                status, _, err = self.run_program("zorv-local", "--root", self.root, "capture", self.root / f"c{number}")
                self.assertEqual(status, 0, err)
                files = json.loads((self.root / f"c{number}/manifest.json").read_text())["files"]
                self.assertLessEqual(files[0]["restarts"], 3)
                with closing(sqlite3.connect(self.root / f"c{number}" / DATABASE)) as database:
                    points, = database.execute("select count(*) from version_nmaps").fetchone()
                    rows = [row for table, in database.execute("select tablename from table_flag").fetchall()
                            for row in database.execute(f"select curtime, count(distinct locateid), count(*) from {table} group by 1")]
                self.assertEqual(rows, [(when, points, points) for when in range(rows[0][0], rows[-1][0] + 1, 30)])
            producer.terminate()

    def test_archives(self):
        """Answers are those of the node; what would leave the folder, or fill a disk, is refused."""
        def add(name, kind=tarfile.REGTYPE, size=0):
            info = tarfile.TarInfo(name)
            info.type, info.size, info.linkname = kind, size, "node"
            packed.addfile(info, io.BytesIO(bytes(size)))

        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 16, 1 << 16))

        expected, archive = self.run_program("zorv-explain", "--root", self.root, *RANGE.split())[1], self.root / "archive"
        huge, refused = tarfile.TarInfo("huge"), "An archive of a node has folders and ordinary files with relative names."
        huge.size = 1 << 40
        for how, damage, said in (
                ("", None, ""), ("gzip", None, ""), ("xz", None, ""), ("zstd", None, ""),
                ("", lambda: add("a/../../x"), refused), ("", lambda: add("/tmp/x"), refused),
                ("", lambda: add("x", tarfile.SYMTYPE), refused),
                ("", lambda: add("x", tarfile.LNKTYPE, 600), refused),
                ("", lambda: add("x", tarfile.CHRTYPE), refused), ("", lambda: add("x", tarfile.FIFOTYPE), refused),
                ("", lambda: [add(f"x{i}") for i in range(10000)], "has more than 10000 entries"),
                ("xz", lambda: (packed.fileobj.truncate(0), packed.fileobj.seek(0), add("x", tarfile.REGTYPE, 1 << 27)), "unpacks to more than 200 times its size"),
                ("", lambda: packed.fileobj.write(huge.tobuf()), "would take more than 68719476736 bytes"),
                ("", lambda: add("other/VRA/x"), "holds several nodes, in /"), ("zstd", "cut", "cut short or damaged: "),
                ("", "full", "File too large. Make room, or name another place with TMPDIR.")):
            with self.subTest((how, said)), tarfile.open(archive, "w") as packed:
                packed.add(self.root / "VRA", "home/node/VRA")
                callable(damage) and damage()
                packed.close()
                how and archive.write_bytes(subprocess.run([how, "-c", archive], check=True, capture_output=True).stdout)
                damage == "cut" and os.truncate(archive, os.stat(archive).st_size // 2)
                self.limit = limit if damage == "full" else None
                for program, *words in (["zorv-explain"], ["zorv-local", "explain"])[:1 if said else 2]:
                    status, out, err = self.run_program(program, "--capture", archive, *words, *RANGE.split())
                    self.assertEqual((status, out), (3, "") if said else (0, expected), err)
                    self.assertIn(said, err)

    def test_damages(self):
        database, heal, config = self.database, self.capture / HEAL_DATABASE, self.capture / CONFIG
        wal, journal = Path(f"{database}-wal"), Path(f"{database}-journal")
        size, healing = os.stat(self.root / DATABASE).st_size, " without the healing events the plug-in opens no database."
        def overwrite(place, count, file=wal):
            with file.open("r+b") as opened:
                opened.seek(place)
                opened.write(b"x" * count)

        def catalogue(created):
            sqlite3.connect(database).executescript("drop table table_flag; create " + created)

        cases = [  # damage, exit status, what is said, options, how the node was left
            (lambda: shutil.rmtree(self.capture), 3, "' is neither a directory nor an archive. Name the one that"),
            (database.unlink, 3, f"{database} is missing: without the statistics there is nothing to diagnose. Copy it from the node."),
            (lambda: os.truncate(database, 0), 3, f"{database} is empty: without the statistics there is nothing"),
            (lambda: os.truncate(database, 4096), 3, f"is cut short: it has 4096 of {size} bytes, and rows would be missing" + NEXT),
            (lambda: database.write_text("PK"), 3, f"{database} is no SQLite database, it begins with something else" + NEXT),
            (lambda: shutil.copy(heal, database), 3, f"{database} cannot be used: no such table: table_flag" + NEXT),
            (lambda: catalogue(ENDLESS), 3, f"{database} cannot be used: table_flag is no ordinary table" + NEXT),
            (lambda: catalogue("table table_flag(a, b as (a))"), 3, f"{database} cannot be used: table_flag has computed columns" + NEXT),
            (lambda: (database.unlink(), database.mkdir()), 3, f"{database} is not a file" + NEXT),
            (lambda: (database.unlink(), database.symlink_to(database)), 3, "cannot be read: Too many levels of symbolic links" + NEXT),
            (heal.unlink, 3, f"{heal} is missing:{healing} Copy it from the node, or go on without healing events by --empty-heal."),
            (lambda: os.truncate(heal, 0), 3, f"{heal} is empty:{healing}"),
            (heal.unlink, 0, f"{heal} is missing: an empty one stands in, so no healing events are told.", ["--empty-heal"]),
            (config.unlink, 1, f"{config} is missing: there are no graphs, so no causes are found. Copy it from the node."),
            (lambda: os.truncate(journal, 900), 3, f"{journal} is damaged: it holds what an unfinished transaction", [], [HOT]),
            (lambda: overwrite(99000, 999, journal), 3, f"{journal} is damaged: it holds what an unfinished transaction", [], [HOT]),
            (lambda: journal.write_text("x" * 9999), 3, f"{journal} is damaged: it holds what an unfinished transaction", [], [HOT]),
            (lambda: wal.write_text("x" * 99), 0, f"{database} has a -wal file beside it" + COPY),
            (lambda: os.mkfifo(wal), 0, f"{database} has a -wal file beside it" + COPY),
            (lambda: os.mkfifo(journal), 0, f"{database} has a -journal beside it that is no file, it is left out" + COPY),
            (lambda: os.truncate(config, 1 << 40), 3, f"{config} has {1 << 40} bytes, far more than on any node" + NEXT),
            (lambda: wal.write_text("x" * 99), 0, f"{database}-wal is damaged: unless the node had closed", [], [WAL, True]),
            (lambda: overwrite(24, 4), 0, f"{wal} is damaged: unless the node had closed", [], [TWICE]),
            (lambda: overwrite(5000, 9), 0, f"{wal} is damaged behind its first 0 frames: 2 committed transactions in ", [], [TWICE]),
            (lambda: os.truncate(wal, 9999), 0, f"{wal} ends with an incomplete transaction behind its first 0 frames", [], [TWICE]),
            (lambda: os.truncate(database, 4096), 3, "cannot be used: database disk image is malformed" + NEXT, [], [WAL, True]),
            (lambda: os.truncate(database, 1 << 43), 3, f"there is no space for a copy of {database}: it takes {1 << 43}", [], [WAL, True]),
            (self.temporary.rmdir, 3, f"no temporary directory can be made in {self.temporary}: No such file or directory. Name another"),
            # A folder that is not there: the thread sanitizer makes and removes a file of its own in one that is.
            (lambda: self.environment.update(TMPDIR=f"{self.capture}/tmp"), 3, f"{self.capture}/tmp lies in the capture {self.capture}, where"),
        ]
        for damage, expected, said, *more in cases:
            with self.subTest(said):
                self.seize(*(more[1:] or [[]])[0])
                damage()
                arguments = ["--capture", self.capture, *(more or [[]])[0]]
                status, out, err = self.run_program("zorv-local", *arguments, "delayanal", *RANGE.split())
                self.assertEqual((status, bool(out)), (expected, expected < 3), err)
                explained, _, explanation = self.run_program("zorv-explain", *arguments, *RANGE.split())
                self.assertEqual((explained, said in err, said in explanation), (3 if damage == config.unlink else expected, True, True), err)

    def test_status_and_alarms(self):
        self.seize(WAL)
        os.utime(self.database, (0, 0))
        alarms = self.capture / "VRA/coffer_log/log/alarm/alarms.jsonl"
        alarms.parent.mkdir(parents=True)
        alarms.write_text('{"alarmId": 64437682512, "module": 1, "node": 1, "text": "x", "time": 1, "type": 1}\n')
        alarms.chmod(0o400)
        _, out, err = self.run_program("zorv-local", "--capture", self.capture,
                                       lines=f"switch set on\ndelaydetect {RANGE}\nalarms\nstatus\n")
        self.assertEqual(out.count("0xF00C90150"), 2, err)
        self.assertRegex(out, f"statistics     {self.database}\n.*, changed 1970-01-01 08:00:00, ")

    def test_a_log_is_no_file_that_is_read(self):
        self.seize()
        beside, world = self.root / "beside", self.root / DATABASE
        beside.mkdir()
        (beside / "to_new").symlink_to("../capture/VRA/new")
        (beside / "folder").symlink_to(self.capture)
        (self.capture / "notes").touch()
        for name, file in (("notes", self.capture / "notes"), ("configuration", self.root / CONFIG)):
            os.link(file, beside / name)
        for option, directory, log, why in (
                ("--capture", self.capture, self.capture / "VRA/../log", "in the capture"), ("--capture", self.capture, beside / "to_new", "in the capture"),
                ("--capture", self.capture, beside / "folder/a/log", "in the capture"), ("--capture", self.capture, beside / "notes", "in the capture"),
                ("--root", self.root, beside / "configuration", f"{self.root / CONFIG}, which is read"),
                ("--root", self.root, f"{world}-journal", f"{world}-journal, which is read"), ("--root", self.root, beside / "log", None)):
            with self.subTest(log=log):
                status, _, err = self.run_program("zorv-local", option, directory, "--log", log, "help")
                self.assertEqual((status, f"'{log}' is not written: it is {why}" in err), (3, True) if why else (0, False), err)

    def test_the_temporary_root_goes_with_the_process(self):
        self.seize(WAL)
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGKILL):
            with subprocess.Popen([BIN / "zorv-local", "--capture", self.capture], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, env=self.environment, start_new_session=True) as console:
                console.stdin.write(b"switch set off\n")
                console.stdin.flush()
                self.assertIn(b"old value", console.stdout.readline())
                root, = self.temporary.iterdir()
                self.assertEqual(root.stat().st_mode & 0o777, 0o700)
                os.killpg(console.pid, number)
                self.assertTrue(eventually(lambda: not root.exists()))


if __name__ == "__main__":
    unittest.main()
