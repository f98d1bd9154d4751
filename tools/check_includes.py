#!/usr/bin/env python3
"""Checks who includes whom, and who names which part of the application's state.

Every #include "..." names a file from the repository root, and:
  - no file includes its way back to itself;
  - a file of the pure library never reaches a Windows header;
  - a logic file (neither *_dialog.cpp nor *_view.cpp) never reaches a dialog, a control or <commctrl.h>;
  - folders include each other as FOLDERS and UPWARD say, and all that these allow is in use;
  - a member of AppState is named only in the folders that STATE gives it to, and all of them name it;
  - only window/ includes the main dialog;
  - the product never includes the workbench or a test.

Which files belong to which library is read from the compile commands of the two builds.

    tools/check_includes.py [HOST_BUILD] [WINDOWS_BUILD]     default: build/host build/windows
"""

import json
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
QUOTED = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)
ANGLED = re.compile(r"^\s*#\s*include\s*<([^>]+)>", re.M)
# How a source names a member of the state: by the argument, by a member of its own, by the function.
STATE_MEMBER = re.compile(r"\b(?:state_?|(?:state|appState)\(\))(?:\.|->)(\w+)")

# The product's floors from the bottom up, each with those below it that it includes.
FOLDERS = {
    "base": set(),
    "ui": {"base"},
    "records": {"base"},
    "jobs": set(),
    "state": {"base", "ui", "records", "jobs"},
    "discovery": {"base", "records", "state"},
    "monitoring": {"base", "records", "state", "discovery"},
    "settings": {"base", "ui", "records", "state"},
    "health": {"base", "ui", "records", "state"},
    "admin": {"base", "ui", "records", "jobs", "state", "discovery", "monitoring"},
    "scan": {"base", "ui", "records", "jobs", "state", "discovery", "monitoring", "admin"},
    "surface": {"base", "ui", "records", "jobs", "state", "discovery"},
    "copy": {"base", "ui", "records", "jobs", "state", "discovery", "admin"},
    "hex": {"base", "ui", "records", "state", "discovery", "copy"},
    "reports": {"base", "ui", "records", "state", "monitoring", "health"},
    "details": {"base", "ui", "records", "discovery", "monitoring", "health"},
    "window": {"base", "ui", "records", "jobs", "state", "discovery", "monitoring", "settings", "health", "admin", "scan",
               "surface", "copy", "hex", "reports", "details"},
}

# The headers that folders further down include all the same, each with its reason. Three are many.
UPWARD = {}

# Every member of AppState, with the folders whose sources name it. Other folders are given what they work with.
STATE_HEADER = "state/app_state.h"
STATE = {
    "activeDrive": {"state", "health", "scan", "reports", "window"},
    "activeDriveChosen": {"state", "scan", "window"},
    "caseInformation": {"copy"},
    "chosen": {"reports", "window"},
    "companyInfo": {"reports", "window"},
    "eventLogFile": {"state", "window"},
    "jobs": {"admin", "scan", "surface", "copy", "window"},
    "messages": {"health", "reports", "window"},
    "mountStatus": {"admin", "window"},
    "raceTrack": {"copy"},
    "scan": {"admin", "scan", "copy", "window"},
    "smart": {"scan"},
    "view": {"state", "admin", "scan", "surface", "copy", "window"},
}
WINDOWS_HEADERS = re.compile(
    r"^(windows|windowsx|windef|winbase|winuser|winioctl|ntdd\w+|commctrl|commdlg|shellapi|shlobj|objbase|gdiplus|wincrypt|bcrypt)\.h$",
    re.I,
)
CONTROL_HEADERS = re.compile(r"^(commctrl|windowsx|prsht|richedit)\.h$", re.I)

# Pure all the same: the clock has a body for either build, so that the event log is pure.
BOTH_WORLDS = {"base/local_moment.cpp"}

# What of ui/ a logic file may use: the boxes, the choosers and the waiting, and what is pure. All else in ui/ is a window.
UI_FOR_LOGIC = {"ui/prompts.h", "ui/choosers.h", "ui/waiting.h", "ui/picture_choice.h", "ui/task_bar_button.h", "ui/user_call.h"}
# Named like a view, but only the interface that jobs talk to; it shows no control.
VIEW_INTERFACES = {"state/main_view.h"}


def source_files():
    listed = subprocess.run(
        ["git", "ls-files", "-co", "--exclude-standard", "--", "*.cpp", "*.h"],
        cwd=ROOT, check=True, capture_output=True, text=True,
    ).stdout.split()
    return [name for name in listed if (ROOT / name).is_file()]


def library_sources(build, target):
    """The sources of ours that `build` compiles into `target`."""
    database = Path(build) / "compile_commands.json"
    if not database.is_file():
        sys.exit(f"{database} does not exist: configure that build first")
    found = set()
    for entry in json.loads(database.read_text()):
        if f"/{target}.dir/" in entry["command"]:
            path = Path(entry["file"])
            if path.is_relative_to(ROOT) and not path.is_relative_to(ROOT / "build"):
                found.add(str(path.relative_to(ROOT)))
    return found


