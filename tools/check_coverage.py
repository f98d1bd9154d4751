#!/usr/bin/env python3
"""Checks that every line of pure code is reached by a unit test, except those that a list explains.

    tools/check_coverage.py REPORT LIST

REPORT is gcovr's JSON. LIST holds, for each line that may stay unreached, its file and its text:

    # The reason, for the lines below it.
    copy/jobs/copy_steps.cpp: job.system.logError("Could not ALLOCATE copy buffers");

One row is for one line; a text that stands in the file more than once needs a row for each. A row whose line is reached,
or is no longer there, fails as well, so that the list stays true.
"""

import json
import sys
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def unreached(report):
    """(file, text) of each line that no test reached -> its numbers; and how many lines there are."""
    found, total = {}, 0
    for file in report["files"]:
        texts = (ROOT / file["file"]).read_text().splitlines()
        counts = {}
        for line in file["lines"]:
            if not line["gcovr/noncode"]:
                counts[line["line_number"]] = counts.get(line["line_number"], 0) + line["count"]
        total += len(counts)
        for number, count in counts.items():
            if count == 0:
                found.setdefault((file["file"], texts[number - 1].strip()), []).append(number)
    return found, total


def explained(path):
    rows, reason = Counter(), ""
    for number, row in enumerate(path.read_text().splitlines(), 1):
        if row.startswith("#"):
            reason = row
        elif not row.strip():
            reason = ""
        else:
            if not reason:
                sys.exit(f"{path}:{number}: no reason stands above this row")
            file, _, text = row.partition(": ")
            rows[(file, text.strip())] += 1
    return rows


def main():
    report, path = Path(sys.argv[1]), Path(sys.argv[2])
    found, total = unreached(json.loads(report.read_text()))
    rows = explained(path)
    findings = []
    for (file, text), numbers in sorted(found.items()):
        if len(numbers) > rows[(file, text)]:
            where = ", ".join(map(str, numbers))
            findings.append(f"{file}:{where}: no test reaches this, and {path} does not explain it: {text}")
    for (file, text), count in sorted(rows.items()):
        if count > len(found.get((file, text), [])):
            findings.append(f"{path}: reached by a test, or no longer there: {file}: {text}")
    for finding in findings:
        print(finding)
    missed = sum(map(len, found.values()))
    print(f"lines of pure code covered: {total - missed} of {total}; {sum(rows.values())} explained in {path}")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
