#!/usr/bin/env python3
"""Compares two files of Google Benchmark's JSON output, name by name.

A benchmark's figure is the median over its repetitions of the time that it counts: real time where
its name says so, else processor time. Where a file holds aggregates alone, its median is taken.
The ratio is new / old: above 1 the new one is slower.

Exit status: 0 done, 1 with --fail-above when a ratio is above that, 2 a bad file or bad usage.
"""

import argparse
import json
import statistics
import sys

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


class BadFile(Exception):
    pass


def time_of(run):
    name = run.get("run_name", run["name"])
    field = "real_time" if "/real_time" in name or "/manual_time" in name else "cpu_time"
    return run[field] * NANOSECONDS[run.get("time_unit", "ns")]


def medians(path):
    """The median in nanoseconds and the number of repetitions, by name, in the file's order."""
    try:
        with open(path, encoding="utf-8") as file:
            runs = json.load(file)["benchmarks"]
        samples = {}
        aggregates = {}
        for run in runs:
            name = run.get("run_name", run["name"])
            if run.get("error_occurred"):
                continue
            if run.get("run_type", "iteration") == "iteration":
                samples.setdefault(name, []).append(time_of(run))
            elif run.get("aggregate_name") == "median":
                aggregates[name] = (time_of(run), run.get("repetitions", 0))
    except (OSError, ValueError, KeyError, TypeError, AttributeError) as error:
        raise BadFile(f"{path}: {type(error).__name__}: {error}") from error
    result = {name: (statistics.median(times), len(times)) for name, times in samples.items()}
    for name, aggregate in aggregates.items():
        result.setdefault(name, aggregate)
    return result


def text_of(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= NANOSECONDS[unit]:
            return f"{nanoseconds / NANOSECONDS[unit]:.3f} {unit}"
    return f"{nanoseconds:.3f} ns"


def parse_arguments():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("old", metavar="OLD.json")
    parser.add_argument("new", metavar="NEW.json")
    parser.add_argument("--fail-above", type=float, metavar="R",
                        help="exit with 1 when a ratio new / old is above R")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    try:
        old, new = medians(arguments.old), medians(arguments.new)
    except BadFile as error:
        print(error, file=sys.stderr)
        return 2
    names = [name for name in old if name in new]
    width = max([len(name) for name in [*old, *new]] + [len("benchmark")])
    print(f"{'benchmark':{width}}  {'old':>12}  {'new':>12}  {'ratio':>7}  repetitions")
    slower = []
    for name in names:
        (before, before_count), (after, after_count) = old[name], new[name]
        ratio = after / before if before > 0 else float("inf") if after > 0 else 1.0
        above = arguments.fail_above is not None and ratio > arguments.fail_above
        if above:
            slower.append(name)
        print(f"{name:{width}}  {text_of(before):>12}  {text_of(after):>12}  {ratio:7.3f}  "
              f"{before_count}, {after_count}{'  above' if above else ''}")
    for title, some, others in (("only in the old file", old, new), ("only in the new file", new, old)):
        for name in some:
            if name not in others:
                print(f"{name:{width}}  {title}")
    if slower:
        print(f"{len(slower)} of {len(names)} above {arguments.fail_above}", file=sys.stderr)
    return 1 if slower else 0


if __name__ == "__main__":
    sys.exit(main())
