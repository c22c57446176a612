"""zorv-check: each mistake in the shipped configuration, in the place and in the words in which it is told."""
import json
import os
import pty
import re
import resource
import sqlite3
import subprocess
import tempfile
import unittest
from contextlib import closing
from pathlib import Path
from random import Random

import jsonschema

from console import BIN, CONFIG, DATABASE

DOCS = Path(__file__).parents[2] / "docs"
ROUNDS = 3000 if "SMARTDIAGNOSE_LONG" in os.environ else 60
VALUES = [None, True, 0, 1, -1, 2.5, 5.0, 1 << 31, "", "x", "3", "-3", "+3", " 3", "12abc", "-1", "-6", "-01x", "whole follow",
          "automic", "Whole", "MODULE", [], {}, [1], {"attr": "automic"}, {"qname": "x", "attr": "automic,"}]
LINE = re.compile(r"(?P<file>.*?):(?P<line>\d+):(?P<column>\d+): (?P<severity>error|warning|note): "
                  r"(?:(?P<graph>\$?[A-Z0-9_]+): )?(?P<text>.*) \[(?P<rule>[a-z-]+)\]")

# Rule, graph, and changes of the graph's text, in which ^ is where the finding has to stand.
TOP = '{\n  "E'
EDGE_12 = '{"source": "11", "target": "12"}'
MISTAKES = [
    ("json-syntax", "", '"1", "target": "2"}', '"1" ^"target": "2"}'),
    ("too-deep", "", '"nodes": [', '"x": ' + "[" * 198 + "^[]" + "]" * 198 + ', "nodes": ['),
    ("not-an-object", "", TOP, '^["x", {\n  "E', "}}\n", "}}]\n"),
    ("not-an-object", "MDS_LOOKUP", '"MDS_LOOKUP": {', '"MDS_LOOKUP": ^[], "$": {'),
    ("not-an-object", "SAN_IO_READ", EDGE_12, EDGE_12 + ', ^"11-12"'),
    ("duplicate-graph", "SAN_IO_READ", '"SAN_IO_READ": {', '"SAN_IO_READ": {"nodes": []}, ^"SAN_IO_READ": {'),
    ("duplicate-graph", "SAN_IO_READ", '"label": "BDM_DISK_READ"', '"label": "BDM", ^"label": "BDM_DISK_READ"'),
    ("wrong-type", "SAN_IO_READ", '"id": 12,', '"id": ^"12",'),
    ("wrong-type", "SAN_IO_READ", '"id": 12,', '"id": ^12.5,'),
    ("wrong-type", "ERRCODE_BDM", '"qname": "BDM_DISK_ABORTED"', '"qname": ^"BDM\'S"'),
    ("wrong-type", "SAN_IO_READ", '"name": "BDM_DISK_READ"', '"name": ^{}'),
    ("wrong-type", "SAN_IO_READ", '"subGraph": "POOL_READ"', '"subGraph": "POOL_READ", "qname": ^7'),
    ("wrong-type", "ERRCODE_BDM", '"edges": [', '"edges": ^{}, "$edges": ['),
    ("missing-label", "SAN_IO_READ", '{"id": 13, "label": "BDM_OB_DISK_QUEUE_READ", ', '^{"id": 13, '),
    ("missing-label", "FACTOR_SAN", '"label": "TGT_CMD_PARSE"', '"label": ^""'),
    ("missing-id", "FACTOR_SAN", '{"id": 9, ', '^{"label": "TGT_OB_X"}, {"id": 9, '),
    ("duplicate-id", "FACTOR_SAN", '{"id": 9, ', '{"id": 10, "label": "TGT_OB_X"}, {"id": ^10, "label": "TGT_OB_Y"}, {"id": 9, '),
    ("id-not-positive", "FACTOR_SAN", '{"id": 1, ', '{"id": ^0, "label": "X"}, {"id": 1, '),
    ("edge-end-missing", "SAN_IO_READ", EDGE_12, EDGE_12 + ', ^{"source": "11"}'),
    ("edge-end-missing", "FACTOR_SAN", '{"source": "1", "target": "2"}', '^{"target": "2"}'),
    ("edge-end-not-a-number", "SAN_IO_READ", EDGE_12, EDGE_12 + ', {"source": "11", "target": ^"disk"}'),
    ("edge-end-not-a-number", "SAN_IO_READ", EDGE_12, EDGE_12 + ', {"source": "11", "target": ^"-12"}'),
    ("edge-end-not-a-number", "SAN_IO_READ", EDGE_12, EDGE_12 + ', {"source": "11", "target": ^""}'),
    ("edge-to-nowhere", "SAN_IO_READ", EDGE_12, EDGE_12 + ', {"source": "11", "target": ^"112"}'),
    ("edge-to-nowhere", "SAN_IO_READ", '"source": "11", "target": "12"', '"source": ^"111", "target": "12"'),
    ("unknown-sub-graph", "SAN_IO_READ", '"subGraph": "POOL_READ"', '"subGraph": ^"POOL_REED"'),
    ("unknown-member", "SAN_IO_READ", '"SAN_IO_READ": {', '"SAN_IO_READ": {^"Edges": [], "description": "reads", '),
    ("missing-nodes", "MDS_LOOKUP", '{\n    "nodes"', '^{\n    "$nodes"', '"edges"', '"$edges"'),
    ("missing-root", "SAN_IO_READ", '"SAN_IO_READ": {', '"SAN_IO_READ": ^{', '"TGT_LUMO_HOST_READ", "name', '"TGT_LUMO_HOST", "name'),
    ("missing-root", "ERRCODE_SMB", '"ERRCODE_SMB": {', '"ERRCODE_SMB": ^{', '"SMB_AUTHTICATE_LOGON_FAILURE", "name"', '"SMB_LOGON", "name"'),
    ("missing-root", "SAN_IO_READ", '"label": "TGT_LUMO_HOST_READ"', '"label": ^"OB_TGT_LUMO_HOST_READ"'),
    ("missing-root", "ERRCODE_SMB", '"label": "SMB_AUTHTICATE_LOGON_FAILURE"', '"label": ^"SMB_AUTHTICATE_LOGON_FAILURE"', "Sessions whose", "MODULE of those whose"),
    ("missing-root", "ERRCODE_BDM", '"ERRCODE_BDM": {', '"ERRCODE_BDM": ^{', '"edges": [', '"edges": [], "$edges": ['),
    ("name-is-a-graph", "SAN_IO_READ", '"name": "BDM_DISK_READ"', '"name": ^"POOL_READ"'),
    ("unknown-attr", "ERRCODE_BDM", '"attr": "automic"', '"attr": ^"automic x"'),
    ("unknown-attr", "ERRCODE_BDM", '"attr": "whole"', '"attr": ^"whole, Follow"'),
    ("erridx-out-of-range", "ERRCODE_BDM", '"erridx": "-1"', '"erridx": ^"-6"'),
    ("erridx-out-of-range", "ERRCODE_BDM", '"erridx": "-1"', '"erridx": ^"one"'),
    ("missing-qname", "ERRCODE_BDM", '"info": {"attr": "automic", "erridx": "-2", "qname"', '"info": ^{"attr": "automic", "erridx": "-2", "$qname"'),
    ("trailing-text", "", "}}\n", "}}\n ^}\n"),
    ("byte-order-mark", "", TOP, "^\ufeff" + TOP),
    ("not-strict-json", "SAN_IO_READ", EDGE_12, EDGE_12 + "^// the disk\n"),
    ("not-strict-json", "SAN_IO_READ", '"id": 12,', '"id": ^+12,'),
    ("not-strict-json", "SAN_IO_READ", '"target": "12"}', '"target": "12"^,}'),
    ("missing-graph", "FACTOR_SAN", TOP, "^" + TOP, '"FACTOR_SAN"', '"$FACTOR_SAN"'),
    ("number-with-text", "SAN_IO_READ", '"target": "12"', '"target": ^"12abc"'),
    ("number-with-text", "ERRCODE_BDM", '"erridx": "-1"', '"erridx": ^"-1 (IOERROR)"'),
    ("number-valued-end", "SAN_IO_READ", '"target": "12"', '"target": ^12'),
    ("duplicate-edge", "SAN_IO_READ", EDGE_12, f"{EDGE_12}, ^{EDGE_12}"),
    ("self-edge", "SAN_IO_READ", EDGE_12, EDGE_12 + ', ^{"source": "12", "target": "12"}'),
    ("circle", "SAN_IO_READ", EDGE_12, EDGE_12 + ', ^{"source": "12", "target": "9"}'),
    ("circle", "POOL_READ", '"suggestion": "Check the metadata', '"subGraph": ^"POOL_READ", "suggestion": "Check the metadata'),
    ("unreachable-node", "SAN_IO_READ", '"label": "BDM_DISK_READ"', '"label": ^"BDM_DISK_READ"', EDGE_12 + ",", ""),
    ("several-roots", "POOL_READ", '{"id": 1, ', '{"id": 99, "label": ^"BDM_DISK_READ"}, {"id": 1, ',
     '{"source": "1", "target": "9"}', '{"source": "1", "target": "9"}, {"source": "99", "target": "9"}'),
    ("reversed-edges", "ERRCODE_SMB", '"label": "SMB_AUTHT', '"label": ^"SMB_AUTHT', '"source": "1", "target"', '"target": "1", "source"'),
    ("unused-graph", "SAN_READ", '"SAN_IO_READ": {', '^"SAN_READ": {"nodes": [{"id": 1, "label": "OB_"}]}, "SAN_IO_READ": {'),
    ("duplicate-label", "FACTOR_SAN", '{"id": 9, ', '{"id": 10, "label": ^"TGT_LUMO_HOST_CMD"}, {"id": 9, '),
    ("unknown-member", "POOL_READ", '"suggestion": "Check the metadata', '"suggestion": "Check the metadata", ^"suggestio": "'),
    ("unknown-member", "SAN_IO_READ", '"suggestion": "Check the disk', '^"suggestio": "Check the disk'),
    ("unknown-member", "SAN_IO_READ", '"subGraph": "POOL_READ"', '^"subgraph": "POOL_READ"'),
    ("unknown-member", "POOL_READ", '{"id": 9, ', '{"id": 9, ^"subGraph": "FS_READ", '),
    ("observation-with-children", "SAN_IO_READ", '"label": "BDM_OB_', '"label": ^"BDM_OB_', EDGE_12, EDGE_12 + ', {"source": "13", "target": "12"}'),
    ("no-suggestion", "SAN_IO_READ", "\"info\": {\"suggestion\": \"Check the disk's", "\"info\": ^{\"$suggestion\": \"Check the disk's"),
]


