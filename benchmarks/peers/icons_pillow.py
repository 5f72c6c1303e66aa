#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes icon sets with Pillow, a process a core: icons_pillow.py MASTER LIST PATTERN SIDE...

Each line of LIST is a channel: its mark, the mark's left and top, and its folder, parted by tabs. PATTERN is a
file's name with "{}" for each mention of the side.
"""
import multiprocessing
import os
import sys

from PIL import Image


def produce(channel):
    mark_path, left, top, folder = channel
    icon = MASTER.copy()
    with Image.open(mark_path) as mark:
        icon.paste(mark, (int(left), int(top)), mark)
    os.mkdir(folder)
    for side in SIDES:
        name = PATTERN.replace("{}", str(side))
        icon.resize((side, side), Image.Resampling.BILINEAR).save(os.path.join(folder, name))
    icon.save(os.path.join(folder, "icon512x512.png"))


if __name__ == "__main__":
    with Image.open(sys.argv[1]) as master:
        MASTER = master.convert("RGB")
    PATTERN = sys.argv[3]
    SIDES = [int(side) for side in sys.argv[4:]]
    with open(sys.argv[2], encoding="utf-8") as channels:
        CHANNELS = [line.rstrip("\n").split("\t") for line in channels]
    # The workers are forked, and so know the pictures and sizes.
    with multiprocessing.get_context("fork").Pool(os.cpu_count()) as pool:
        pool.map(produce, CHANNELS, chunksize=1)
