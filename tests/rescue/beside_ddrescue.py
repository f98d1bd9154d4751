#!/usr/bin/env python3
"""Shows the same failing drives to our rescue and to GNU ddrescue, and compares what comes out and what it cost.

    tests/rescue/beside_ddrescue.py FOLDER RESULTS.xml

FOLDER holds torvane_rescue and libfailing_drive.so (tests/rescue/). Of each kind of fault several drives are made at
random, always the same ones. Both have to bring out the same sectors. Over the drives of a kind ours may make a tenth
more reads and failed reads than ddrescue, but must not take longer where a failed read costs a second. Then each goes on
with what the other has begun. RESULTS.xml is a JUnit file.
"""

import os
import random
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import junit  # noqa: E402

SECTOR = 512
MEGABYTE = 1 << 20
DRIVES_EACH = 8
ALWAYS = 255
MARKER = b"KVL<->UNREADABLE" * (SECTOR // 16)


class Drive:
    """Its content, and its faults by sector: how many reads fail, or that it is slow."""

    def __init__(self, chance, size):
        self.content = chance.randbytes(size)
        self.failures = {}
        self.slow = []

    def sectors(self):
        return len(self.content) // SECTOR

    def fail(self, first, count, tries=ALWAYS):
        for sector in range(first, min(first + count, self.sectors())):
            self.failures[sector] = tries

    def readable(self, sector):
        return self.failures.get(sector) != ALWAYS

    def faults(self):
        lines = [f"{sector * SECTOR} {SECTOR} {tries}" for sector, tries in self.failures.items()]
        lines += [f"{first * SECTOR} {count * SECTOR} slow" for first, count in self.slow]
        return "".join(f"{line}\n" for line in lines)


def single_sectors(chance):
    drive = Drive(chance, 16 * MEGABYTE)
    for _ in range(chance.randint(1, 30)):
        drive.fail(chance.randrange(drive.sectors()), 1)
    return drive


def clusters(chance):
    drive = Drive(chance, 16 * MEGABYTE)
    for _ in range(chance.randint(1, 4)):
        place = chance.randrange(drive.sectors())
        for _ in range(chance.randint(1, 30)):
            drive.fail(place + chance.randrange(1000), chance.randint(1, 20))
    return drive


def stripes(chance):
    """A head that reads nothing: the same part of every so many tracks."""
    drive = Drive(chance, 32 * MEGABYTE)
    apart = chance.randint(4000, 16000)
    for place in range(chance.randrange(apart), drive.sectors(), apart):
        drive.fail(place, chance.randint(apart // 20, apart // 10))
    return drive


def slow_zones(chance):
    drive = single_sectors(chance)
    for _ in range(2):
        drive.slow.append((chance.randrange(drive.sectors() // 2, drive.sectors() - 4000), chance.randint(500, 4000)))
    return drive


def third_try(chance):
    drive = single_sectors(chance)
    for _ in range(chance.randint(1, 20)):
        drive.fail(chance.randrange(drive.sectors()), 1, 2)
    return drive


KINDS = (single_sectors, clusters, stripes, slow_zones, third_try)
RETRY_PASSES = {third_try: 2}


class Bench:
    def __init__(self, programs, folder, drive):
        self.programs, self.folder, self.drive = programs, folder, drive
        self.source = folder / "source"
        self.source.write_bytes(drive.content)
        (folder / "faults").write_text(drive.faults(), encoding="utf-8")

    def run(self, command, expected, stop_after=None):
        environment = dict(os.environ, LD_PRELOAD=str(self.programs / "libfailing_drive.so"),
                           FAILING_DRIVE=str(self.source), FAILING_DRIVE_FAULTS=str(self.folder / "faults"),
                           FAILING_DRIVE_LOG=str(self.folder / "log"),
                           ASAN_OPTIONS="verify_asan_link_order=0:detect_leaks=0")
        if stop_after is not None:
            environment["FAILING_DRIVE_STOP"] = str(stop_after)
        done = subprocess.run(list(map(str, command)), env=environment, capture_output=True, text=True, timeout=120)
        assert done.returncode in expected, f"{command}: {done.returncode}\n{done.stdout}{done.stderr}"
        return Cost((self.folder / "log").read_text(encoding="utf-8"))

    def ours(self, name, retries=0, stop_after=None):
        command = [self.programs / "torvane_rescue", self.source, self.folder / name, self.folder / f"{name}.map",
                   SECTOR, retries]
        return self.run(command, (0,) if stop_after is None else (0, 2), stop_after)

    def theirs(self, name, retries=0, stop_after=None):
        command = ["ddrescue", "--quiet", "--force", f"--sector-size={SECTOR}", f"--retry-passes={retries}", self.source,
                   self.folder / name, self.folder / f"{name}.map"]
        # It ends by the signal itself.
        return self.run(command, (0,) if stop_after is None else (0, 1, -2), stop_after)

    def check_copy(self, name, finished_by_another=False):
        """Everything readable is there. Elsewhere ours has the marker, ddrescue what was there before."""
        copy = (self.folder / name).read_bytes().ljust(len(self.drive.content), b"\0")
        for sector in range(self.drive.sectors()):
            begin, end = sector * SECTOR, (sector + 1) * SECTOR
            if self.drive.readable(sector):
                assert copy[begin:end] == self.drive.content[begin:end], f"{name}: sector {sector} is not there"
            elif finished_by_another or name == "theirs":
                assert copy[begin:end] in (MARKER, bytes(SECTOR)), f"{name}: sector {sector} holds something"
            else:
                assert copy[begin:end] == MARKER, f"{name}: sector {sector} has no marker"
        bad = sum(length for _, length, status in ranges_of(self.folder / f"{name}.map") if status != "+")
        unreadable = sum(not self.drive.readable(sector) for sector in range(self.drive.sectors()))
        assert bad == unreadable * SECTOR, f"{name}: the map tells of {bad} bytes, not of {unreadable} sectors"


def ranges_of(path):
    lines = [line for line in path.read_text(encoding="utf-8").splitlines() if not line.startswith("#")]
    return [(int(words[0], 16), int(words[1], 16), words[2]) for words in (line.split() for line in lines[1:])]


def expect_only_missing(before, cost):
    """No read has touched what was finished before."""
    finished = [(offset, offset + length) for offset, length, status in before if status == "+"]
    for begin, end in cost.places:
        again = [place for place in finished if place[0] < end and begin < place[1]]
        assert not again, f"bytes {begin} to {end} were read, of which {again} was finished"


class Cost:
    def __init__(self, log=""):
        rows = [tuple(map(int, line.split())) for line in log.splitlines()]
        self.reads = len(rows)
        self.failed = sum(1 for row in rows if row[2] == 0)
        self.microseconds = sum(row[3] for row in rows)
        self.places = [(row[0], row[0] + row[1]) for row in rows]

    def __iadd__(self, other):
        self.reads += other.reads
        self.failed += other.failed
        self.microseconds += other.microseconds
        return self

    def __str__(self):
        return f"{self.reads} reads, {self.failed} failed, {self.microseconds / 1e6:.1f} s"


def compare(programs, kind):
    """Both over the same drives, each from nothing."""
    ours, theirs = Cost(), Cost()
    for seed in range(DRIVES_EACH):
        with tempfile.TemporaryDirectory() as place:
            bench = Bench(programs, Path(place), kind(random.Random(f"{kind.__name__} {seed}")))
            ours += bench.ours("ours", RETRY_PASSES.get(kind, 0))
            theirs += bench.theirs("theirs", RETRY_PASSES.get(kind, 0))
            bench.check_copy("ours")
            bench.check_copy("theirs")
    print(f"{kind.__name__}: ours {ours}; ddrescue {theirs}")
    assert ours.reads <= 1.1 * theirs.reads, "too many reads"
    assert ours.failed <= 1.1 * theirs.failed, "too many failed reads"
    assert ours.microseconds <= theirs.microseconds, "it takes longer"


def hand_over(programs, kind):
    """What one has begun the other finishes, wherever it was stopped, and reads nothing that is finished."""
    for seed in range(DRIVES_EACH // 4):
        chance = random.Random(f"{kind.__name__} {seed}")
        drive = kind(chance)
        with tempfile.TemporaryDirectory() as place:
            bench = Bench(programs, Path(place), drive)
            stop = chance.randrange(1, bench.ours("ours").reads)
            for name, begin, finish in (("begun-there", bench.theirs, bench.ours), ("begun-here", bench.ours, bench.theirs)):
                begin(name, stop_after=stop)
                before = ranges_of(bench.folder / f"{name}.map")
                expect_only_missing(before, finish(name))
                bench.check_copy(name, finish == bench.theirs)


def main():
    programs, results = Path(sys.argv[1]).resolve(), sys.argv[2]
    cases = []
    tests = [(compare, kind) for kind in KINDS]
    tests += [(hand_over, kind) for kind in (single_sectors, clusters, stripes)]
    for test, kind in tests:
        started, failure = time.monotonic(), None
        name = f"{test.__name__} {kind.__name__}".replace("_", " ")
        try:
            test(programs, kind)
        except (AssertionError, OSError, subprocess.SubprocessError) as error:
            failure = str(error)
            print(f"{name}: {failure}")
        cases.append((name, f"{time.monotonic() - started:.3f}", failure))
    junit.write(results, "rescue", cases)
    failed = sum(1 for case in cases if case[2] is not None)
    print(f"{len(cases) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