# The same with the world's database, which a statement changes.
OF = "where locateid = (select locateid from version_nmaps where locatename = "
ROWS_MISTAKES = [
    ("unknown-point", "SAN_IO_READ", "", '"label": "BDM_DISK_READ"', '"label": ^"BDM_DISK_REED"'),
    ("unknown-point", "ERRCODE_BDM", "", '"qname": "BDM_DISK_ABORTED"', '"qname": ^"BDM_ABORTED"'),
    ("no-rows", "ERRCODE_BDM", f"delete from {{table}} {OF}'BDM_DISK_ABORTED')", '"qname": "BDM_DISK_AB', '"qname": ^"BDM_DISK_AB'),
    ("constant", "SAN_IO_READ", f"update {{table}} set avgdelay = 7 {OF}'CACHE_READ_LOOKUP')", '"label": "CACHE', '"label": ^"CACHE'),
    ("counts-differ", "SAN_IO_READ", f"update {{table}} set acceptnum = 900 * acceptnum {OF}'CACHE_READ_LOOKUP')",
     '{"source": "9", "target": "10"}', '^{"source": "9", "target": "10"}'),
    ("slower-than-parent", "SAN_IO_READ", f"update {{table}} set avgdelay = 90 * avgdelay {OF}'CACHE_READ_LOOKUP')",
     '{"source": "9", "target": "10"}', '^{"source": "9", "target": "10"}'),
    ("point-in-no-graph", "", "insert into version_nmaps values(999, 'X')", TOP, "^" + TOP),
]


