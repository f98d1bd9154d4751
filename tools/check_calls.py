#!/usr/bin/env python3
"""Checks that the product calls no system function that does something else on Windows than where it is tested.

Each row of RULES names functions and says why, and what to call instead; docs/windows.md has the facts behind them. A
name counts wherever it stands in a source but in comments and texts.

    tools/check_calls.py
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent

# Folders whose code is no product.
ELSEWHERE = ("tests/", "workbench/", "benchmarks/", "tools/", "docs/", "build/")

RULES = (
    (
        r"(?:DrawText|DrawTextEx|TextOut|ExtTextOut|PolyTextOut|TabbedTextOut|DrawState|GrayString|GetTextExtentPoint"
        r"|GetTextExtentPoint32|GetTextExtentExPoint|GetTabbedTextExtent|GetCharacterPlacement|GetCharWidth"
        r"|GetCharWidth32|GetCharABCWidths|GetGlyphIndices)A?",
        "GDI takes text in the system's code page, whatever the manifest says: call it with W and wideText()",
    ),
    (
        r"GetWindowText(?:Length)?A?",
        "the length of a text in the code page is only a rough one: controlText() asks for it in UTF-16",
    ),
)

# A comment, a text or a character, each whole: what stands in them is no call.
NO_CODE = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"(?P<mark>[^()\s\\]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Fa-f])\'(?:\\.|[^\'\\\n])+\'', re.S
)


def code_of(source):
    """The source with blanks for what is no code; lines stay where they are."""
    return NO_CODE.sub(lambda found: re.sub(r"[^\n]", " ", found[0]), source)


def faults_in(name, source):
    code = code_of(source)
    return [
        f"{name}:{code.count(chr(10), 0, found.start()) + 1}: {found[0]}: {reason}"
        for functions, reason in RULES
        for found in re.finditer(rf"\b(?:{functions})\b", code)
    ]


def check_itself():
    """The rules find what they are for, and nothing else."""
    wrong = 'a();\n  ::DrawTextA (dc);\nauto* p = &TextOut;\nGetWindowTextLengthA(w);'
    right = 'DrawTextW(dc); // not DrawTextA\nlog("TextOutA"); /* TextOut\n */ draw(R"(TextOut")", 1\'000); SetWindowTextA(w);'
    places = [fault.split(": ")[0] for fault in faults_in("x", wrong)]
    if sorted(places) != ["x:2", "x:3", "x:4"] or faults_in("x", right):
        sys.exit(f"check_calls.py does not find what it should: {places}, {faults_in('x', right)}")


def main():
    check_itself()
    names = subprocess.run(
        ["git", "ls-files", "-co", "--exclude-standard", "--", "*.cpp", "*.h"],
        cwd=ROOT, check=True, capture_output=True, text=True,
    ).stdout.split()
    product = [name for name in names if not name.startswith(ELSEWHERE) and (ROOT / name).is_file()]
    faults = [fault for name in product for fault in faults_in(name, (ROOT / name).read_text(encoding="utf-8"))]
    for fault in faults:
        print(fault)
    if faults:
        sys.exit(1)
    print(f"{len(product)} sources call what is right")


if __name__ == "__main__":
    main()
