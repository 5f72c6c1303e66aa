# SPDX-License-Identifier: MIT
"""Writes what a game of 200 MB has into one folder, and what a channel brings into another: make_base.py GAME CHANNEL.

The content is the same in every run: media and libraries that nothing makes smaller, and code that deflating halves.
"""
import os
import random
import sys

_RANDOM = random.Random(1)
_WORDS = [_RANDOM.randbytes(_RANDOM.randint(2, 9)) for _ in range(30000)]


def noise(size):
    return _RANDOM.randbytes(size)


def code(size):
    return b"".join(_RANDOM.choices(_WORDS, k=size // 5))[:size]


def write(folder, name, content):
    path = os.path.join(folder, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as out:
        out.write(content)


def main(game, channel):
    write(game, "AndroidManifest.xml", code(12000))
    write(game, "resources.arsc", code(3000000))
    for number in range(1, 5):
        write(game, "classes%d.dex" % number if number > 1 else "classes.dex", code(9000000))
    for number in range(60):
        write(game, "assets/sound/%03d.ogg" % number, noise(1200000))
    for number in range(3):
        write(game, "assets/film/%d.mp4" % number, noise(9000000))
    for number in range(400):
        write(game, "assets/level/%03d.json" % number, code(6000))
    for abi in ("arm64-v8a", "armeabi-v7a"):
        for name in ("game", "engine", "audio"):
            write(game, "lib/%s/lib%s.so" % (abi, name), noise(8000000))
    for number in range(2000):
        write(game, "res/drawable-xhdpi-v4/picture%04d.png" % number, noise(4000))
    for density in ("ldpi", "mdpi", "hdpi", "xhdpi", "xxhdpi", "xxxhdpi"):
        name = "res/mipmap-%s-v4/icon.png" % density
        write(game, name, noise(15001))
        write(channel, name, noise(15777))
    for number in range(20):
        write(channel, "assets/sdk/text%02d.xml" % number, code(20000))
    write(channel, "classes5.dex", code(600000))
    write(channel, "lib/arm64-v8a/libsdk.so", noise(900001))


main(*sys.argv[1:])
