#!/usr/bin/env python3
"""Checks of the sources that need no build: lint.py CHECK SOURCE_DIR BUILD_DIR [TOOL...]. Prints what is wrong."""
import json
import re
import subprocess
import sys
from pathlib import Path

# Who may include whom; all may include themselves and agent/. A folder is one unit, or several named here.
SHARED_FOLDERS = {
    "fault_algorithm": ["fault_anomalydetect", "fault_correlation", "fault_rootcause"],
    "fault_spectrum_graph": ["fault_causality_errcode_graph", "fault_causality_graph", "fault_detect_object",
                             "fault_json_object"],
}
GRAPHS = {"fault_causality_graph", "fault_causality_errcode_graph"}
ARROWS = {
    "agent": set(),
    "fault_common": set(),
    "fault_switch": set(),
    "fault_database": set(),
    "fault_json_object": set(),
    "fault_correlation": set(),
    "fault_detect_object": {"fault_correlation", "fault_database"},
    "fault_anomalydetect": {"fault_detect_object"},
    "fault_causality_graph": {"fault_correlation", "fault_database", "fault_json_object"},
    "fault_causality_errcode_graph": {"fault_causality_graph", "fault_correlation", "fault_database",
                                      "fault_json_object"},
    "fault_rootcause": GRAPHS | {"fault_json_object", "fault_correlation"},
    "fault_debug": GRAPHS | {"fault_rootcause", "fault_anomalydetect", "fault_detect_object", "fault_database",
                             "fault_switch"},
    "fault_server": {"fault_debug", "fault_switch", "fault_database", "fault_json_object"},
    "text": set(),
    "page": {"text"},
    "cli": {"text"},
    "host/process": {"text"},
    "host/services": {"host/process", "text"},
    "host/cluster": {"host/services", "host/process", "text"},
    "host/capture": {"host/services", "host/process", "text"},
    "host/collecting": {"host/capture", "host/services", "host/process", "text"},
    "host/basis": {"host/services", "host/process", "text"},
    "host/command": {"cli", "text"},
    "host/state": {"host/basis", "host/services", "host/process", "cli", "text"},
    "host/console": {"host/collecting", "host/capture", "host/state", "host/command", "host/basis", "host/services", "host/process", "cli", "text"},
    "host/terminal": {"host/console", "host/command", "host/capture", "host/services", "host/process", "text"},
    "simulator/graphs": set(),
    "simulator/plan": {"simulator/graphs", "cli", "text"},
    "simulator/files": {"simulator/plan", "simulator/graphs", "cli", "text"},
    "simulator/live": {"simulator/files", "simulator/plan", "cli", "text"},
    "simulator": {"simulator/live", "simulator/files", "simulator/plan", "cli", "text"},
}
ARROWS["host"] = {unit for unit in ARROWS if unit.startswith("host/")} | {"cli", "text"}
ARROWS["explain/finding"] = {"text", "fault_common", "fault_correlation", "fault_database"}
ARROWS["explain/analysis"] = {"explain/finding", "text", "fault_common", "fault_correlation", "fault_json_object",
                              "fault_causality_graph", "fault_rootcause"}
ARROWS["explain/errors"] = {"explain/analysis", "explain/finding", "fault_common", "fault_database", "fault_json_object",
                            "fault_causality_graph", "fault_causality_errcode_graph"}
ARROWS["explain/text"] = ARROWS["explain/page"] = {"explain", "explain/analysis", "explain/errors", "explain/finding", "text"}
ARROWS["explain/overview"] = ARROWS["explain/text"] | {"explain/text"}
ARROWS["explain/page"] = ARROWS["explain/text"] | {"explain/overview", "page"}
ARROWS["explain/series"] = ARROWS["explain/text"] | {"explain/text", "fault_common", "fault_database", "cli"}
ARROWS["explain"] = {"explain/analysis", "explain/errors", "explain/finding", "fault_common", "fault_database", "fault_json_object", "fault_detect_object",
                     "cli", "text", "host/process", "host/services", "host/capture"}
ARROWS["fleet/answers"] = {"text"}
ARROWS["fleet/folding"] = {"fleet/answers", "explain/finding", "text"}
ARROWS["fleet/collecting"] = {"fleet/answers", "host/process", "text"}
ARROWS["fleet/reports"] = {"fleet/folding", "fleet/answers", "page", "text"}
ARROWS["fleet"] = {unit for unit in ARROWS if unit.startswith("fleet/")} | {"host/process", "host/capture", "cli", "text"}
ARROWS["check/source"] = set()
ARROWS["check/graph"] = {"check/source", "fault_common", "text"}
ARROWS["check/rules"] = {"check/graph", "check/source", "fault_common", "text"}
ARROWS["check"] = {"check/source", "check/graph", "check/rules", "cli", "text", "host/process", "host/capture"}
ARROWS["explain/watch"] = {"explain", "explain/analysis", "explain/errors", "explain/finding", "fault_common", "text", "host/process"}
# System headers that only one unit of the plug-in may use.
OWNED_HEADERS = {"sqlite3.h": "fault_database", "sys/inotify.h": "fault_database", "json/": "fault_json_object"}