class Graph:
    def __init__(self, files):
        self.quoted = {}
        self.angled = {}
        self.faults = []
        known = set(files)
        for name in files:
            text = (ROOT / name).read_text(encoding="utf-8")
            self.angled[name] = ANGLED.findall(text)
            self.quoted[name] = []
            for included in QUOTED.findall(text):
                if included in known:
                    self.quoted[name].append(included)
                elif (ROOT / name).parent.joinpath(included).is_file() and not (ROOT / included).is_file():
                    self.faults.append(f'{name} includes "{included}", which is not written from the repository root')

    def cycles(self):
        done, trail, on_trail, found = set(), [], set(), []

        def visit(name):
            trail.append(name)
            on_trail.add(name)
            for included in self.quoted[name]:
                if included in on_trail:
                    found.append(trail[trail.index(included):] + [included])
                elif included not in done:
                    visit(included)
            on_trail.discard(trail.pop())
            done.add(name)

        for name in sorted(self.quoted):
            if name not in done:
                visit(name)
        return [" -> ".join(cycle) for cycle in found]

    def reach(self, start):
        """Every file of ours reached from `start` (itself included), each with the way there."""
        ways, queue = {start: [start]}, [start]
        for name in queue:
            for included in self.quoted[name]:
                if included not in ways:
                    ways[included] = ways[name] + [included]
                    queue.append(included)
        return ways

    def reached_headers(self, start, pattern):
        for name, way in self.reach(start).items():
            for header in self.angled[name]:
                if pattern.match(header):
                    yield " -> ".join(way + [f"<{header}>"])


def folder(name):
    return name.split("/", 1)[0]


def is_dialog_or_view(name):
    return re.search(r"_(dialog|view)\.(cpp|h)$", name) is not None and name not in VIEW_INTERFACES


def is_window(name):
    """A dialog, a view or a control."""
    return is_dialog_or_view(name) or (folder(name) == "ui" and name.endswith(".h") and name not in UI_FOR_LOGIC)


def check_pure(graph, pure):
    for name in sorted(pure & graph.quoted.keys() - BOTH_WORLDS):
        for way in graph.reached_headers(name, WINDOWS_HEADERS):
            yield f"pure code reaches a Windows header: {way}"


def check_logic(graph, logic):
    for name in sorted(logic & graph.quoted.keys()):
        for way in graph.reached_headers(name, CONTROL_HEADERS):
            yield f"logic reaches a control: {way}"
        for reached, way in graph.reach(name).items():
            if is_window(reached):
                yield f"logic reaches a window: {' -> '.join(way)}"


def check_folders(graph):
    for name, includes in sorted(graph.quoted.items()):
        for included in includes:
            if included == "window/main_dialog.h" and folder(name) not in {"window", "tests"}:
                yield f"only window/ includes the main dialog, but {name} does"
            if folder(name) in FOLDERS and folder(included) in {"workbench", "tests", "benchmarks"}:
                yield f"the product never includes {folder(included)}/, but {name} includes {included}"


def check_layers(graph):
    """The includes between the product's folders against FOLDERS and UPWARD, and those against the includes."""
    order = list(FOLDERS)
    for upper, lowers in FOLDERS.items():
        for lower in lowers:
            if lower not in order[: order.index(upper)]:
                yield f"FOLDERS: {lower}/ does not stand below {upper}/"
    unused = {(upper, lower) for upper, lowers in FOLDERS.items() for lower in lowers}
    unused |= {(name, header) for header, names in UPWARD.items() for name in names}
    for name, includes in sorted(graph.quoted.items()):
        for included in includes:
            of, to = folder(name), folder(included)
            if of not in FOLDERS or to not in FOLDERS or of == to:
                continue
            if to in FOLDERS[of]:
                unused.discard((of, to))
            elif of in UPWARD.get(included, ()):
                unused.discard((of, included))
            else:
                yield f"{of}/ may not include {to}/, but {name} includes {included}"
    for of, what in sorted(unused):
        yield f"no file of {of}/ includes {what}: its entry can go"


def state_members():
    """The data members that AppState has, in order."""
    text = re.sub(r"//.*", "", (ROOT / STATE_HEADER).read_text(encoding="utf-8"))
    body = re.search(r"^struct AppState \{$(.*?)^\};$", text, re.M | re.S).group(1)
    return re.findall(r"(\w+)(?:\{[^}]*\}| = [^;]*)?;", body)


def check_state(files):
    """The members of AppState that each folder's sources name against STATE, and the other way round."""
    members = state_members()
    if sorted(members) != sorted(STATE):
        yield f"STATE lists {sorted(STATE)}, but {STATE_HEADER} has {sorted(members)}"
    unused = {(of, member) for member, folders in STATE.items() for of in folders}
    for name in sorted(files):
        if folder(name) not in FOLDERS:
            continue
        for member in sorted(set(STATE_MEMBER.findall((ROOT / name).read_text(encoding="utf-8"))) & STATE.keys()):
            if folder(name) in STATE[member]:
                unused.discard((folder(name), member))
            else:
                yield f"{folder(name)}/ may not name state.{member}, but {name} does"
    for of, member in sorted(unused):
        yield f"no file of {of}/ names state.{member}: its entry can go"


def main():
    host = Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/host")
    windows = Path(sys.argv[2] if len(sys.argv) > 2 else ROOT / "build/windows")
    files = source_files()
    graph = Graph(files)
    pure = library_sources(host, "torvane_pure") | library_sources(windows, "torvane_pure")
    logic = library_sources(windows, "torvane_logic") | pure
    faults = graph.faults
    faults += [f"circle: {cycle}" for cycle in graph.cycles()]
    faults += [*check_pure(graph, pure), *check_logic(graph, logic), *check_folders(graph), *check_layers(graph),
               *check_state(files)]
    for fault in faults:
        print(fault)
    if not faults:
        print(f"{len(files)} files, {len(pure)} of them pure sources and {len(logic - pure)} logic: no fault")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
