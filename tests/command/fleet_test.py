"""Many nodes: what zorv-fleet makes of their answers, of captures, and of hosts."""
import json
import os
import re
import shutil
import signal
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import jsonschema

from console import BIN, ConsoleTest, cells, eventually

FLEET = jsonschema.Draft7Validator(json.loads((Path(__file__).parents[2] / "docs/fleet.schema.json").read_text()))
RANGE = ("20230105103000", "20230105143000")
HOST, DISK, ACK, MIRROR = "TGT_LUMO_HOST_READ", "BDM_DISK_READ", "SPACE_IOTUNNEL_UC_ACK_WRITE", "WCACHE_MIRROR_SEND"
T = 1672894800
SURE, UNSURE, LOAD, WEAK = "sure", "unsure", "load", "weak"


def answer(name, *events, zone="+08:00", **more):
    """Of zorv-explain; an event is: start and end after T, point, extra delay, how sure, shares of points, on, graph."""
    def moment(seconds):
        return {"epoch": T + seconds, "local": "-"}

    def analysis(start, end, extra, how, shares, point=HOST, ongoing=False, graph="G"):
        nodes = [{"point": one, "baseline_delay_us": 100, "event_delay_us": 100 + extra} for one in (point, *shares)]
        candidates = [{"rank": 1, "point": one, "graph": graph, "share": share, "advice": "", "node": i + 1}
                      for i, (one, share) in enumerate(shares.items())]
        return {"point": point, "graph": graph, "verdict": how if how == LOAD else "point", "weak": how == WEAK,
                "ongoing": ongoing, "certainty": SURE if how == WEAK else how, "event": {"start": moment(start), "end": moment(end)},
                "nodes": nodes, "candidates": candidates, "reason": None, "events": [], "errors": [{"more": '"]}'}]}
    def errors(start, end, how, shares):
        return {"type": {"name": "IOERROR"}, "event": {"start": moment(start), "end": moment(end), "ongoing": False}, "certainty": how,
                "points": [{"point": one, "graph": "E", "advice": "", "share": share} for one, share in shares.items()]}
    more["errors"] = {"analyses": [errors(*event) for event in more.get("errors", [])], "types": []}
    return json.dumps({"version": 2, "node": name, "range": {"zone": zone}, "coverage": {"partial": False, "step_seconds": 30},
                       "analyses": [analysis(*event) for event in events], **more})


