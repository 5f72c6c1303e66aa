#!/usr/bin/python2.7
# SPDX-License-Identifier: MIT
"""Draws the sample game's pictures and its horn; equal on every run.

    make-art.py          writes below game/, beside this file
"""
from __future__ import division

import math
import os
import struct
import wave
import zlib

GAME = os.path.join(os.path.dirname(os.path.abspath(__file__)), "game")
ICON_SIZES = (("mdpi", 48), ("xhdpi", 96), ("xxxhdpi", 192))

SKY_TOP, SKY_LOW = (38, 70, 140), (250, 190, 130)
FOG, HULL, SAIL, SUN = (226, 232, 240), (92, 52, 40), (250, 246, 232), (255, 220, 120)


def mixed(first, second, share):
    return tuple(int(round(a + (b - a) * share)) for a, b in zip(first, second))


def scene(x, y):
    """The colour at a place of the unit square: sun, fog, and a ship that floats on it."""
    colour = mixed(SKY_TOP, SKY_LOW, y)
    if (x - 0.74) ** 2 + (y - 0.3) ** 2 < 0.012:
        colour = SUN
    if 0.3 < x < 0.48 and 0.2 + 1.9 * abs(x - 0.46) < y < 0.56:
        colour = SAIL
    if 0.5 < x < 0.6 and 0.26 + 2.6 * (x - 0.5) < y < 0.56:
        colour = mixed(SAIL, SKY_LOW, 0.3)
    if 0.6 < y < 0.74 and abs(x - 0.46) < 0.34 - (y - 0.6):
        colour = HULL
    if y > 0.7 + 0.025 * math.sin(14 * x):
        colour = mixed(FOG, SKY_TOP, (y - 0.7) * 0.9)
    return colour


def rounded(x, y):
    """Whether a place lies within the icon's rounded square."""
    corner = 0.18
    dx = max(corner - x, x - (1 - corner), 0)
    dy = max(corner - y, y - (1 - corner), 0)
    return dx * dx + dy * dy <= corner * corner


def chunk(kind, data):
    return struct.pack(">L", len(data)) + kind + data + struct.pack(">L", zlib.crc32(kind + data) & 0xffffffff)


def png(width, height, pixel):
    """A PNG with alpha from pixel(x, y) over the unit square."""
    rows = []
    for row in range(height):
        line = [pixel((column + 0.5) / width, (row + 0.5) / height) for column in range(width)]
        rows.append("\0" + "".join(struct.pack("4B", *colour) for colour in line))
    head = struct.pack(">2L5B", width, height, 8, 6, 0, 0, 0)
    return ("\x89PNG\r\n\x1a\n" + chunk("IHDR", head) + chunk("IDAT", zlib.compress("".join(rows), 9)) +
            chunk("IEND", ""))


def icon_pixel(x, y):
    return scene(x, y) + (255,) if rounded(x, y) else (0, 0, 0, 0)


def write(name, data):
    path = os.path.join(GAME, name)
    if not os.path.isdir(os.path.dirname(path)):
        os.makedirs(os.path.dirname(path))
    with open(path, "wb") as out:
        out.write(data)


def write_horn(name, rate=8000, seconds=1):
    """Two low tones that fade out."""
    path = os.path.join(GAME, name)
    if not os.path.isdir(os.path.dirname(path)):
        os.makedirs(os.path.dirname(path))
    out = wave.open(path, "wb")
    out.setparams((1, 1, rate, rate * seconds, "NONE", ""))
    for step in range(rate * seconds):
        time = step / rate
        tone = math.sin(2 * math.pi * 110 * time) + 0.6 * math.sin(2 * math.pi * 138 * time)
        out.writeframes(chr(int(round(128 + 70 * tone * (1 - time / seconds) / 1.6))))
    out.close()


def main():
    for density, size in ICON_SIZES:
        write("res/drawable-%s/icon.png" % density, png(size, size, icon_pixel))
    write("assets/textures/harbour.png", png(256, 128, lambda x, y: scene(x, y) + (255,)))
    write_horn("assets/sound/horn.wav")


if __name__ == "__main__":
    main()