def pretty(config):
    """A node or an edge a line, as an author would write it."""
    def lines(values):
        return ",\n".join("      " + json.dumps(value) for value in values)
    order = ["id", "label", "name", "description", "info"]
    graphs = ",\n".join(
        f'  "{name}": {{\n    "nodes": [\n{lines({key: node[key] for key in order} for node in graph["nodes"])}],\n'
        f'    "edges": [\n{lines(graph["edges"])}]}}' for name, graph in config.items())
    return "{\n" + graphs + "}\n"


def changed(text, graph, changes):
    """The text with changes behind the beginning of a graph, and the line and column of the mark in it."""
    for old, new in zip(changes[::2], changes[1::2]):
        start = max(text.find(f'\n  "{graph}": '), 0) if old != TOP else 0
        place = text.index(old, start)
        every = old.startswith('"source": "1", "target"')
        end = text.find("]}", place) if every else len(text)
        text = text[:place] + text[place:end].replace(old, new, -1 if every else 1) + text[end:]
    before = text[:text.index("^")]
    return text.replace("^", "", 1), before.count("\n") + 1, len(before.rsplit("\n", 1)[-1].encode()) + 1


class CheckTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        holder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(holder.cleanup)
        cls.root = Path(holder.name)
        subprocess.run([BIN / "lumo-sim", "--root", cls.root, "--scenario", "healthy", "--hours", "1", "--schema",
                        "--end", "20230105143000"], check=True, stdout=subprocess.DEVNULL)
        listed = subprocess.run([BIN / "zorv-check", "--list"], stdout=subprocess.PIPE, text=True, check=True).stdout
        cls.rules = {line.split()[1]: line.split()[0] for line in listed.splitlines()}
        cls.written = (cls.root / CONFIG).read_text()
        config = json.loads(cls.written)
        cls.schema = Path(config.pop("$schema").removeprefix("file://"))
        cls.text = pretty(config)

    def check(self, *words, status=None):
        run = subprocess.run([BIN / "zorv-check", *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.assertIn(run.returncode, (0, 1) if status is None else (status,), run.stderr)
        return run.stdout

    def findings(self, text, *words):
        """Of a configuration: (rule, graph, text) -> (line, column, severity)."""
        (self.root / CONFIG).write_text(text)
        lines = self.check(*(words or [self.root / CONFIG])).splitlines()
        self.assertRegex(lines[-1], r"^\d+ graphs?, \d+ nodes?: \d+ errors?, \d+ warnings?")
        found = [LINE.fullmatch(line) for line in lines[:-1]]
        return {(match["rule"], match["graph"] or "", match["text"]): (int(match["line"]), int(match["column"]), match["severity"])
                for match in found}

    def expect_one(self, before, mistake, *words):
        """Of the findings on a changed configuration, all but one are there before."""
        rule, graph, changes = mistake[0], mistake[1], mistake[2:]
        text, line, column = changed(self.text, graph, changes)
        found = {key: place for key, place in self.findings(text, *words).items() if key not in before}
        with self.subTest(rule=rule, changes=changes):
            self.assertEqual([(key[:2], place) for key, place in found.items()],
                             [((rule, graph), (line, column, self.rules[rule]))], found)

    def test_each_mistake_is_told_at_its_place_and_nothing_else_is(self):
        before = self.findings(self.text)
        for mistake in MISTAKES:
            self.expect_one(before, mistake)
        self.assertEqual({mistake[0] for mistake in MISTAKES + ROWS_MISTAKES}, set(self.rules))
        self.assertLessEqual(set(self.rules), set(re.findall("`([a-z-]+)`", (DOCS / "check.md").read_text())))

    def test_the_schema_refuses_nothing_that_is_no_error(self):
        route = jsonschema.Draft7Validator(json.loads((DOCS / "route.schema.json").read_text()))
        report = jsonschema.Draft7Validator(json.loads((DOCS / "check.schema.json").read_text()))
        config, random, refused = json.loads(self.text), Random(7), 0
        self.assertEqual(list(route.iter_errors(config)), [])
        for _ in range(ROUNDS):
            tried = json.loads(self.text)
            graph = tried[random.choice(list(tried))]
            holder = random.choice([graph, random.choice(graph["nodes"]), random.choice(graph["nodes"])["info"],
                                    random.choice(graph["edges"])])
            key = random.choice(list(holder) or ["attr"])
            if random.random() < 0.2:
                holder.pop(key, None)
            else:
                holder[key] = random.choice(VALUES)
            (self.root / CONFIG).write_text(json.dumps(tried))
            found = json.loads(self.check("--json", self.root / CONFIG))
            report.validate(found)
            errors = [error.message for error in route.iter_errors(tried)]
            refused += bool(errors)
            self.assertTrue(not errors or found["errors"], (key, holder, errors))
        self.assertGreater(refused, ROUNDS / 4)

    def test_a_root_of_lumo_sim_is_clean(self):
        (self.root / CONFIG).write_text(self.written)
        self.assertEqual(self.schema.read_text(), (DOCS / "route.schema.json").read_text())
        self.assertIn("\n31 graphs, 338 nodes: 0 errors, 0 warnings", self.check("--strict", "--root", self.root, status=0))
        status = subprocess.run([BIN / "zorv-local", "--root", self.root, "status"], stdout=subprocess.PIPE, text=True).stdout
        self.assertIn("31 graphs, nodes/edges", status)
        for words, status in ((["--root", self.root / "none"], 3), ([self.root / "none"], 3), ([self.root], 3), (["--x"], 2),
                              (["--root", self.root, self.root / CONFIG], 2)):
            self.check(*words, status=status)

    def test_a_graph_may_be_a_chain_of_any_length(self):
        length = 100_000
        nodes = ",".join(f'{{"id":{i},"label":"{"TGT_LUMO_HOST_READ" if i == 1 else f"P_{i}"}"}}' for i in range(1, length + 1))
        edges = ",".join(f'{{"source":"{i}","target":"{i % length + 1}"}}' for i in range(1, length + 1))
        (self.root / CONFIG).write_text(f'{{"SAN_IO_READ":{{"nodes":[{nodes}],"edges":[\n{edges}]}}}}')
        run = subprocess.run([BIN / "zorv-check", self.root / CONFIG], stdout=subprocess.PIPE, text=True, check=True,
                             preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_STACK, (1 << 20, 1 << 20)))
        self.assertIn("circle: TGT_LUMO_HOST_READ -> P_2 -> P_3 -> P_4 -> .. -> P_99997 -> ", run.stdout)
        self.assertIn(f"1 graph, {length} nodes: 0 errors, 20 warnings", run.stdout)

    def test_twenty_of_a_kind_are_told(self):
        text, line, column = changed(self.text, "SAN_IO_READ", [EDGE_12, ", ".join([EDGE_12] * 21 + ["^" + EDGE_12] + [EDGE_12] * 4)])
        (self.root / CONFIG).write_text(text)
        lines = self.check("--strict", self.root / CONFIG, status=1).splitlines()
        self.assertIn(f"{self.root / CONFIG}:{line}:{column}: warning: SAN_IO_READ: and 5 more [duplicate-edge]", lines)
        self.assertEqual(sum("[duplicate-edge]" in line for line in lines), 21)
        self.assertIn(": 0 errors, 25 warnings,", lines[-1])
        self.check(self.root / CONFIG, status=0)

    def test_the_console_tells_and_lists_errors(self):
        text, line, _ = changed(self.text, "SAN_IO_READ", ['"target": "12"', '"target": ^"112"'])
        (self.root / CONFIG).write_text(text)
        console = [BIN / "zorv-local", "--root", self.root]
        listed = subprocess.run([*console, "check"], stdout=subprocess.PIPE, text=True)
        self.assertEqual(listed.returncode, 1)
        self.assertIn(f"{CONFIG}:{line}:", listed.stdout)
        terminal, program = pty.openpty()
        with subprocess.Popen(console, stdin=program, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True) as started:
            os.write(terminal, b"quit\n")
            self.assertIn("zorv-local: the configuration has 1 error; 'check' lists them\n", started.stderr.read())
        os.close(terminal)
        os.close(program)

    def test_the_database_is_asked_too(self):
        before = self.findings(self.text, "--root", self.root)
        saved = (self.root / DATABASE).read_bytes()
        for rule, graph, statement, *changes in ROWS_MISTAKES:
            with closing(sqlite3.connect(self.root / DATABASE, isolation_level=None)) as database:
                tables = [name for name, in database.execute("select tablename from table_flag")]
                for table in tables if "{table}" in statement else ["x"]:
                    database.execute(statement.format(table=table))
            self.expect_one(before, (rule, graph, *changes), "--root", self.root)
            (self.root / DATABASE).write_bytes(saved)


if __name__ == "__main__":
    unittest.main()
