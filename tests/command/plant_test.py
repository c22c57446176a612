"""What --plant says of configurations of which it is known what can be found."""
import json
import subprocess
import unittest
from pathlib import Path

import jsonschema
from console import BIN, ConsoleTest

SCHEMA = json.loads((Path(__file__).parents[2] / "docs/check-plant.schema.json").read_text())


def graph(edges, **infos):
    """Of "A-B A-C"; ids in the order of the first mention."""
    labels = list(dict.fromkeys(label for edge in edges.split() for label in edge.split("-")))
    pairs = [[str(10 + labels.index(label)) for label in edge.split("-")] for edge in edges.split()]
    return {"nodes": [{"id": 10 + i, "label": label, "name": "", "info": infos.get(label, {})} for i, label in enumerate(labels)],
            "edges": [{"source": source, "target": target} for source, target in pairs if source != target]}


class Plant(ConsoleTest):
    def plant(self, *options):
        done = subprocess.run([BIN / "zorv-check", "--plant", *options], capture_output=True, text=True)
        return done.returncode, done.stdout, done.stderr

    def proof(self, *options):
        """By graph and point: how often both are right, why the explanation is not, and what it names."""
        status, text, err = self.plant("--json", *options)
        self.assertEqual(err, "")
        document = json.loads(text)
        jsonschema.validate(document, SCHEMA)
        sites = {(one["graph"], one["point"]): one for one in document["sites"]}
        counting = [one for one in sites.values() if not one["observation"]]
        self.assertEqual([document[key] for key in ("points", "walk_found", "explanation_found")], [len(counting)] + [
            sum(one[who]["right"] == 3 for one in counting) for who in ("walk", "explanation")])
        for one in sites.values():
            for who in ("walk", "explanation"):
                self.assertEqual(one[who]["right"], one[who]["named"].count(one["point"]))
        return status, sites

    def test_every_point_that_an_analysis_comes_to(self):
        host = "TGT_LUMO_HOST_WRITE"
        config = self.root / "own.json"
        config.write_text(json.dumps({
            "SAN_IO_WRITE": graph(f"{host}-LEFT {host}-RIGHT LEFT-SHARED RIGHT-SHARED SHARED-A_OB_B {host}-VIA CUT-OFF",
                                  VIA={"subGraph": "BELOW"}),
            "BELOW": graph("VIA-A_POINT_WITH_A_NAME_THAT_FILLS_THE_COLUMN VIA-LOW"), "UNUSED": graph("X-Y"),
            **{name: graph(f"NAS_TRANS_ALL-{name}", **{name: {"subGraph": "BOTH"}}) for name in ("NAS_IO_NFSV3", "NAS_IO_SMB2")},
            "BOTH": graph("FS-DISK")}))
        status, sites = self.proof("--strict", config)
        found = {key: one["explanation"]["right"] for key, one in sites.items() if not one["observation"]}
        here = {("SAN_IO_WRITE", point): 3 for point in (host, "LEFT", "RIGHT", "SHARED", "VIA")}
        below = {("BELOW", point): 3 for point in ("A_POINT_WITH_A_NAME_THAT_FILLS_THE_COLUMN", "LOW")}
        shared = {**{(name, name): 3 for name in ("NAS_IO_NFSV3", "NAS_IO_SMB2")}, ("NAS_IO_NFSV3", "NAS_TRANS_ALL"): 3,
                  ("NAS_IO_SMB2", "NAS_TRANS_ALL"): 3, ("BOTH", "FS"): 3, ("BOTH", "DISK"): 3}
        self.assertEqual((status, found), (0, {**here, **below, **shared}))
        self.assertEqual(sites["BELOW", "A_POINT_WITH_A_NAME_THAT_FILLS_THE_COLUMN"]["walk"]["right"], 3)
        unseen = sites["SAN_IO_WRITE", "A_OB_B"]
        self.assertEqual((unseen["explanation"]["named"], unseen["reason"]), (["SHARED"] * 3, "observation only"))
        text = self.plant("--point", "LOW", config)[1].split("\n")
        self.assertEqual([text[0].split(), text[1].split()[:2], text[-3:]], [
            "point graph right walk names right explanation names".split(), ["LOW", "BELOW"],
            ["", "of 1 point the walk finds 1, the explanation 1", ""]])
        self.assertEqual(self.plant("--point", "LOOW", config)[::2], (
            2, 'zorv-check: no analysis of delays comes to a point "LOOW"; did you mean LOW?\n'))
        config.write_text('{"SAN_IO_WRITE": {"nodes": [{"id": 1, "label": "%s"}], "edges": [{"source": "x"}]}}' % host)
        self.assertEqual(self.plant(config)[::2], (3, f"zorv-check: lumo-sim, with a fault at {host}: {config}: "
                                                      'graph "SAN_IO_WRITE": edges[0]: source is no number: "x"\n'))

    def test_what_a_node_cannot_tell(self):
        """Statistics that never change, and such that are alike, hide what lies below or beside them."""
        host = "TGT_LUMO_HOST_READ"
        config = self.root / "own.json"
        config.write_text(json.dumps({"SAN_IO_READ": graph(f"{host}-FLAT FLAT-HIDDEN {host}-ONE {host}-OTHER")}))
        self.simulate("--config", config, "--hours", "1", "--constant-point", "FLAT", "--twin-points", "ONE", "OTHER")
        status, sites = self.proof("--strict", "--root", self.root)
        reasons = {point: (one["reason"], one["explanation"]["named"][0]) for (_, point), one in sites.items()}
        self.assertEqual((status, reasons), (1, {
            host: (None, host), "ONE": (None, "ONE"), "OTHER": ("same statistics", "ONE"),
            "FLAT": ("constant", host), "HIDDEN": (None, "HIDDEN")}))


if __name__ == "__main__":
    unittest.main()
