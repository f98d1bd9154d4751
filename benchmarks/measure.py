#!/usr/bin/env python3
"""Runs the copy engine, its stages alone and its peers in turn, and prints what they took, with ratios.

    measure.py PROGRAM RECORD GIB ROUNDS NAME=FOLDER...

PROGRAM is torvane_copy_benchmark.exe; each NAME=FOLDER is a medium to measure on; RECORD is a file for the single runs.
`./measure` prepares all of it.

Every round runs every program once, beginning with another one each time. Before the first round each runs once
uncounted, and before each run a piece of memory is taken and given back: a machine that is a guest itself may have to ask
its host for memory that nobody has used for a second, and that would be counted into whoever needs it first. A run is over
when its bytes are on the medium: what a program leaves to the system is synchronised within its time. Seconds of processors
are of the whole program, with the start of Wine, and with the imaging before a verification.

A medium on a RAM disk (tmpfs) is judged by what a RAM disk has to reach, every other one as a disk.
"""
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import time
from dataclasses import dataclass, field
from typing import TextIO

BLOCK = 32 << 20
UNCOUNTED = 1  # rounds
NOTHING_TO_SYNC = 0.02  # seconds


@dataclass
class Run:
    seconds: float  # until the program was done
    on_medium: float  # until its bytes were on the medium
    processor: float  # seconds of processors
    peak: float  # MiB
    others: float  # of the processors, what everybody else used meanwhile: 0 to 1


@dataclass
class Program:
    name: str
    command: list[str]
    engine: bool = False  # tells its seconds itself, without the start of Wine
    runs: list[Run] = field(default_factory=list)

    def median(self, what: str) -> float:
        return statistics.median(getattr(run, what) for run in self.runs)

    def ends(self, what: str) -> tuple[float, float]:
        values = [getattr(run, what) for run in self.runs]
        return min(values), max(values)


def busy_seconds() -> float:
    """Seconds of all processors since the machine's start that were not idle, stolen ones included."""
    with open("/proc/stat", encoding="ascii") as stat:
        ticks = [int(word) for word in stat.readline().split()[1:9]]
    return (sum(ticks) - ticks[3] - ticks[4]) / os.sysconf("SC_CLK_TCK")


def take_and_give_back(size: int) -> None:
    """Uses memory in a process of its own: a program's peak would begin with that of whoever starts it."""
    script = f"import mmap\nwith mmap.mmap(-1, {size}) as memory:\n"
    script += f"    for _ in range({size // BLOCK}): memory.write(bytes({BLOCK}))"
    subprocess.run([sys.executable, "-c", script], check=True)