class Fleet(ConsoleTest):
    def fleet(self, *words, lines="", **more):
        done = subprocess.run([BIN / "zorv-fleet", *map(str, words)], input=lines, capture_output=True, text=True, **more)
        if "--json" in words and done.stdout:
            FLEET.validate(json.loads(done.stdout))
        return done.returncode, done.stdout, done.stderr

    def test_rules(self):
        """Which nodes are causes of which symptoms."""
        def slow(name, start=0, extra=1000, how=SURE, end=300, **more):
            return answer(name, (start, end, extra, how, {DISK: .9, HOST: .1}), **more)

        def waits(name, start=30, extra=300, end=330, point=ACK):
            return answer(name, (start, end, extra, SURE, {point: .6, DISK: .3, HOST: .1}))

        def itself(name, start=0, end=300):
            return answer(name, (start, end, 500, SURE, {HOST: .6, DISK: .4}))

        fine, alone = [answer(f"fine{i}") for i in range(5)], "waits for other nodes; none of those given is slow itself"
        three = [slow("a", extra=1000), slow("b", extra=1100), slow("c", extra=900)]
        two_graphs = answer("a", (0, 300, 500, SURE, {HOST: 1}), (0, 300, 500, SURE, {DISK: .8, HOST: .2}, HOST, False, "H"))
        for name, answers, expected, said in (
                ("one", [slow("a"), *fine], [("a " + DISK, "")], "a is slow at BDM_DISK_READ since 2023-01-05 13:00:00, over"),
                ("folded", [waits("b"), slow("a"), waits("c", point=MIRROR), *fine], [("a " + DISK, f"b {ACK}, c {MIRROR}")], "2 nodes that wait"),
                ("stronger first", [slow("a", extra=300), slow("b"), *fine], [("b " + DISK + ", a " + DISK, "")], "b is slow"),
                ("sure first", [slow("a", how=UNSURE), slow("b", extra=300), *fine], [("b " + DISK + ", a " + DISK, "")], "b is slow"),
                ("unsure", [slow("a", how=UNSURE), *fine], [("a " + DISK, "")], "which is unsure"),
                ("clocks differ", [slow("a", end=20), waits("b", 80, end=99), *fine], [("a " + DISK, "b " + ACK)], ""),
                ("apart", [slow("a", end=20), waits("b", 81, end=99), *fine], [("a " + DISK, ""), ("", "b " + ACK)], "There is 1 other incident."),
                ("a chain of symptoms", [slow("a", end=60), waits("b", 30, end=600), slow("c", 580, end=700), *fine],
                 [("a " + DISK, "b " + ACK), ("c " + DISK, "")], ""),
                ("no cause", [waits("b"), waits("c"), *fine], [("", f"b {ACK}, c {ACK}")], alone),
                ("all at once", three + [waits("d"), fine[0]], [(f"b {DISK}, a {DISK}, c {DISK}", "d " + ACK)], "4 of 5 nodes at once, none ahead"),
                ("one ahead", three + [slow("d", extra=9000), fine[0]], [(f"d {DISK}, b {DISK}, a {DISK}, c {DISK}", "")], "d is slow"),
                ("never all at once", [slow(name, 250 * i, end=250 * i + 300) for i, name in enumerate("abcdef")], [(", ".join(f"{i} {DISK}" for i in "abcdef"), "")], "a is slow"),
                ("all wait", [waits("b"), waits("c"), fine[0]], [("", f"b {ACK}, c {ACK}")], "2 of 3 nodes at once"),
                ("most wait for one", [slow("a"), *[waits(name) for name in "bcd"], fine[0]], [("a " + DISK, ", ".join(f"{i} {ACK}" for i in "bcd"))], "a is slow"),
                ("unexplained", [itself("a"), *fine], [("a " + HOST, "")], "no point below it says why"),
                ("unexplained beside a cause", [itself("a"), slow("b"), *fine], [("b " + DISK, "a " + HOST)], "b is slow"),
                ("another graph knows", [two_graphs, *fine], [("a " + DISK, "")], ""),
                ("a cause that waits", [answer("a", (0, 300, 100, SURE, {DISK: 1}), (0, 300, 900, SURE, {ACK: 1}, "TGT_LUMO_HOST_WRITE")), *fine],
                 [("a " + DISK, "")], ""),
                ("unsure beside waiting", [answer("a", (0, 30, 100, UNSURE, {DISK: 1}), (0, 300, 90, SURE, {ACK: 1}, "TGT_LUMO_HOST_WRITE")), *fine],
                 [("", "a " + ACK)], alone),
                ("load", [answer("a", (0, 300, 500, LOAD, {DISK: 1})), waits("b"), *fine], [("", "b " + ACK)], "a under load at the time"),
                ("errors", [answer("a", errors=[(0, 300, SURE, {"DISK_ERROR": .9, "TOP": .1})]), waits("b"), *fine], [("a DISK_ERROR", "b " + ACK)],
                 "a has errors at DISK_ERROR since"),
                ("errors and delay", [slow("a", errors=[(0, 300, SURE, {"DISK_ERROR": 1})]), *fine], [(f"a {DISK}, a DISK_ERROR", "")], "of type IOERROR"),
                ("errors of waiting", [answer("a", errors=[(0, 300, SURE, {ACK: 1})]), slow("b"), *fine], [("b " + DISK, "a " + ACK)], ""),
                ("only load", [answer("a", (0, 300, 500, LOAD, {DISK: 1})), *fine], [], "No node was slow by itself"),
                ("within the usual", [answer("a", (0, 300, 5, WEAK, {DISK: 1})), *fine], [], "No node was slow by itself"),
                ("ongoing first", [slow("b"), answer("a", (900, 999, 10, SURE, {DISK: 1}, HOST, True)), *fine],
                 [("a " + DISK, ""), ("b " + DISK, "")], "2023-01-05 13:15:00, still going on"),
                ("two files of one node", [slow("a"), answer("a", (9000, 9300, 10, SURE, {ACK: 1})), *fine],
                 [("a " + DISK, ""), ("", "a " + ACK)], "")):
            with self.subTest(name):
                status, out, err = self.fleet("--fold", "--json", lines="\n".join(answers))
                found = [tuple(", ".join(f"{one['node']} {one['point']}" for one in incident[part]) for part in ("causes", "symptoms"))
                         for incident in json.loads(out)["incidents"]]
                self.assertEqual((found, err, status), (expected, "", 0 if expected or name == "only load" else 1))
                text = self.fleet("--fold", lines="\n".join(answers))[1]
                self.assertIn(said, " ".join(text.split()))
                self.assertLessEqual(max(map(cells, text.splitlines())), 80)

    def test_what_is_no_answer(self):
        good, time_of = answer("a"), '"epoch": %d' % T
        untold = answer("b", analyses=[{"point": HOST, "graph": graph, "verdict": "cannot tell", "reason": "a bad value"} for graph in "GH"])
        status, out, err = self.fleet("--fold", lines=f"{good}\n{untold}\n")
        self.assertEqual((status, err, "Of 1 node it cannot be told" in out), (4, f"zorv-fleet: b: {HOST} cannot be told: a bad value\n", True))
        for line, said in (("{", "ends too early"), ("{}", "no answer of zorv-explain"), ("[1]", "no answer of"), ("nonsense", "no JSON"),
                           (good.replace('"version": 2', '"version": 1'), "no answer of zorv-explain --json of version 2"), ('{"a": "', "within a text"),
                           ("[" * 99999, "nested too deep"), (good + good, "more than one"), *[(good.replace("+08:00", zone), "zone") for zone in ("UTC", "::::::", "+99:99")],
                           (answer("a", (0, 1, 1, SURE, {DISK: 1})).replace(time_of, '"epoch": -1'), "a time lies outside"),
                           (answer("a", (0, 1, 1, SURE, {DISK: 1})).replace(time_of, '"epoch": "x"'), "a time is none"), (answer("a", (1, 0, 1, SURE, {DISK: 1})), "before it begins"),
                           (answer("a", (0, 1, 1e300, SURE, {DISK: 1})), "beyond all"), (answer("a", *[(0, 1, 1, SURE, {})] * 10001), "more than 10000"),
                           (good.replace('"analyses": []', '"analyses": [3]'), "no answer of zorv-explain: ")):
            with self.subTest(said):
                status, out, err = self.fleet("--fold", "--json", lines=f"{line}\n\n{answer('b')}\n")
                self.assertEqual(([node["verdict"] for node in json.loads(out)["nodes"]], status), (["no answer", "nothing"], 3))
                self.assertRegex(err, rf"^zorv-fleet: standard input:1: .*{re.escape(said)}.*\n$")

    def test_captures(self):
        subprocess.run([BIN / "lumo-sim", "--root", self.root, "--fleet", "5", "--end", RANGE[1], "--step", "60"], check=True, stdout=subprocess.DEVNULL)
        truth = json.loads((self.root / "truth.json").read_text())
        roles = {node["role"]: node["node"] for node in truth["nodes"]}
        slow, archive = self.root / truth["fault"]["node"], self.root / "packed.tar.gz"
        subprocess.run(["tar", "-czf", archive, "-C", slow, "VRA"], check=True)
        captures = [archive, *(self.root / roles[role] for role in ("waits", "healthy", "load", "broken"))]
        pages, page = self.root / "p" / "pages", self.root / "p" / "fleet.html"
        status, out, err = self.fleet("--json", "--jobs", 2, "--pages", pages, "--html", page, *captures, *RANGE)
        found = json.loads(out)
        verdicts = ["point", "waits", "nothing", "load", "no answer"]
        self.assertEqual((status, [(node["node"], node["verdict"]) for node in found["nodes"]]),
                         (0, list(zip(["packed", *(capture.name for capture in captures[1:])], verdicts))))
        self.assertRegex(err, rf"^zorv-fleet: {roles['broken']}: .* is cut short: .*\n$")
        incident, = found["incidents"]
        self.assertEqual((incident["causes"][0]["node"], incident["causes"][0]["point"]), ("packed", truth["fault"]["point"]))
        self.assertEqual(incident["symptoms"], [{"node": roles["waits"], "point": ACK}])
        self.assertLess(abs(incident["since"]["epoch"] - truth["fault"]["since_epoch"]), 150)
        first = found["nodes"][0]["candidates"][0]
        self.assertEqual((first["peers"]["nodes"], first["peers"]["deviations"] > 5), (4, True))
        self.assertLess(first["peers"]["median_us"], first["delay_us"] / 2)
        links = re.findall(r'href="([^"]*)"', page.read_text())
        self.assertEqual(sorted(links), sorted(f"pages/{name}.html" for name in ["packed", *(capture.name for capture in captures[1:4])]))
        ElementTree.fromstring(page.read_text().removeprefix("<!DOCTYPE html>"))
        self.assertTrue(all((page.parent / link).exists() for link in links))
        own = self.root / "own"  # where what has answered once damages the archive: it is not unpacked again
        own.mkdir()
        shutil.copy(BIN / "zorv-fleet", own)
        (own / "zorv-explain").write_text(f"""#!/bin/sh\n{BIN}/zorv-explain "$@" || exit\ntouch -r {archive} {own}/time
            echo none | dd of={archive} conv=notrunc status=none\ntouch -r {own}/time {archive}\n""")
        (own / "zorv-explain").chmod(0o755)
        again = subprocess.run([own / "zorv-fleet", "--json", "--jobs", "1", *captures, *RANGE], capture_output=True, text=True)
        self.assertEqual(again.stdout, out, again.stderr)
        for words, expected, said in (
                (["missing", *captures[2:3], *RANGE], 3, "missing: the capture 'missing' is neither"), ([*captures[2:3], "240"], 3, "the range "),
                ([*RANGE], 2, "no CAPTURE is named"), ([captures[0]], 2, "START END, or MINUTES, is missing"), (["--fold", "nosuch"], 2, "cannot be read"),
                ([captures[0], "nosuch", *RANGE], 2, "nor an existing path"), ([captures[0], RANGE[0], "zzz"], 2, "'zzz' is no time"),
                ([captures[0], *RANGE[::-1]], 2, "the end has to be after the start"), (["--fold", "--hosts", "f"], 2, "excludes"),
                (["--html", captures[1] / "x", captures[1], *RANGE], 2, "where nothing may change"), (["--pages", captures[1], captures[1], *RANGE], 2, "where nothing"),
                (["--hosts", "nosuch", "60"], 3, "the file of hosts 'nosuch' cannot be read")):
            with self.subTest(said):
                status, _, err = self.fleet(*words)
                self.assertEqual((status, said in err), (expected, True), err)

    def test_broken_explanations(self):
        """One that hangs, or is ended, is a line, not an end."""
        shutil.copy(BIN / "zorv-fleet", self.root)
        other = self.root / "zorv-explain"
        for script, said in (("trap '' TERM\nexec >&- 2>&-\nwhile :; do sleep .1; done", "it took longer than 1 s; --timeout gives it more"),
                             ("kill -9 $$", "zorv-explain was ended by signal 9"), ("exit 4", "zorv-explain said nothing"),
                             ("echo; echo a >&2; echo zorv-explain: why >&2; exit 4", "why"), (None, "cannot run zorv-explain: No such file or directory")):
            other.write_text(f"#!/bin/sh\n{script}\n")
            other.chmod(0o755)
            script or other.unlink()
            done = subprocess.run([self.root / "zorv-fleet", "--timeout", "1", self.root, *RANGE], capture_output=True, text=True)
            self.assertEqual((done.returncode, done.stderr), (4 if "exit 4" in str(script) else 3, f"zorv-fleet: {self.root.name}: {said}\n"))
            self.assertRegex(done.stdout, r"^0 nodes answered, 1 of 1 did not\n(.|\n)* no answer\n")
        hosts, pids = self.root / "hosts", self.root / "pids"
        hosts.write_text(":\n")
        other.write_text(f"#!/bin/sh\necho $$ >>{pids}\nexec sleep 60\n")
        other.chmod(0o755)
        for words in ((self.root, self.root, *RANGE), ("--hosts", hosts, "60")):  # what was asked ends with whoever asks
            pids.write_text("")
            asking = subprocess.Popen([self.root / "zorv-fleet", "--jobs", "1", *words], env={**os.environ, "PATH": f"{self.root}:{os.environ['PATH']}"})
            self.assertTrue(eventually(lambda: pids.read_text().endswith("\n")))
            asking.terminate()
            self.assertEqual(asking.wait(), -signal.SIGTERM)
            self.assertTrue(eventually(lambda: not Path("/proc", pids.read_text().strip(), "exe").exists()))  # a zombie has none

    def test_hosts(self):
        self.simulate("--scenario", "slow-disk", "--end", RANGE[1])
        hosts, path = self.root / "hosts", {**os.environ, "PATH": f"{BIN}:{os.environ['PATH']}"}
        hosts.write_text("# a comment\n:\nnobody@host.invalid\n")
        status, out, err = self.fleet("--json", "--hosts", hosts, "--root", self.root, *RANGE, env=path)
        nodes = {node["node"]: node["verdict"] for node in json.loads(out)["nodes"]}
        self.assertEqual((status, nodes), (0, {":": "point", "nobody@host.invalid": "no answer"}), err)
        self.assertEqual(json.loads(out)["incidents"][0]["causes"][0]["point"], DISK)
        self.assertRegex(err, "^zorv-fleet: nobody@host.invalid: not reached, or no answer within 600 s: .+(?<!host.invalid)\n$")
        # What ssh does, on this machine: its options, a host, and words that a shell puts together, the one that SHELL names there.
        (self.root / "ssh").write_text('#!/bin/sh\nwhile [ "$1" != "${1#-}" ]; do [ "$1" != -l ] || shift; shift; done\nshift\n[ "$1" != -- ] || shift\nSHELL=/bin/sh exec sh -c "$*"\n')
        (self.root / "ssh").chmod(0o755)
        hosts.write_text("nodeA,@group/2/user@nodeB\n2/:\n")
        status, out, err = self.fleet("--json", "--hosts", hosts, "--root", self.root, *RANGE, env={**path, "PATH": f"{self.root}:{path['PATH']}"})
        self.assertEqual((status, {node["node"]: node["verdict"] for node in json.loads(out)["nodes"]}),
                         (0, dict.fromkeys(["nodeA", "@group/2/user@nodeB", "2/:"], "point")), err)
        self.assertEqual(json.loads(out)["nodes"][0]["candidates"][0]["peers"]["nodes"], 3)
        fake = self.root / "parallel"
        for text, said in ((None, "cannot run parallel: No such file"), ("#!/bin/sh\necho other\n", "is another one")):
            text and (fake.write_text(text), fake.chmod(0o755))
            status, out, err = self.fleet("--hosts", hosts, *RANGE, env={**path, "PATH": str(self.root)})
            self.assertEqual((status, out, said in err, "install Debian's package 'parallel'" in err), (3, "", True, True), err)


if __name__ == "__main__":
    unittest.main()
