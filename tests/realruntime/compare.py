#!/usr/bin/env python3
"""Plays scenarios on the simulated device and on the real runtime, and compares the traces.

    compare.py SIM REAL FOLDER-OR-SCENARIO...

A scenario that holds on the simulated device and leaves the same trace here holds here too:
expectations speak of the trace alone. Differences that are known stand in exceptions.txt, with the
first lines that differ; one that is not there any more is a mistake too.
"""
import collections
import concurrent.futures
import difflib
import os
import pathlib
import subprocess
import sys

LONGEST = 600  # seconds, under valgrind
SKIPPED = 3    # the exit status of what holds something that is left out


def exceptions():
    """From a scenario to the first lines that differ."""
    known = {}
    for line in open(os.path.join(os.path.dirname(__file__), "exceptions.txt")):
        if line.startswith("scenarios/"):
            lines = known[line.strip()] = []
        elif line[:3] in ("  -", "  +"):
            lines.append(line[2:].rstrip("\n"))
    return known


def traced(command):
    done = subprocess.run(command, capture_output=True, timeout=LONGEST)
    return done.returncode, done.stdout.decode(errors="replace"), done.stderr.decode()


def main(sim, real, *places):
    known = exceptions()
    paths = [path for place in map(pathlib.Path, places)
             for path in ([place] if place.is_file() else sorted(place.rglob("*.txt")))]
    scenarios = [str(path) for path in paths]

    def judge(scenario):
        status, here, reason = traced([*real.split(), scenario])
        if status == SKIPPED:
            return "skipped for " + reason.strip(), []
        held, there, why = traced([sim, "run", scenario])
        found = list(difflib.unified_diff(there.splitlines(), here.splitlines(), lineterm="", n=0))
        found = [line for line in found[2:] if not line.startswith("@@")]
        # GNUstep tells of unreadable files; what else is said is a sanitizer's or valgrind's.
        said = [line for line in reason.splitlines() if " corvalen-real[" not in line]
        if status != held or said:
            found += [f"exit status {status}, not {held}: {why}", *said]
        if not found and scenario in known:
            return "different", ["an exception that is none any more"]
        if not found:
            return "equal", []
        first = known.get(scenario)
        if first and found[:len(first)] == first:
            return "excepted", []
        return "different", found

    counts = collections.Counter()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for scenario, (kind, found) in zip(scenarios, pool.map(judge, scenarios)):
            counts[kind] += 1
            if kind == "different":
                print(scenario, *found, sep="\n  ")
    played = sum(n for kind, n in counts.items() if not kind.startswith("skipped"))
    print(f"{len(scenarios)} scenarios, {played} played:",
          ", ".join(f"{n} {kind}" for kind, n in sorted(counts.items())))
    return 1 if counts["different"] else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
