#!/usr/bin/env python3
"""Compares the symbols of the shipped file with the two reviewed lists: symbols.py PLUGIN EXPORTED SERVICES."""
import re
import subprocess
import sys

plugin, exported_list, services_list = sys.argv[1:]
TOOLCHAIN = {"_ITM_deregisterTMCloneTable weak", "_ITM_registerTMCloneTable weak", "__gmon_start__ weak"}


def lines(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.splitlines()


def reviewed(path):
    with open(path) as file:
        return {line.strip() for line in file if line.strip() and not line.startswith("#")}


def defined(library):
    return {line.split()[-1].split("@")[0] for line in lines("nm", "-D", "--defined-only", library)}


def exported():
    return {line.split(maxsplit=2)[2].split("(")[0] for line in lines("nm", "-DC", "--defined-only", plugin)}


def services():
    needed = [match[1] for match in re.finditer(r"(?:=> | )(/\S+) \(0x", "\n".join(lines("ldd", plugin)))]
    provided = set().union(*map(defined, needed))
    found = set()
    for line in lines("nm", "-D", "--undefined-only", plugin):
        kind, name = line.split()
        if name.split("@")[0] not in provided:
            found.add(name + (" weak" if kind == "w" else ""))
    return found - TOOLCHAIN


wrong = False
for what, path, found in (("exported", exported_list, exported()), ("left undefined", services_list, services())):
    for name in sorted(found ^ reviewed(path)):
        wrong = True
        print(f"{what}: {name}: " + (f"not in {path}" if name in found else f"in {path} only"))
sys.exit(wrong)
