# SPDX-License-Identifier: MIT
"""Prints what whole runs took, and their steps: build_tables.py TIMES COUNT REPORT..."""
import datetime
import json
import statistics
import sys


def read_times(path):
    times = {}
    with open(path) as lines:
        for line in lines:
            name, *numbers = line.split()
            times.setdefault(name, []).append([float(number) for number in numbers])
    return times


def print_times(times, count):
    plain = statistics.median(run[0] for run in times["cp"]) / count
    print("| run | channels | elapsed | a channel | processor a channel | peak memory | of cp |")
    print("| --- | --- | --- | --- | --- | --- | --- |")
    for name, runs in times.items():
        number = int(name.split("-")[1]) if name.startswith("sample") else count
        elapsed, user, system, memory = (statistics.median(column) for column in zip(*runs))
        ratio = "" if name.startswith("sample") else "%.2f" % (elapsed / number / plain)
        print("| %s | %d | %.2f s | %.0f ms | %.0f ms | %.0f MB | %s |" % (
            name, number, elapsed, 1000 * elapsed / number, 1000 * (user + system) / number, memory / 1024, ratio))


def seconds(begin, end):
    begin, end = (datetime.datetime.fromisoformat(time.replace("Z", "+00:00")) for time in (begin, end))
    return (end - begin).total_seconds()


def print_steps(path):
    with open(path) as file:
        report = json.load(file)
    channels = report["channels"]
    steps = {}
    for channel in channels:
        for step in channel["steps"]:
            steps.setdefault(step["name"], []).append(1000 * seconds(step["start"], step["end"]))
    print("\n%s: %d channels; before them %.2f s" % (
        path, len(channels), seconds(report["start"], channels[0]["steps"][0]["start"])))
    print("\n| step | mean | median | longest |\n| --- | --- | --- | --- |")
    for name, times in steps.items():
        print("| %s | %.1f ms | %.1f ms | %.1f ms |" % (name, statistics.mean(times), statistics.median(times), max(times)))


def main(times, count, *reports):
    print_times(read_times(times), int(count))
    for report in reports:
        print_steps(report)


main(*sys.argv[1:])