root, build, tools = Path(sys.argv[2]), Path(sys.argv[3]), sys.argv[4:]


def sources(*suffixes):
    tops = [top for top in root.iterdir() if top.name not in ("build", ".git")]
    files = [path for top in tops for path in (top.rglob("*") if top.is_dir() else [top])]
    return sorted(path for path in files if path.suffix in suffixes and path.is_file())


def unit_of(path):
    parts = path.relative_to(root).parts
    if parts[0] != "libsmartdiagnose":
        return "/".join(parts[:2]) if "/".join(parts[:2]) in ARROWS else parts[0]
    named = [unit for unit in SHARED_FOLDERS.get(parts[1], []) if path.stem.startswith(unit)]
    return named[0] if named else parts[1]


def includes(path):
    """Each name that `path` includes, and the file of ours that it is, if it is one."""
    for name in re.findall(r'^\s*#\s*include\s*["<](.+?)[">]', path.read_text(), re.M):
        found = [folder / name for folder in (path.parent, root, root / "libsmartdiagnose") if (folder / name).exists()]
        yield name, found[0].resolve() if found else None


def check_arrows():
    for path in sources(".h", ".cpp"):
        unit = unit_of(path)
        if unit in ("tests", "benchmarks"):
            continue
        in_plugin = path.is_relative_to(root / "libsmartdiagnose")
        allowed = ARROWS.get(unit, set()) | {unit, "agent"} | ({"fault_common"} if in_plugin else set())
        for name, file in includes(path):
            owner = next((unit for header, unit in OWNED_HEADERS.items() if in_plugin and name.startswith(header)), unit)
            if owner != unit or unit not in ARROWS or file and unit_of(file) not in allowed:
                yield f"{path.relative_to(root)}: {unit} may not include {name}"


def check_circles():
    """A header and its source are one: what one of them includes, both need. A part, such as unit_part, may use
    what the header of its unit declares, though the unit's source uses the part."""
    needs = {}
    for path in sources(".h", ".cpp"):
        for _, file in includes(path):
            if file and file.with_suffix("") != path.with_suffix(""):
                is_own_unit = file.parent == path.parent and path.stem.startswith(file.stem + "_")
                for name in (path, path.with_suffix("")):
                    needs.setdefault(name, set()).add(file if is_own_unit else file.with_suffix(""))
    for name in needs:
        reached, ahead = {}, [name]
        while ahead:
            step = ahead.pop()
            new = needs.get(step, set()) - reached.keys()
            reached.update(dict.fromkeys(new, step))
            ahead += new
        if name in reached:
            yield f"{name.relative_to(root)}: needs itself, by {reached[name].relative_to(root)}"


def check_registered():
    """Every source is compiled, and every test file's program is run by ctest."""
    commands = {Path(entry["file"]): entry["command"]
                for entry in json.loads((build / "compile_commands.json").read_text())}
    run_by_ctest = "\n".join(path.read_text() for path in build.rglob("CTestTestfile.cmake"))
    for path in sources(".cpp"):
        target = re.search(r" -o \S*CMakeFiles/([^/]+)\.dir/", commands.get(path, ""))
        if not target:
            yield f"{path.relative_to(root)}: no target compiles it"
        elif path.stem.endswith("_test") and f"/{target[1]}" not in run_by_ctest:
            yield f"{path.relative_to(root)}: ctest does not run {target[1]}"


def output_of(*command):
    run = subprocess.run(command, cwd=root, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return [f"{' '.join(map(str, command[:3]))} ...\n{run.stdout}"] if run.returncode else []


def check_headers():
    """The agent's headers stand alone, in both languages that agents are written in."""
    for compiler, language, standard in ((tools[0], "c", "c11"), (tools[1], "c++", "c++17")):
        for header in (root / "agent").glob("*.h"):
            yield from output_of(compiler, "-x", language, f"-std={standard}", "-fsyntax-only", "-Wall", "-Wextra",
                                 "-Wpedantic", "-Werror", "-I", root, "-include", header, "/dev/null")


def check_format():
    for path in sources(".h", ".cpp"):
        if subprocess.run([tools[0], path], check=True, stdout=subprocess.PIPE).stdout != path.read_bytes():
            yield f"{path.relative_to(root)}: {tools[0]} would change it"


def check_spelling():
    return output_of(tools[0])


def check_scripts():
    scripts = [path for path in sources("", ".sh", ".bash") if path.suffix or path.read_bytes()[:64].startswith(b"#!/usr/bin/env bash")]
    return output_of(tools[0], "--external-sources", *scripts)


faults = list(globals()[f"check_{sys.argv[1]}"]())
print("\n".join(faults) or "nothing found")
sys.exit(bool(faults))
