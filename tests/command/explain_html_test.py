"""The page of zorv-explain: harmless, the same again; and what its drawings show."""
import itertools
import json
import os
import re
import sqlite3
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

from console import BIN, CONFIG, DATABASE, ConsoleTest

HOSTILE = '"><script>x</script><a onclick=x href="http://x">&amp;\x1b[31m\u202e\udcff\udced\udca0\udc80\u061c\ufffe\U000e0041\u4e2d'  # not all is UTF-8
SHOWN = '"><script>x</script><a onclick=x href="http://x">&amp;\\x1b[31m\\u202e\\xff\\xed\\xa0\\x80\\u061c\\ufffe\\ue0041\u4e2d'


class Page(ConsoleTest):
    def page(self, start="20230105103000"):
        run = [BIN / "zorv-explain", "--root", self.root, "--html", self.root / "p", start, "20230105143000"]
        (screen, text), = {(subprocess.check_output(run, text=True), (self.root / "p").read_text()) for _ in "12"}  # the same twice
        self.assertNotRegex(text, r"[\0-\x09\x0b-\x1f\x7f-\x9f\u202e]|<script|(src|href)=\"[^#]|url\(|@import")
        page = ElementTree.fromstring(text.removeprefix("<!DOCTYPE html>"))
        for verdict in page.iterfind(".//*[@class='verdict']"):
            self.assertIn("".join("".join(verdict.itertext()).split()), "".join(screen.split()))
        return page

    def check_flows(self, text, count, has_rest):
        nodes = re.findall(r"^(.*), own ([\d.]+)\s% of ([\d.]+)\s%, graph ", text, re.M)
        flows = re.findall(r"^([\d.]+)\s% flows from (.*) to (.*)$", text, re.M)
        rest = re.findall(r"with ([\d.]+)\s% together", text)
        self.assertEqual((len(nodes), len(rest)), (count, has_rest))
        self.assertAlmostEqual(sum(map(float, [own for _, own, _ in nodes] + rest)), 100, delta=4)
        for name in {node[0] for node in nodes if not rest}:
            into, out = (sum(float(flow[0]) for flow in flows if flow[end] == name) for end in (2, 1))
            own, arrives = (sum(float(node[part]) for node in nodes if node[0] == name) for part in (1, 2))
            self.assertLess(abs(100 * (name == nodes[0][0]) + into - arrives) + abs(out + own - arrives), 0.7, name)

    def test_page(self):
        self.simulate("--scenario", "slow-disk", "--hours", "8", "--end", "20230105143000")
        points = ["POOL_DOP_READ_TIME_IN_POOL", *(f"DISK_{number}" for number in range(99))]  # as slow as the disk
        with sqlite3.connect(self.root / DATABASE) as data:
            ids = dict(data.execute("select locatename, locateid from version_nmaps"))
            names = [*enumerate(points, 5000), (ids[points[0]], "unused"), (ids["BDM_DISK_READ"], HOSTILE)]
            data.executemany("replace into version_nmaps values(?, cast(? as text))",
                             [(number, name.encode(errors="surrogateescape")) for number, name in names])
            for table, in data.execute("select tablename from table_flag").fetchall():
                data.execute(f"""insert into {table} select new.locateid, curtime, acceptnum / 9, 0, 0, 0, avgdelay,
                    0, 0, 0, 0, 0, 0, 0 from {table} old, version_nmaps new where new.locateid >= 5000 and old.locateid = {ids["BDM_DISK_READ"]}""")
                data.execute(f"update {table} set avgdelay = 6000 where curtime = 1672874430")
        graphs = json.loads((self.root / CONFIG).read_text())
        edges, nodes = graphs["SAN_IO_READ"].values()
        next(node for node in nodes if node["label"] == "BDM_DISK_READ").update(label=HOSTILE, info={"suggestion": HOSTILE * 99})
        for more, count in (([], 6), (points[1:], 60)):  # a sub-graph takes a part; more than can be drawn
            nodes += [{"id": number, "label": point} for number, point in enumerate(more, 5000)]
            edges += [{"source": "11", "target": str(number)} for number, _ in enumerate(more, 5000)]
            (self.root / CONFIG).write_bytes(json.dumps(graphs, ensure_ascii=False).encode(errors="surrogateescape"))
            page = self.page("20230105063000")
            self.check_flows("\n".join(page.find(".//*[@class='graph']").itertext()), count, len(more) > 0)
            self.assertIn(SHOWN, [cell.text for cell in page.iter("th")])
            heights = re.findall(r",([\d.]+)", page.find(".//*[@class='series']").get("d"))
            self.assertTrue(len(heights) <= 600 and "20.0" in heights, "a lone peak goes up to the end of the axis")

    def test_a_bad_graph_leaves_the_others_their_answers(self):
        self.simulate("--scenario", "nas-slow", "--end", "20230105143000")
        graphs = json.loads((self.root / CONFIG).read_text())
        for bad in None, {"nodes": [5], "edges": []}, {"nodes": [{"id": "x", "label": "NAS_TRANS_ALL"}], "edges": []}:
            (self.root / CONFIG).write_text(json.dumps({**graphs, "NAS_IO_NFSV4": bad} if bad else
                                                       {name: graphs[name] for name in graphs if name != "NAS_IO_NFSV4"}))
            headlines = ["".join(one.itertext()) for one in self.page().iterfind(".//*[@class='verdict']")]
            self.assertEqual([one.startswith("Cannot tell: the configuration ") for one in headlines], [False, True, False])

    def test_what_the_page_is_written_to(self):
        self.simulate("--scenario", "healthy", "--end", "20230105143000")
        file, new, pipe, link, ahead = (self.root / name for name in ("p", "new", "pipe", "link", "ahead"))
        file.touch(), link.symlink_to(file), ahead.symlink_to(new), os.mkfifo(pipe)
        for path in link, ahead, pipe:
            run = [BIN / "zorv-explain", "--root", self.root, "--html", path, "20230105103000", "20230105143000"]
            explain = subprocess.Popen(run, stdout=subprocess.DEVNULL)
            page = pipe.read_text() if path == pipe else None
            self.assertEqual(explain.wait(), 1)
            self.assertRegex(page or path.read_text(), r"(?s)No point was slow.*largest deviation.*480 of 480 intervals.*</html>\n$")
        run = [BIN / "zorv-explain", "--root", self.root, "20230105103000", "20230105143000"]
        for option, path in itertools.product(("--html", "--log"), (CONFIG, DATABASE, "evidence")):
            (self.root / "evidence").unlink(missing_ok=True), (self.root / "evidence").symlink_to(DATABASE)
            before = (self.root / path).read_bytes()
            refused = subprocess.run([*run, option, self.root / path], capture_output=True, text=True)
            self.assertEqual((refused.returncode, refused.stdout, (self.root / path).read_bytes()), (2, "", before))
        self.assertTrue(link.is_symlink() and file.exists() and new.exists() and pipe.is_fifo())


if __name__ == "__main__":
    unittest.main()
