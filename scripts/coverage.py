#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the test programs of a coverage build, and prints what of the library they reach.

Called by coverage.sh, which says how. A branch counts unless it is an edge of a call that may throw; only the
sources that catch exceptions are compiled with them.
"""
import collections
import concurrent.futures
import json
import os
import re
import shutil
import subprocess
import sys
import time

LINES_WANTED, BRANCHES_WANTED = 97.0, 90.0
LIBRARY = re.compile(r"(QuenzoTool|QuenzoBase)(\.dir)?/source/")


class Coverage:
    """Counts of lines, and of the branches behind them, by source."""

    def __init__(self):
        self.lines = collections.defaultdict(dict)
        self.branches = collections.defaultdict(dict)

    def add(self, source, line):
        number = line["line_number"]
        self.lines[source][number] = self.lines[source].get(number, 0) + line["count"]
        for index, count in counted_branches(line["branches"]):
            key = (number, line.get("function_name", ""), index)
            self.branches[source][key] = self.branches[source].get(key, 0) + count


def counted_branches(branches):
    """The branches of a line without both edges of each call that may throw."""
    calls = set()
    for index, branch in enumerate(branches):
        if branch["throw"]:
            calls.add(index)
            beside = index - 1 if index and index - 1 not in calls else index + 1
            calls.add(beside)
    return [(index, branch["count"]) for index, branch in enumerate(branches) if index not in calls]


def tests_of(build):
    """Name, command, folder and environment of each test that is a program of this build."""
    told = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True, stdout=subprocess.PIPE)
    for test in json.loads(told.stdout)["tests"]:
        if test.get("command", [""])[0].startswith(build + "/"):
            properties = {entry["name"]: entry["value"] for entry in test["properties"]}
            environment = dict(pair.split("=", 1) for pair in properties.get("ENVIRONMENT", []))
            yield test["name"], test["command"], properties["WORKING_DIRECTORY"], environment


def run(test, counts):
    """Runs one test, whose counts go below the folder; seconds, and its output if it failed."""
    name, command, folder, environment = test
    shutil.rmtree(counts, ignore_errors=True)
    os.makedirs(counts)
    os.chmod(counts, 0o777)  # some tests do a part of their work as another user
    began = time.monotonic()
    try:
        done = subprocess.run(command, cwd=folder, env={**os.environ, **environment, "GCOV_PREFIX": counts},
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=900)
        failed, output = done.returncode != 0, done.stdout
    except subprocess.TimeoutExpired as late:
        failed, output = True, late.stdout or b""
    seconds = time.monotonic() - began
    return seconds, "%s failed:\n%s" % (name, output.decode(errors="replace")) if failed else ""


def files_below(folder, ending):
    return sorted(os.path.join(place, name) for place, _, names in os.walk(folder) for name in names
                  if name.endswith(ending))


def read_counts(files, root, work):
    """What gcov makes of these files, one entry a line of the library's own sources."""
    os.makedirs(work, exist_ok=True)
    for start in range(0, len(files), 40):
        told = subprocess.run(["gcov", "--json-format", "--stdout", "--branch-probabilities"] + files[start:start + 40],
                              cwd=work, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        for text in told.stdout.splitlines():
            for source in json.loads(text)["files"]:
                name = os.path.relpath(os.path.join(root, source["file"]), root)
                if re.match(r"(QuenzoTool|QuenzoBase)/(source|include)/", name):
                    for line in source["lines"]:
                        yield name, line


def reached_by(counts, build, root):
    """What one test has reached, one entry a line."""
    files = [name for name in files_below(counts + build, ".gcda") if LIBRARY.search(name[len(counts + build):])]
    for name in files:
        notes = name[:-5] + ".gcno"
        if not os.path.lexists(notes):
            os.symlink(notes[len(counts):], notes)
    return list(read_counts(files, root, counts))


def add_reached(entries, whole):
    """Adds what one test has reached to the whole, and tells its lines by source."""
    lines = collections.defaultdict(set)
    for source, line in entries:
        if source in whole.lines:
            whole.add(source, line)
            if line["count"]:
                lines[source].add(line["line_number"])
    return {source: sorted(numbers) for source, numbers in sorted(lines.items())}


def ranges(numbers, known):
    """Numbers as text; those that only lines without code part are one range."""
    parts = []
    position = {number: index for index, number in enumerate(sorted(known))}
    for number in sorted(numbers):
        if parts and position[parts[-1][1]] + 1 == position[number]:
            parts[-1][1] = number
        else:
            parts.append([number, number])
    return ", ".join(str(first) if first == last else "%d-%d" % (first, last) for first, last in parts)


def share(counts):
    return 100.0 * sum(1 for count in counts if count) / max(1, len(counts))


def report(whole):
    """Prints the table; lines and branches reached, in percent."""
    all_lines, all_branches = [], []
    for source in sorted(whole.lines):
        lines, branches = whole.lines[source], whole.branches[source]
        all_lines += lines.values()
        all_branches += branches.values()
        print("%6.1f %% of %4d lines  %6.1f %% of %4d branches  %s" %
              (share(lines.values()), len(lines), share(branches.values()) if branches else 100, len(branches), source))
        unreached = [number for number, count in lines.items() if not count]
        if unreached:
            print("         lines not reached: " + ranges(unreached, lines))
        half = {number for (number, _, _), count in branches.items() if not count and lines[number]}
        if half:
            print("         lines with a branch not taken: " + ranges(half, lines))
    figures = share(all_lines), share(all_branches)
    print("library: %.1f %% of %d lines, %.1f %% of %d branches" %
          (figures[0], len(all_lines), figures[1], len(all_branches)))
    return figures


def main():
    build = os.path.abspath(sys.argv[1])
    wanted = re.compile(sys.argv[2] if len(sys.argv) > 2 else "")
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    whole, reached, failures = Coverage(), {}, []
    own = [name for library in ("QuenzoTool", "QuenzoBase")
           for name in files_below("%s/%s/CMakeFiles/%s.dir/source" % (build, library, library), ".gcno")]
    for source, line in read_counts(own, root, build + "/reached"):
        whole.add(source, dict(line, count=0, branches=[dict(branch, count=0) for branch in line["branches"]]))

    def measured(test):
        counts = "%s/reached/%s" % (build, test[0])
        seconds, failure = run(test, counts)
        return test[0], seconds, failure, reached_by(counts, build, root)

    with concurrent.futures.ThreadPoolExecutor(int(os.environ.get("JOBS", os.cpu_count()))) as pool:
        tests = [test for test in tests_of(build) if wanted.search(test[0])]
        for name, seconds, failure, entries in pool.map(measured, tests):
            reached[name] = {"seconds": round(seconds, 2), "lines": add_reached(entries, whole)}
            print("%7.1f s  %s%s" % (seconds, name, ", which failed" if failure else ""), flush=True)
            failures += [failure] if failure else []
    with open(build + "/reached.json", "w") as file:
        json.dump(reached, file)
    lines, branches = report(whole)
    for failure in failures:
        print(failure)
    low = wanted.pattern == "" and (lines < LINES_WANTED or branches < BRANCHES_WANTED)
    sys.exit(1 if failures or low else 0)


if __name__ == "__main__":
    main()
