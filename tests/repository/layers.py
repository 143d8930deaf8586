"""The folders include downwards only, and nothing above the seam names what lies beneath it."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]

# From the top to the bottom.
LAYERS = [["core"], ["ui"], ["net"], ["device"], ["model"], ["platform"]]
LEVEL = {folder: level for level, group in enumerate(LAYERS) for folder in group}

# Two classes that call each other: the upper one is declared forward, and the source file includes it.
UPWARD = {
    ("model/VLAdSuggestion.cpp", "device/VLUserExtraInfoModel.h"),
    ("model/VLAdSuggestion.cpp", "net/VLRequestBuilder.h"),
    ("model/VLCachedVelmoraAds.cpp", "core/VelmoraAdState.h"),
    ("model/VLDefaults.cpp", "net/VLRequestQueueImpl.h"),
    ("model/VLDirectAdSuggestionRequestJsonParams.cpp", "device/VLUserExtraInfoModel.h"),
    ("model/VLRewardRequestJsonParams.cpp", "device/VLUserExtraInfoModel.h"),
    ("net/VLRequestHeaders.cpp", "core/VLBuildVariants.h"),
    ("net/VLRequestHeaders.cpp", "core/VelmoraManager.h"),
    ("net/VelmoraVAST.cpp", "core/VelmoraManager.h"),
    ("ui/VLAdShowUIController.cpp", "core/VLAdShowOptionsState.h"),
    ("ui/VLAdShowUIController.cpp", "core/VelmoraManager.h"),
}
FOR_EVERYBODY = {"core/VLLog.h"}

# What only platform/desktop may include.
BENEATH = re.compile(r"^(curl/|sqlite3\.h|dbus/|gio/|glib|QtNetwork|QNetwork|QtMultimedia|QMedia|QVideo|QGeo|QtWebEngine|QWebEngine|QDBus)")
PUBLIC_MAY_INCLUDE = re.compile(r"^(velmora/[\w.]+|[a-z_]+)$")

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def faults():
    used = set()
    for path in sorted(ROOT.rglob("*")):
        name = path.relative_to(ROOT).as_posix()
        folder = name.split("/")[0]
        if path.suffix not in (".h", ".cpp") or (folder not in LEVEL and folder != "include"):
            continue
        for bracket, header in INCLUDE.findall(path.read_text(encoding="utf-8")):
            if folder == "include":
                if not PUBLIC_MAY_INCLUDE.match(header):
                    yield f"{name}: a public header includes {header}"
                continue
            if BENEATH.match(header) and not name.startswith("platform/desktop/"):
                yield f"{name}: {header} belongs beneath the seam"
            if name.startswith("platform/") and not name.startswith("platform/desktop/") and header.startswith("Q"):
                yield f"{name}: {header} belongs into platform/desktop"
            target = header.split("/")[0]
            if bracket == "<" or target not in LEVEL or header in FOR_EVERYBODY:
                continue
            if (name, header) in UPWARD:
                used.add((name, header))
            elif LEVEL[target] < LEVEL[folder] or (LEVEL[target] == LEVEL[folder] and target != folder):
                yield f"{name}: includes {header}, which lies above"
    for name, header in sorted(UPWARD - used):
        yield f"{name}: no longer includes {header}; take it off the list"


found = list(faults())
print("\n".join(found) or "the folders include downwards only")
sys.exit(1 if found else 0)
