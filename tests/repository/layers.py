"""The folders include downwards only, and nothing above the seam names what lies beneath it."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]

# What each folder may include beside itself: the library's own column, and the column of what is seen.
LIBRARY = ["core", "net", "device", "store", "model", "log", "platform"]
SCREEN = ["ui", "screen", "model", "log", "platform"]
MAY = {folder: set(column[at:]) for column in (LIBRARY, SCREEN) for at, folder in enumerate(column)}
MAY["screen"] = {"screen", "log", "platform"}

# What goes the other way.
UPWARD = {
    ("screen/qt/host/ShowInApplication.cpp", "ui/VLAdShowUIController.h"),
    ("screen/qt/host/ShowInApplication.cpp", "model/VelmoraAdState.h"),
    ("screen/qt/host/ShowInApplication.cpp", "core/ShowStart.h"),
}

# What only these folders may include.
TOOLKIT = re.compile(r"^Q")
BENEATH = re.compile(r"^(curl/|sqlite3\.h|dbus/|gio/|glib|QtNetwork|QNetwork|QtMultimedia|QMedia|QVideo|QtWebEngine|QWebEngine|QDBus)")
PUBLIC_MAY_INCLUDE = re.compile(r"^(velmora/[\w.]+|[a-z_]+)$")

INCLUDE = re.compile(r"^(velmora/[\w.]+|[a-z_]+)$")

# Records answer in types: nobody above them converts what JSON brought.
ABOVE_RECORDS = ("core/", "net/", "store/", "ui/")
CONVERSION = re.compile(r"platform::(as(String|Integer|Double|Bool)|equals|isOneOf)\(")

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def faults():
    used = set()
    for path in sorted(ROOT.rglob("*")):
        name = path.relative_to(ROOT).as_posix()
        folder = name.split("/")[0]
        if path.suffix not in (".h", ".cpp") or (folder not in MAY and folder != "include"):
            continue
        text = path.read_text(encoding="utf-8")
        if name.startswith(ABOVE_RECORDS):
            yield from (f"{name}: {found.group()} is for the record to do" for found in CONVERSION.finditer(text))
        for bracket, header in INCLUDE.findall(text):
            if folder == "include":
                if not PUBLIC_MAY_INCLUDE.match(header) and "/hosts/" not in name:
                    yield f"{name}: a public header includes {header}"
                continue
            if BENEATH.match(header) and not name.startswith(("platform/desktop/", "screen/qt/")):
                yield f"{name}: {header} belongs beneath the seam"
            if TOOLKIT.match(header) and not name.startswith(("ui/", "screen/qt/")):
                yield f"{name}: {header} belongs to what is seen"
            target = header.split("/")[0]
            if bracket == "<" or target not in MAY:
                continue
            if (name, header) in UPWARD:
                used.add((name, header))
            elif target not in MAY[folder]:
                yield f"{name}: includes {header}, which lies above"
    for name, header in sorted(UPWARD - used):
        yield f"{name}: no longer includes {header}; take it off the list"


found = list(faults())
print("\n".join(found) or "the folders include downwards only")
sys.exit(1 if found else 0)
