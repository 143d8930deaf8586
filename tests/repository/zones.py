"""The zones of the sandbox ad service are those that everybody else names: the README, the demo, the scripts.

Argument: velmora-sandbox.
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def text(name):
    return (ROOT / name).read_text(encoding="utf-8")


def between(name, start, end):
    part = text(name).split(start, 1)[1]
    return part.split(end, 1)[0]


lines = subprocess.run([sys.argv[1], "--zones"], stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines()
zones = {line.split("\t")[0] for line in lines}
NAMED = {
    "README.md": re.findall(r"`([\w-]+)`", between("README.md", "Its zones are test ads", "\n\n")),
    "scripts/ask-every-zone": re.findall(r'^    "([\w-]+)": \(', text("scripts/ask-every-zone"), re.M),
    "examples/demo/Zones.h": re.findall(r'\{"([\w-]+)", "', text("examples/demo/Zones.h")),
    "examples/demo/Scenarios.cpp": re.findall(r'\.zone = "([\w-]+)"', text("examples/demo/Scenarios.cpp")),
}

found = []
for name, names in NAMED.items():
    if set(names) != zones:
        found.append(f"{name}: lacks {sorted(zones - set(names))}, has {sorted(set(names) - zones)} beside them")
print("\n".join(found) or f"{len(zones)} zones, named alike everywhere")
sys.exit(1 if found else 0)
