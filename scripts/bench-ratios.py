#!/usr/bin/env python3
"""Prints how our benchmarks stand beside their peers, from Google Benchmark's JSON files.

A comparison is a group of benchmarks whose names differ in one part: What/kelvane/1000000 is ours,
What/sqlite/1000000 and What/memcpy/1000000 are peers or limits. The ratio is peer / ours in real
time, so above 1 we are faster.
"""

import json
import re
import sys

OURS = "kelvane"
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def timings(path):
    """{name: seconds}; of repeated runs, the median."""
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    aggregated = {run["run_name"] for run in runs if run.get("aggregate_name") == "median"}
    times = {}
    for run in runs:
        name = run["run_name"]
        if run.get("error_occurred"):
            sys.exit(f"{path}: {name}: {run.get('error_message', 'failed')}")
        if name in aggregated and run.get("aggregate_name") != "median":
            continue
        times[name] = run["real_time"] * SECONDS[run["time_unit"]]
    return times


def parts_of(name):
    """The parts of a name, without the options that Google Benchmark appends (real_time, …)."""
    name = re.sub(r"/(real_time|process_time|manual_time|(iterations|min_time|repeats):[\d.]+)", "", name)
    return name.split("/")


def comparisons(times):
    """(what, peer, our seconds, the peer's seconds) of each pair."""
    for name, ours in times.items():
        parts = parts_of(name)
        if OURS not in parts:
            continue
        at = parts.index(OURS)
        what = "/".join(parts[:at] + parts[at + 1:])
        for other, seconds in times.items():
            other_parts = parts_of(other)
            differ = [i for i, (a, b) in enumerate(zip(parts, other_parts)) if a != b]
            if len(other_parts) == len(parts) and differ == [at]:
                yield what, other_parts[at], ours, seconds


def readable(seconds):
    for unit, factor in (("s", 1.0), ("ms", 1e-3), ("us", 1e-6)):
        if seconds >= factor:
            return f"{seconds / factor:.3g} {unit}"
    return f"{seconds / 1e-9:.3g} ns"


def main():
    for path in sys.argv[1:]:
        for what, peer, ours, theirs in comparisons(timings(path)):
            print(f"ratio {what}: {OURS} {readable(ours)}, {peer} {readable(theirs)}, {theirs / ours:.2f}")


if __name__ == "__main__":
    main()
