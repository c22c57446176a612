#!/usr/bin/python3
"""The reports of three commands as a script of sqlite3, pandas and scipy makes them, for the simulator's worlds:
python_report.py ROOT COMMAND START END, times as UTC seconds, zone UTC. It prints what the command prints, by the same
statements. In the environment, LEAN leaves out of them the columns that the report does not need, and BARE all but the
loading of its libraries."""
import json
import os
import sqlite3
import sys
import time
from pathlib import Path

import pandas
from scipy.stats import pearsonr

HOSTS = {"TGT_LUMO_HOST_READ": ["SAN_IO_READ"], "TGT_LUMO_HOST_WRITE": ["SAN_IO_WRITE"], "TGT_LUMO_HOST_CMD": ["SAN_IO_CMD"],
         "NAS_TRANS_ALL": ["NAS_IO_NFSV3", "NAS_IO_NFSV4", "NAS_IO_SMB2"]}
SEARCHED = ["ERRCODE_NAS_PROTO", "POOL_ERRCODE_READ", "MKV_IO_READ", "POOL_ERRCODE_WRITE", "MKV_IO_WRITE", "ERRCODE_SMB",
            "ERRCODE_SAN_PROTO"]
TYPES = ["IOERROR", "IORETRY", "IOACCESSDENY"]
COUNTS = ["errCode0", "errCode1", "errCode2"]
ALL = ["acceptnum", "successnum", "failednum", "retrynum", "avgdelay", "maxdelay", "mindelay", *COUNTS, "errCode3", "errCode4"]
LEAN = "LEAN" in os.environ


class Report:
    def __init__(self, root, start, end):
        self.database = sqlite3.connect(f"file:{root}/VRA/data/lumo/lumo_diagnose_data.db?mode=ro", uri=True)
        self.graphs = json.loads(Path(root, "VRA/zorv/conf/route_config.json").read_text())
        self.start, self.end = start, end
        self.tables = [name for name, in self.database.execute("select tablename from table_flag")]

    def rows(self, point, columns, start, end):
        return pandas.concat([pandas.read_sql_query(
            f"select curtime, {', '.join(columns)} from {table} where locateid = (select locateid from version_nmaps "
            f"where locatename = '{point}') and curtime >= {start} and curtime <= {end}", self.database)
            for table in self.tables], ignore_index=True)

    def anomalies(self):
        """The worst sample beyond three deviations of each host point."""
        for point in HOSTS:
            rows = self.rows(point, ["avgdelay"], self.start, self.end)
            delays = rows.avgdelay
            flagged = rows[(delays - delays.mean()).abs() > 3 * delays.std()]
            if len(flagged):
                yield point, flagged.loc[flagged.avgdelay.idxmax()]

    def delaydetect(self):
        print("\nSmartDiagnose Anomaly Point\nlumoLocName                        anomalyTime               anomalyValue")
        for point, worst in self.anomalies():
            t = time.gmtime(worst.curtime)
            when = f"{t[0]}/{t[1]}/{t[2]} {t[3]}:{t[4]}:{t[5]}"
            print(f"{point:<35}{when:<24}{worst.avgdelay:<20}")

    def delayanal(self):
        found = [(point, graph, worst.curtime) for point, worst in self.anomalies() for graph in HOSTS[point]]
        for point, graph, peak in found:
            print("\n                   CausalityGraph Analysis")
            while graph:
                graph = self.walk(graph, point, peak)
                point = None

    def walk(self, graph, point, peak):
        """Prints the path down the best-correlated points; returns the graph to which the analysis is handed over."""
        nodes = {node["id"]: node for node in self.graphs[graph]["nodes"]}
        children = {}
        for edge in self.graphs[graph]["edges"]:
            children.setdefault(int(edge["source"]), []).append(int(edge["target"]))
        columns = ["avgdelay"] if LEAN else ALL
        data = {label: self.rows(label, columns, peak - 480, peak + 480) for label in {node["label"] for node in nodes.values()}}
        below = {child for several in children.values() for child in several}
        here = next(i for i in nodes if nodes[i]["label"] == point or point is None and i not in below)
        path = [(here, 1.0)]
        while children.get(here):
            own = data[nodes[here]["label"]]
            scores = []
            for child in children[here]:
                both = own.merge(data[nodes[child]["label"]], on="curtime")
                varies = both.avgdelay_x.nunique() > 1 and both.avgdelay_y.nunique() > 1
                scores.append((pearsonr(both.avgdelay_x, both.avgdelay_y)[0] if varies else -1.0, -child))
            score, here = max(scores)[0], -max(scores)[1]
            if score == -1.0 or "OB_" in nodes[here]["label"]:
                break
            path.append((here, score))
        weak = next((i for i, (_, score) in enumerate(path) if score < 0.4), len(path))
        cause = nodes[path[weak - 1][0]]
        print("=" * 67 + f"\nAnomalyNodeName                  RootGraphName\n{cause['label']:<32}{graph:<32}\n" + "-" * 69
              + "\nioPointid      locName                         coff         avgdelay(us)")
        for i, score in path:
            delays = data[nodes[i]["label"]].avgdelay
            print(f"{i:<12}{nodes[i]['label']:<32}{score:<13f}{(delays // len(delays)).sum():<30}")
        return cause.get("info", {}).get("subGraph")

    def showallerr(self):
        listed = {}
        for graph in SEARCHED:
            for node in sorted(self.graphs[graph]["nodes"], key=lambda node: node["id"]):
                info, label = node.get("info", {}), node["label"]
                if "MODULE" in node["description"] or label in listed:
                    continue
                atomic = "automic" in info.get("attr", "") and "whole" not in info.get("attr", "")
                rows = self.rows(info.get("qname", "") if atomic else label, COUNTS if LEAN else ALL, self.start, self.end)
                sums = rows[COUNTS].sum()
                listed[label] = [*sums, info.get("suggestion") or "---"]
        frame = pandas.DataFrame.from_dict(listed, orient="index", columns=[*TYPES, "advice"])
        for name in TYPES:
            some = frame[frame[name] > 0].sort_values(name, ascending=False, kind="stable")
            print(f"Error Code Type:{name:<20} total:{len(some)}")
            if some.empty:
                print(f"There're no data in this time interval about {name}.")
            else:
                print("No.  LocalPointName                                      ErrCodeCount        FixAdvice")
                for number, (label, row) in enumerate(some.head(101).iterrows(), 1):
                    print(f"{number:<5}{label:<50}  {row[name]:<18}  {row.advice}")
                if len(some) >= 101:
                    print("(There are too many records to show all information.)")
            print("-" * 100)


if __name__ == "__main__":
    if "BARE" not in os.environ:
        getattr(Report(sys.argv[1], int(sys.argv[3]), int(sys.argv[4])), sys.argv[2])()
