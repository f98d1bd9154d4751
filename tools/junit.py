#!/usr/bin/env python3
"""JUnit files of ./check.

    tools/junit.py failure FILE SUITE NAME LOG    writes FILE: one failed test, with the end of LOG as its message
    tools/junit.py steps FILE TABLE               writes FILE from lines "name <tab> seconds <tab> passed|failed <tab> log"
    tools/junit.py failures FILE                  prints the failed tests of FILE, each with its message
    tools/junit.py failed FILE                    prints the names of the failed tests of FILE, as GoogleTest's filter takes them
    tools/junit.py second-try FILE AGAIN          a failed test of FILE that passed in AGAIN counts as passed; prints a line about each
    tools/junit.py count FILE                     prints what FILE adds to the summary; an error when it holds no test
    tools/junit.py summary FOLDER                 prints "N passed, N failed[, N skipped]" over FOLDER/*.xml
"""

import re
import sys
import xml.etree.ElementTree as ET
from pathlib import Path

NOT_XML = re.compile("[^\t\n\r\x20-\ud7ff\ue000-\ufffd]")


def log_end(path, lines=60):
    log = Path(path)
    if not log.is_file():
        return "(no output)"
    text = log.read_text(encoding="utf-8", errors="replace")
    return NOT_XML.sub("?", "\n".join(text.splitlines()[-lines:]))


def write(path, suite, cases):
    """cases: (name, seconds, failure text or None)"""
    failed = sum(1 for case in cases if case[2] is not None)
    root = ET.Element("testsuites", tests=str(len(cases)), failures=str(failed))
    element = ET.SubElement(root, "testsuite", name=suite, tests=str(len(cases)), failures=str(failed))
    for name, seconds, failure in cases:
        case = ET.SubElement(element, "testcase", name=name, classname=suite, time=seconds)
        if failure is not None:
            ET.SubElement(case, "failure", message=f"{name} failed").text = failure
    ET.indent(root)
    ET.ElementTree(root).write(path, encoding="utf-8", xml_declaration=True)


def write_steps(path, table):
    cases = []
    for line in Path(table).read_text(encoding="utf-8").splitlines():
        name, seconds, result, log = line.split("\t")
        cases.append((name, seconds, None if result == "passed" else log_end(log)))
    write(path, "check", cases)


def outcome(case):
    if case.find("failure") is not None or case.find("error") is not None:
        return "failed"
    # GoogleTest marks a disabled test by status="notrun".
    if case.find("skipped") is not None or case.get("status") == "notrun":
        return "skipped"
    return "passed"


def summary(paths):
    count = {"passed": 0, "failed": 0, "skipped": 0}
    for path in paths:
        for case in ET.parse(path).getroot().iter("testcase"):
            count[outcome(case)] += 1
    skipped = f", {count['skipped']} skipped" if count["skipped"] else ""
    print(f"{count['passed']} passed, {count['failed']} failed{skipped}")
    return sum(count.values())


def full_name(case):
    return f"{case.get('classname')}.{case.get('name')}"


def failed_cases(root):
    return [case for case in root.iter("testcase") if outcome(case) == "failed"]


def failure_text(failure):
    return (failure.text or failure.get("message") or "").strip()


def print_failures(path):
    for case in failed_cases(ET.parse(path).getroot()):
        print(full_name(case))
        for failure in [*case.findall("failure"), *case.findall("error")]:
            print("    " + failure_text(failure).replace("\n", "\n    "))


def second_try(path, again):
    """What went wrong at the first try stays in the file, as the test's output."""
    tree = ET.parse(path)
    passed = {full_name(case) for case in ET.parse(again).getroot().iter("testcase") if outcome(case) == "passed"}
    for case in failed_cases(tree.getroot()):
        if full_name(case) in passed:
            for failure in [*case.findall("failure"), *case.findall("error")]:
                case.remove(failure)
                ET.SubElement(case, "system-out").text = "At the first try: " + failure_text(failure)
            print(f"unsteady: {full_name(case)} failed, and passed when it was tried once more")
    for element in [tree.getroot(), *tree.getroot().iter("testsuite")]:
        element.set("failures", str(len(failed_cases(element))))
    tree.write(path, encoding="utf-8", xml_declaration=True)


def main():
    command, *rest = sys.argv[1:]
    if command == "failure":
        write(rest[0], rest[1], [(rest[2], "0", log_end(rest[3]))])
    elif command == "steps":
        write_steps(*rest)
    elif command == "failures":
        print_failures(*rest)
    elif command == "failed":
        for case in failed_cases(ET.parse(rest[0]).getroot()):
            print(full_name(case))
    elif command == "second-try":
        second_try(*rest)
    elif command == "count":
        if summary(rest) == 0:
            sys.exit(f"{rest[0]}: no test was run")
    elif command == "summary":
        summary(sorted(Path(rest[0]).glob("*.xml")))
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
