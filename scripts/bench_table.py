#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints a Markdown table of benchmark results: the median of each row's contenders and ours in relation to it.

A benchmark is called "row/who"; "quenzo" is ours. What stands behind a further slash (time bases and the like) is
not part of the name.
"""
import json
import sys

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def read_medians(paths):
    rows = {}
    for path in paths:
        with open(path, encoding="utf-8") as results:
            for entry in json.load(results)["benchmarks"]:
                if entry.get("error_occurred"):
                    sys.exit("%s: %s" % (entry["name"], entry.get("error_message")))
                # A single repetition is its own median, and has no other.
                if entry.get("aggregate_name") == "median" or entry.get("repetitions") == 1:
                    row, who = entry["run_name"].split("/")[:2]
                    rows.setdefault(row, {})[who] = entry["real_time"] * NANOSECONDS[entry["time_unit"]]
    return rows


def readable(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return "%.3g %s" % (nanoseconds / size, unit)
    return "%.3g ns" % nanoseconds


def main():
    print("| work | who | median | ours / theirs |")
    print("| --- | --- | --- | --- |")
    for row, contenders in read_medians(sys.argv[1:]).items():
        ours = contenders.get("quenzo")
        for who, time in contenders.items():
            ratio = "" if who == "quenzo" or ours is None else "%.2f" % (ours / time)
            print("| %s | %s | %s | %s |" % (row.replace("_", " "), who.replace("_", " "), readable(time), ratio))


if __name__ == "__main__":
    main()
