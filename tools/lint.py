#!/usr/bin/env python3
"""Runs clang-tidy over every source of ours that a build compiles.

    tools/lint.py [-j JOBS] [--changed] BUILD...

A build is a configured and built folder: its compile commands say how each source is compiled, its dependency log which
headers each source reaches. A source whose commands, headers and rules are the same as at an earlier clean run is not
analysed again (build/lint-cache). A source that several builds compile is analysed once, as the first of them does, and
without precompiled headers: so it is seen to name all that it uses.

--changed: only what differs from the branch main, or is not committed; of a header, the source of its name or else the
first that includes it.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
CACHE = ROOT / "build" / "lint-cache"
TIDY = "clang-tidy-22"
TIMEOUT_SECONDS = 600
# What CMake adds to a compile command for a precompiled header.
PRECOMPILED = re.compile(r" -Winvalid-pch -include \S+/cmake_pch\.hxx")
running = set()


def run_tidy(command):
    """Its exit status and what it printed."""
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, cwd=ROOT) as tidy:
        running.add(tidy)
        try:
            output, errors = tidy.communicate(timeout=TIMEOUT_SECONDS)
        except subprocess.TimeoutExpired:
            tidy.kill()
            raise
        finally:
            running.discard(tidy)
    return tidy.returncode, output.strip() or errors.strip()


def ours(path):
    return path.is_relative_to(ROOT) and not path.is_relative_to(ROOT / "build")


class Build:
    """One configured build folder."""

    def __init__(self, folder):
        self.folder = Path(folder).resolve()
        self.commands = {}
        entries = json.loads((self.folder / "compile_commands.json").read_text())
        for entry in entries:
            entry["command"] = PRECOMPILED.sub("", entry["command"])
            path = Path(entry["file"])
            if ours(path) and path.suffix == ".cpp" and path.is_file():
                self.commands.setdefault(path, entry["command"])
        self.database = CACHE / self.folder.name
        self.database.mkdir(parents=True, exist_ok=True)
        (self.database / "compile_commands.json").write_text(json.dumps(entries))
        self.headers = self.read_dependency_log()
        self.extra = self.cross_arguments()

    def read_dependency_log(self):
        """source -> the files of ours it includes, as the compiler reported them."""
        log = subprocess.run(["ninja", "-C", self.folder, "-t", "deps"], capture_output=True, text=True, check=True)
        found, files = {}, []
        for line in log.stdout.splitlines():
            if line.startswith("    "):
                path = Path(os.path.normpath(self.folder / line.strip()))
                if ours(path):
                    files.append(path)
            elif files:
                found[files[0]] = files
                files = []
        if files:
            found[files[0]] = files
        return found

    def cross_arguments(self):
        """What clang must be told to read the cross compiler's headers instead of the machine's own."""
        compiler = next((command.split()[0] for command in self.commands.values()), "")
        # GCC's warnings and options that clang does not know are no finding; neither is a change of sign, which GCC does
        # not count among -Wconversion.
        extra = ["-Wno-sign-conversion", "-Wno-unknown-warning-option", "-Wno-ignored-optimization-argument", "-Wno-unused-command-line-argument"]
        if "mingw32" in compiler:
            report = subprocess.run([compiler, "-xc++", "-E", "-v", "/dev/null"], capture_output=True, text=True, check=True)
            listed = re.search(r"#include <\.\.\.> search starts here:\n(.*?)End of search list", report.stderr, re.S)
            extra += ["--target=x86_64-w64-mingw32", "-nostdinc++"]
            for line in listed.group(1).splitlines():
                # GCC's own <immintrin.h> and kin are for GCC; clang brings its own.
                if "c++" in line or "/lib/gcc/" not in line:
                    extra.append("-isystem" + os.path.normpath(line.strip()))
        elif "clang" in compiler:
            # What an analyser of another version has not: libFuzzer's headers.
            report = subprocess.run([compiler, "-print-resource-dir"], capture_output=True, text=True, check=True)
            extra.append(f"-idirafter{report.stdout.strip()}/include")
        return extra

    def key(self, source, rules):
        digest = hashlib.sha256(rules)
        digest.update(self.commands[source].encode())
        digest.update("\n".join(self.extra).encode())
        for path in self.headers.get(source, [source]):
            digest.update(str(path.relative_to(ROOT)).encode())
            digest.update(path.read_bytes() if path.is_file() else b"")
        return digest.hexdigest()

    def analyse(self, source):
        """The findings as text; empty when there are none."""
        command = [TIDY, "--quiet", f"-p={self.database}", *(f"--extra-arg={argument}" for argument in self.extra), source]
        try:
            status, text = run_tidy(command)
        except subprocess.TimeoutExpired:
            return f"{source}: no end after {TIMEOUT_SECONDS} s"
        return text if status != 0 else ""


def changed_files():
    """Files that differ from where main was left, or that nobody has committed."""

    def git(*arguments):
        return subprocess.run(["git", *arguments], cwd=ROOT, capture_output=True, text=True).stdout.split()

    base = git("merge-base", "HEAD", "main") or ["HEAD"]
    names = git("diff", "--name-only", *base) + git("ls-files", "--others", "--exclude-standard")
    return {ROOT / name for name in names}


def looked_through(builds):
    """The sources that show what has changed: those that did, and one for each header that did."""
    changed = changed_files()
    headers = {path for path in changed if path.suffix == ".h"}
    for build in builds:
        headers -= {path.with_suffix(".h") for path in build.commands}
    chosen = {path.with_suffix(".cpp") for path in changed if path.suffix in {".cpp", ".h"}}
    for build in builds:
        for source, included in build.headers.items():
            if source in build.commands and headers.intersection(included):
                headers -= set(included)
                chosen.add(source)
    return chosen


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-j", "--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--changed", action="store_true")
    parser.add_argument("builds", nargs="+")
    arguments = parser.parse_args()

    signal.signal(signal.SIGTERM, signal.default_int_handler)
    started = time.monotonic()
    version = subprocess.run([TIDY, "--version"], capture_output=True, check=True).stdout
    rules = version + Path(__file__).read_bytes() + b"".join(
        path.read_bytes() for path in [ROOT / ".clang-tidy", *sorted(ROOT.glob("*/.clang-tidy"))]
    )
    CACHE.mkdir(parents=True, exist_ok=True)

    work, keys = {}, {}
    known = 0
    builds = [Build(folder) for folder in arguments.builds]
    chosen = looked_through(builds) if arguments.changed else None
    for build in builds:
        for source in build.commands:
            if source in keys or (chosen is not None and source not in chosen):
                continue
            keys[source] = build.key(source, rules)
            if (CACHE / keys[source]).exists():
                (CACHE / keys[source]).touch()
                known += 1
            else:
                work[source] = build

    findings = []
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        try:
            runs = {pool.submit(build.analyse, source): source for source, build in work.items()}
            for run in concurrent.futures.as_completed(runs):
                if run.result():
                    findings.append(run.result())
                else:
                    (CACHE / keys[runs[run]]).touch()
        except KeyboardInterrupt:
            pool.shutdown(wait=False, cancel_futures=True)
            for tidy in list(running):
                tidy.kill()
            sys.exit("interrupted")

    # Results that no run has asked for during a month are dropped.
    for stale in CACHE.iterdir():
        if stale.is_file() and time.time() - stale.stat().st_mtime > 30 * 24 * 3600:
            stale.unlink()

    for finding in sorted(findings):
        print(finding)
    print(
        f"{len(keys)} sources: {len(work)} analysed in {time.monotonic() - started:.0f} s, "
        f"{known} unchanged since a clean run, {len(findings)} with findings"
    )
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
