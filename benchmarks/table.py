#!/usr/bin/env python3
"""Prints the medians of a measurement, and how the engine stands beside its peers: table.py RESULTS GIB."""
import statistics
import sys
from collections import defaultdict


def main() -> None:
    results, gib = sys.argv[1], float(sys.argv[2])
    times: dict[str, list[float]] = defaultdict(list)
    with open(results, encoding="utf-8") as lines:
        for line in lines:
            name, seconds = line.split()
            times[name].append(float(seconds))
    median = {name: statistics.median(values) for name, values in times.items()}

    print(f"\n{'':20} {'median s':>9} {'MiB/s':>8} {'fastest':>9} {'slowest':>9}")
    for name, seconds in median.items():
        print(f"{name:20} {seconds:9.2f} {gib * 1024 / seconds:8.0f} {min(times[name]):9.2f} {max(times[name]):9.2f}")

    fastest_copy = min(median["dd"], median["ddrescue"])
    slowest_stage = max(median["read-alone"], median["write-alone"], median["md5-alone"])
    print("\nSpeed as a ratio, above 1 is faster than the other side:")
    for job in ("forward", "reverse", "image"):
        ratio = fastest_copy / median[f"torvane-{job}"]
        print(f"  {job:9} to the fastest of dd and ddrescue            {ratio:5.2f}   wanted 1.00")
    forensic = median["torvane-forensic"]
    print(f"  forensic  to dc3dd hash=md5                        {median['dc3dd-md5'] / forensic:5.2f}   wanted 1.20")
    print(f"  forensic  to dcfldd hash=md5                       {median['dcfldd-md5'] / forensic:5.2f}")
    print(f"  forensic  to the slowest of read, write, MD5 alone  {slowest_stage / forensic:5.2f}   wanted 0.90")


main()
