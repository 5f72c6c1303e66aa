# SPDX-License-Identifier: MIT
"""Writes a job of many channels over the base, the SDK, the icon and the marks of a folder: make_job.py FOLDER COUNT."""
import json
import os
import sys


def main(folder, count):
    marks = sorted(entry.name for entry in os.scandir(os.path.join(folder, "marks")) if entry.is_dir())
    job = {
        "game": "Game",
        "base": "base.apk",
        "icons": {"master": "icon.png", "marks": "marks"},
        "sdks": {"pay": {"package": "sdk.zip"}},
        "defaults": {"sdks": ["pay"]},
        "channels": [
            {"folder": "channel%04d" % number, "mark": marks[number % len(marks)], "settings": {"market": number}}
            for number in range(int(count))
        ],
    }
    with open(os.path.join(folder, "job.json"), "w") as out:
        json.dump(job, out, indent=2)


main(*sys.argv[1:])
