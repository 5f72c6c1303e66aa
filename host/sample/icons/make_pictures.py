#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Paints the sample game's icon and the channels' corner marks, the same in each run.

    make_pictures.py            writes icon.png and marks/ beside itself
"""
import math
import os
import random
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
ICON_SIDE = 512
MARK_SIDE = 160
CORNERS = ("left-top", "left-bottom", "right-top", "right-bottom")


def clamp(value, low=0.0, high=1.0):
    return min(max(value, low), high)


def blend(below, above, cover):
    return tuple(b + (a - b) * cover for b, a in zip(below, above))


def smooth(edge, width, value):
    """1 below the edge, 0 above it, and a ramp of the given width between."""
    t = clamp((edge - value) / width + 0.5)
    return t * t * (3 - 2 * t)


class Noise:
    """Value noise of several octaves, between -1 and 1."""

    def __init__(self, seed):
        rng = random.Random(seed)
        self.lattice = [[rng.uniform(-1, 1) for _ in range(64)] for _ in range(64)]

    def one(self, x, y):
        i, j = math.floor(x), math.floor(y)
        u, v = x - i, y - j
        u, v = u * u * (3 - 2 * u), v * v * (3 - 2 * v)
        top, bottom = self.lattice[j % 64], self.lattice[(j + 1) % 64]
        a = top[i % 64] + (top[(i + 1) % 64] - top[i % 64]) * u
        b = bottom[i % 64] + (bottom[(i + 1) % 64] - bottom[i % 64]) * u
        return a + (b - a) * v

    def octaves(self, x, y, count):
        return sum(self.one(x * 2**n, y * 2**n) / 2 ** (n + 1) for n in range(count))


def filtered_rows(rows, pixel):
    """Each row in the one of PNG's five forms that is closest to zero."""
    above = bytes(len(rows[0]))
    for row in rows:
        left = bytes(pixel) + row[:-pixel]
        corner = bytes(pixel) + above[:-pixel]
        forms = [row, bytearray(), bytearray(), bytearray(), bytearray()]
        for value, a, b, c in zip(row, left, above, corner):
            p, q, r = abs(b - c), abs(a - c), abs(a + b - 2 * c)
            paeth = a if p <= q and p <= r else b if q <= r else c
            forms[1].append((value - a) & 255)
            forms[2].append((value - b) & 255)
            forms[3].append((value - (a + b) // 2) & 255)
            forms[4].append((value - paeth) & 255)
        best = min(range(5), key=lambda n: sum(min(v, 256 - v) for v in forms[n]))
        yield bytes([best]) + bytes(forms[best])
        above = row


def write_png(path, side, pixels, alpha):
    """Writes a square picture of tuples of 3 or 4 values from 0 to 255, row by row."""
    pixel = 4 if alpha else 3
    data = bytes(int(clamp(v, 0, 255) + 0.5) for one in pixels for v in one)
    rows = [data[y * side * pixel:(y + 1) * side * pixel] for y in range(side)]

    def chunk(kind, content):
        body = kind + content
        return struct.pack(">I", len(content)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", side, side, 8, 6 if alpha else 2, 0, 0, 0)
    stream = zlib.compress(b"".join(filtered_rows(rows, pixel)), 9)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as picture:
        picture.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", stream) + chunk(b"IEND", b""))


def sky(u, v, clouds):
    colour = blend((38, 34, 84), (250, 150, 86), clamp(v / 0.62) ** 1.3)
    distance = math.hypot(u - 0.66, v - 0.42)
    colour = blend(colour, (255, 226, 150), math.exp(-distance * 6) * 0.9)
    colour = blend(colour, (255, 246, 214), smooth(0.085, 0.006, distance))
    veil = clamp(clouds.octaves(u * 5, v * 14, 5) * 1.6 + 0.1) * clamp(1.2 - v * 1.4)
    return blend(colour, (255, 176, 150), veil * 0.6)


def hills(colour, u, v, ridges, rock):
    layers = ((0.56, 0.16, (150, 92, 118)), (0.66, 0.12, (88, 56, 96)), (0.76, 0.09, (40, 30, 62)))
    for n, (base, height, tint) in enumerate(layers):
        ridge = base - height * ridges.octaves(u * (3 + 2 * n) + 11 * n, n * 7.3, 6)
        cover = smooth(0.0, 0.004, ridge - v)
        relief = rock.octaves(u * 22, (v - ridge) * 30 + n * 5, 4) * 34
        light = clamp(1 - (v - ridge) * 5) * 26
        colour = blend(colour, tuple(t + relief + light for t in tint), cover)
    return colour


def lantern(colour, u, v):
    glow = math.exp(-(((u - 0.36) / 0.24) ** 2 + ((v - 0.58) / 0.26) ** 2) * 1.6)
    colour = blend(colour, (255, 170, 70), glow * 0.55)
    x, y = (u - 0.36) / 0.185, (v - 0.58) / 0.215
    inside = smooth(1.0, 0.02, math.hypot(x, y))
    across = clamp(x / max(math.sqrt(max(1 - y * y, 0)), 1e-3), -1, 1)
    rib = 0.5 + 0.5 * math.cos(math.acos(across) * 18)
    shade = clamp(1.05 - math.hypot(x + 0.15, y - 0.1) * 0.75)
    paper = blend((196, 32, 30), (255, 206, 104), shade**1.6)
    colour = blend(colour, blend(paper, (120, 14, 20), (1 - rib) ** 3 * 0.55), inside)
    for centre in (0.365, 0.795):
        cap = smooth(0.075, 0.005, abs(u - 0.36)) * smooth(0.02, 0.005, abs(v - centre))
        colour = blend(colour, blend((92, 50, 20), (240, 190, 90), clamp(0.6 - (u - 0.36) * 5)), cap)
    cord = smooth(0.006, 0.004, abs(u - 0.36)) * smooth(0.36, 0.004, v)
    tassel = smooth(0.022, 0.005, abs(u - 0.36)) * smooth(0.06, 0.004, abs(v - 0.865))
    colour = blend(colour, (70, 36, 26), cord)
    return blend(colour, (206, 44, 40 + 60 * abs(math.sin(u * 900))), tassel)


def paint_icon():
    clouds, ridges, rock = Noise(1), Noise(2), Noise(3)
    grain = random.Random(4)
    pixels = []
    for y in range(ICON_SIDE):
        for x in range(ICON_SIDE):
            u, v = (x + 0.5) / ICON_SIDE, (y + 0.5) / ICON_SIDE
            colour = lantern(hills(sky(u, v, clouds), u, v, ridges, rock), u, v)
            vignette = 1 - 0.35 * clamp(math.hypot(u - 0.5, v - 0.5) * 1.5 - 0.35)
            noise = grain.uniform(-0.8, 0.8)
            pixels.append(tuple(value * vignette + noise for value in colour))
    write_png(os.path.join(HERE, "icon.png"), ICON_SIDE, pixels, alpha=False)


# The glyphs: how far (x, y) is outside, with the glyph's centre as origin and its radius as unit.
def star(x, y):
    turn = 2 * math.pi / 5
    away = abs((math.atan2(x, -y) + turn / 2) % turn - turn / 2)
    return (math.hypot(x, y) - (1.0 - 0.58 * (away / (turn / 2)) ** 0.8)) * 0.7


def ring(x, y):
    return abs(math.hypot(x, y) - 0.66) - 0.22


def diamond(x, y):
    return abs(x) * 1.2 + abs(y) - 0.95


def waves(x, y):
    lines = min(abs(y - offset - 0.16 * math.sin(x * 5)) for offset in (-0.5, 0.0, 0.5)) - 0.13
    return max(lines, abs(x) - 0.85)


def leaf(x, y):
    a, b = (x + y) * 0.7071, (x - y) * 0.7071
    blade = max(math.hypot(a - 0.62, b), math.hypot(a + 0.62, b)) - 1.08
    return max(blade, 0.06 - abs(a)) if abs(b) < 0.7 else blade


# The shapes: how far (u, v) is outside, counted in sides from the corner.
def triangle(u, v):
    return (u + v - 0.96) * 0.7071


def quarter(u, v):
    return math.hypot(u, v) - 0.88


def ribbon(u, v):
    return abs(u + v - 0.86) * 0.7071 - 0.22


def badge(u, v):
    return math.hypot(u - 0.48, v - 0.48) - 0.4


def tab(u, v):
    return math.hypot(max(u - 0.72, 0), max(v - 0.24, 0)) - 0.2


# Shape, the glyph's place and radius, the glyph, the colour.
MARKS = {
    "harbor": (triangle, (0.3, 0.3), 0.22, waves, (16, 92, 160)),
    "meadow": (quarter, (0.36, 0.36), 0.27, leaf, (44, 140, 64)),
    "nimbus": (ribbon, (0.43, 0.43), 0.19, ring, (126, 66, 170)),
    "quartz": (badge, (0.48, 0.48), 0.26, diamond, (206, 46, 92)),
    "tideway": (tab, (0.46, 0.22), 0.17, star, (240, 150, 20)),
}


def paint_mark(name, corner):
    shape, (centre_u, centre_v), radius, glyph, tint = MARKS[name]
    softness = 1.5 / MARK_SIDE
    # The glyph stands upright in each corner.
    side_x = -1 if "right" in corner else 1
    side_y = -1 if "bottom" in corner else 1
    pixels = []
    for y in range(MARK_SIDE):
        for x in range(MARK_SIDE):
            u, v = (x + 0.5) / MARK_SIDE, (y + 0.5) / MARK_SIDE
            u = 1 - u if side_x < 0 else u
            v = 1 - v if side_y < 0 else v
            outside = shape(u, v)
            sign = glyph((u - centre_u) / radius * side_x, (v - centre_v) / radius * side_y) * radius
            colour = blend(tint, tuple(t * 0.72 for t in tint), clamp(u + v - 0.2))
            colour = blend(colour, (255, 255, 255), smooth(0, softness, abs(outside + 0.035) - 0.008) * 0.85)
            colour = blend(colour, (255, 255, 255), smooth(0, softness, sign))
            pixels.append(colour + (255 * smooth(0, softness, outside),))
    write_png(os.path.join(HERE, "marks", name, "icon", corner + ".png"), MARK_SIDE, pixels, alpha=True)


def main():
    paint_icon()
    for name in MARKS:
        for corner in CORNERS:
            paint_mark(name, corner)


if __name__ == "__main__":
    main()