class Medium:
    def __init__(self, name: str, folder: pathlib.Path, gib: int, benchmark: str):
        self.name, self.folder, self.gib = name, folder, gib
        self.bench = folder / "bench"
        self.on_disk = subprocess.run(["stat", "-f", "-c", "%T", str(folder.parent)], check=True, capture_output=True,
                                      text=True).stdout.strip() != "tmpfs"
        self.source = self.bench / "backing" / "source.img"
        self.clone = self.bench / "backing" / "clone.img"
        self.peer = folder / "peer.img"
        self.programs = [self.engine(benchmark, job) for job in
                         ("read-file", "write-file", "hash", "sha256", "read-drive", "write-drive", "forward", "reverse",
                          "image", "restore", "forensic", "forensic-sha256", "verification")]
        self.programs += [Program(name, command) for name, command in self.peers().items()]

    def engine(self, benchmark: str, job: str) -> Program:
        return Program(job, ["wine", benchmark, f"Z:{self.bench}", job], engine=True)

    def peers(self) -> dict[str, list[str]]:
        source, peer = str(self.source), str(self.peer)
        return {
            "md5sum": ["md5sum", source],
            "dd": ["dd", f"if={source}", f"of={peer}", "bs=32M", "status=none"],
            "ddrescue": ["ddrescue", "-q", "-f", "-b", "512", source, peer, f"{peer}.map"],
            "dcfldd": ["dcfldd", f"if={source}", f"of={peer}", "bs=32M", "hash=md5", "statusinterval=1000000"],
            "dc3dd": ["dc3dd", f"if={source}", f"of={peer}", "bufsz=32M", "hash=md5"],
        }

    def lay_out(self) -> None:
        shutil.rmtree(self.folder, ignore_errors=True)  # what a run that was killed has left
        (self.bench / "drives").mkdir(parents=True)
        (self.bench / "backing").mkdir()
        (self.bench / "bench.json").write_text('{"title": "two drives to copy"}')
        for number, file in ((1, self.source), (2, self.clone)):
            drive = {"number": number, "bus": "nvme", "size": f"{self.gib} GiB", "backing": {"file": file.name},
                     "identity": {"product": "MEASURE", "serial": f"M{number}"}}
            (self.bench / "drives" / f"{number}.json").write_text(json.dumps(drive))
        with open(self.source, "wb") as source:
            for _ in range((self.gib << 30) // BLOCK):
                source.write(os.urandom(BLOCK))
        self.sync()

    def sync(self) -> None:
        subprocess.run(["sync", "-f", str(self.folder)], check=True)

    def clear(self) -> None:
        kept = {self.bench}
        for path in self.folder.iterdir():
            if path not in kept:
                path.unlink()
        self.clone.unlink(missing_ok=True)

    def run(self, program: Program) -> Run:
        self.clear()
        self.sync()
        take_and_give_back((self.gib << 30) + (1 << 29))
        busy, begun = busy_seconds(), time.monotonic()
        # To files: what Wine leaves running would hold a pipe open.
        with open(self.folder / "out", "w+b") as out, open(self.folder / "err", "w+b") as err:
            child = subprocess.Popen(program.command, cwd=self.folder, stdin=subprocess.DEVNULL, stdout=out, stderr=err)
            _, status, used = os.wait4(child.pid, 0)
            child.returncode = os.waitstatus_to_exitcode(status)
            elapsed = time.monotonic() - begun
            out.seek(0)
            err.seek(0)
            said, complained = out.read().decode(errors="replace"), err.read().decode(errors="replace")
        if child.returncode != 0:
            sys.exit(f"*** {program.name} on {self.name} failed: {said} {complained}")
        synced = time.monotonic()
        self.sync()
        syncing, now = time.monotonic() - synced, time.time()
        wall, busy = time.monotonic() - begun, busy_seconds() - busy
        processor = used.ru_utime + used.ru_stime
        others = max(0.0, busy - processor) / (wall * os.cpu_count())
        if not program.engine:
            return Run(elapsed, elapsed + syncing, processor, used.ru_maxrss / 1024, others)
        words = said.splitlines()[-1].split()
        seconds, peak, job_begun = float(words[0]), float(words[1]), float(words[2])
        # What Wine needs to end the program counts only where the medium was still busy afterwards.
        on_medium = seconds if syncing < NOTHING_TO_SYNC else now - job_begun
        return Run(seconds, on_medium, processor, peak, others)


def measure(medium: Medium, rounds: int, record: TextIO) -> None:
    medium.lay_out()
    for number in range(-UNCOUNTED, rounds):
        print(f"    {medium.name}: " + (f"round {number + 1}" if number >= 0 else "warming up"), flush=True)
        first = max(number, 0) * 5 % len(medium.programs)
        for program in medium.programs[first:] + medium.programs[:first]:
            run = medium.run(program)
            if number >= 0:
                program.runs.append(run)
                record.write(f"{medium.name} {number + 1} {program.name} {run.seconds:.3f} {run.on_medium:.3f} "
                             f"{run.processor:.2f} {run.peak:.0f} {run.others:.2f}\n")
    medium.clear()


def print_table(medium: Medium) -> None:
    print(f"\n{medium.name}, {medium.gib} GiB, median of {len(medium.programs[0].runs)} (seconds until on the medium):\n")
    print(f"{'':15} {'seconds':>8} {'least':>7} {'most':>7} {'MiB/s':>6} {'processor s':>12} {'peak MiB':>9} {'others':>7}")
    for program in medium.programs:
        least, most = program.ends("on_medium")
        seconds = program.median("on_medium")
        print(f"{program.name:15} {seconds:8.2f} {least:7.2f} {most:7.2f} {medium.gib * 1024 / seconds:6.0f} "
              f"{program.median('processor'):12.2f} {program.median('peak'):9.0f} {program.median('others'):7.0%}")


def ratios(medium: Medium) -> list[tuple[str, str, float, float]]:
    """Job, what it is compared to, its speed as a ratio to that, the ratio wanted; 0: none."""
    on_disk = medium.on_disk
    seconds = {program.name: program.median("on_medium") for program in medium.programs}
    fastest_peer = min(seconds["dd"], seconds["ddrescue"])
    slowest_stage = max(seconds["read-file"], seconds["write-file"])
    rows = []
    for job in ("forward", "reverse", "image", "restore"):
        rows.append((job, "the fastest of dd and ddrescue", fastest_peer / seconds[job], 1.0 if on_disk else 0))
        rows.append((job, "the slowest of read and write alone", slowest_stage / seconds[job], 0 if on_disk else 0.9))
    forensic = seconds["forensic"]
    rows.append(("forensic", "the slowest of read, write and MD5 alone", max(slowest_stage, seconds["hash"]) / forensic,
                 0.95))
    slower_digest = max(seconds["hash"], seconds["sha256"])
    rows.append(("forensic-sha256", "the slower of MD5 and SHA-256 alone", slower_digest / seconds["forensic-sha256"],
                 0.95))
    rows.append(("forensic-sha256", "the same with MD5 alone", forensic / seconds["forensic-sha256"], 0))
    rows.append(("forensic", "dc3dd hash=md5", seconds["dc3dd"] / forensic, 2.5))
    rows.append(("forensic", "dcfldd hash=md5", seconds["dcfldd"] / forensic, 1.3))
    rows.append(("verification", "MD5 alone", seconds["hash"] / seconds["verification"], 0.95))
    return rows


def print_ratios(medium: Medium) -> None:
    print("\nSpeed as a ratio, above 1 is faster than the other side:\n")
    for job, other, ratio, wanted in ratios(medium):
        verdict = "" if wanted == 0 else f"   wanted {wanted:4.2f}" + ("" if ratio >= wanted else ", MISSED")
        print(f"  {job:15} to {other:41} {ratio:5.2f}{verdict}")
    seconds = {program.name: program.median("seconds") for program in medium.programs}
    print(f"  The bench's own share: {seconds['read-drive'] / seconds['read-file'] - 1:+.1%} of a read, "
          f"{seconds['write-drive'] / seconds['write-file'] - 1:+.1%} of a write.")


def machine() -> str:
    with open("/proc/cpuinfo", encoding="utf-8") as lines:
        model = next((line.split(":")[1].strip() for line in lines if line.startswith("model name")), "unknown processor")
    with open("/proc/meminfo", encoding="ascii") as lines:
        memory = {line.split(":")[0]: int(line.split()[1]) >> 20 for line in lines}
    return (f"{os.cpu_count()} processors ({model}), {memory['MemTotal']} GiB of memory, {memory['MemAvailable']} GiB free, "
            f"load {' '.join(f'{load:.1f}' for load in os.getloadavg())}")


def main() -> None:
    benchmark, record, gib, rounds, *media = sys.argv[1:]
    print(f"    before: {machine()}")
    with open(record, "w", encoding="utf-8", buffering=1) as single_runs:
        for entry in media:
            name, folder = entry.split("=", 1)
            medium = Medium(name, pathlib.Path(folder).resolve() / "torvane-measure", int(gib), benchmark)
            try:
                measure(medium, int(rounds), single_runs)
                print_table(medium)
                print_ratios(medium)
            finally:
                shutil.rmtree(medium.folder, ignore_errors=True)
    print(f"\n    after: {machine()}")


main()
