#!/usr/bin/env python3
"""Gives the copies that the component tests made, with their maps and sources, to GNU ddrescue.

    tests/evidence/read_back.py FOLDER RESULTS.xml

Each copy lies in FOLDER as NAME.copy, NAME.map and NAME.source. ddrescue has to accept the map, fill the holes from the
source, and write nothing else. RESULTS.xml is a JUnit file.
"""

import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import junit  # noqa: E402

# The component tests leave these (tests/component/copy_evidence_test.cpp).
EXPECTED = ("forensic", "stopped", "not-begun", "not-written", "reverse-clone")

RANGE = re.compile(r"^(0x[0-9A-F]+)\s+(0x[0-9A-F]+)\s+([?*/+-])$")


def ranges_of(text):
    """(first byte, length, status) of each block of a map file; they follow each other from 0."""
    found = [RANGE.match(line) for line in text.splitlines() if not line.startswith("#")][1:]
    assert all(found), f"a line that is no block: {text}"
    ranges = [(int(row[1], 16), int(row[2], 16), row[3]) for row in found]
    end = 0
    for offset, length, _ in ranges:
        assert offset == end and length > 0, f"no block begins at {end}: {ranges}"
        end = offset + length
    return ranges


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, f"{' '.join(map(str, command))}: {done.returncode}\n{done.stdout}{done.stderr}"


def fill(source, copy, map_file):
    """Lets ddrescue read what is missing, until it has nothing left to do."""
    run("ddrescuelog", "--show-status", map_file)
    run("ddrescue", "--quiet", "--force", "--sector-size=512", source, copy, map_file)
    run("ddrescuelog", "--done-status", map_file)


def check(folder, name, place):
    source = (folder / f"{name}.source").read_bytes()
    copy = (folder / f"{name}.copy").read_bytes()
    map_text = (folder / f"{name}.map").read_text(encoding="utf-8")
    ranges = ranges_of(map_text)
    assert sum(length for _, length, _ in ranges) == len(source), "the map is not of the whole source"
    assert any(status != "+" for *_, status in ranges), "nothing is missing, so nothing is shown"

    source_file, copy_file, map_file = place / "source", place / "copy", place / "map"
    source_file.write_bytes(source)
    copy_file.write_bytes(copy)
    map_file.write_text(map_text, encoding="utf-8")
    fill(source_file, copy_file, map_file)
    filled = copy_file.read_bytes()
    assert filled[: len(source)] == source, "the holes are not filled"
    assert filled[len(source) :] == copy[len(source) :], "something behind the source was written"

    # Once more with other bytes in the places that are finished: they stay, so nobody has written there.
    marked = bytearray(copy)
    for offset, length, status in ranges:
        if status == "+":
            marked[offset : offset + length] = bytes(byte ^ 0xFF for byte in source[offset : offset + length])
    copy_file.write_bytes(marked)
    map_file.write_text(map_text, encoding="utf-8")
    fill(source_file, copy_file, map_file)
    filled = copy_file.read_bytes()
    for offset, length, status in ranges:
        end = offset + length
        expected = marked[offset:end] if status == "+" else source[offset:end]
        assert filled[offset:end] == expected, f"bytes {offset} to {end}, {status}"


def main():
    folder, results = Path(sys.argv[1]), sys.argv[2]
    cases = []
    for name in EXPECTED:
        started, failure = time.monotonic(), None
        try:
            with tempfile.TemporaryDirectory() as place:
                check(folder, name, Path(place))
        except (AssertionError, OSError, subprocess.SubprocessError) as error:
            failure = str(error)
            print(f"{name}: {failure}")
        cases.append((name, f"{time.monotonic() - started:.3f}", failure))
    junit.write(results, "evidence", cases)
    failed = sum(1 for case in cases if case[2] is not None)
    print(f"{len(cases) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
