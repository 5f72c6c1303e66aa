# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Hostile archives, packages and documents, made from a seed: the same seed gives the same bytes."""
import json
import random
import struct
import zlib

from attack import read
from support import APK, Raw, deflated, raw_archive

NAMES = ["a", "b/c", "b/c/d", "assets/x", "assets/y/z", "config.xml", "META-INF/MANIFEST.MF", "..", "../x", "b/../../x", "/x",
         "//h/x", "C:x", "b\\..\\..\\x", "./x", "b//c", "", ".", "b/", "b/c/", "a\0b", "\xff\xfe", "\xc3\xa9", "x" * 300,
         "d/" * 101 + "f", "a\nquenzo: done", "esc\x1b[2J", "\xe2\x80\xaegpj.exe", "CON", "a ", "-rf", "~", "$HOME", "B/c", "b"]
DATA = ["", "x", "hello" * 1000, "\0" * 70000, "PK\3\4" * 50]


def entry(dice):
    """One entry, in most cases an honest one."""
    name, data = dice.choice(NAMES[:7] * 5 + NAMES), dice.choice(DATA)
    changes = {}
    for field, value in (("size", dice.choice([0, 1, 2 ** 31, 2 ** 32 - 1, len(data) + 1])),
                         ("packed_size", dice.choice([0, 2 ** 32 - 1, len(data) + 7])), ("crc", dice.getrandbits(32)),
                         ("flags", dice.choice([1, 8, 64, 0x800, 0x2000])), ("system", dice.choice([0, 7, 19])),
                         ("attributes", dice.choice([0o120777, 0o040755, 0o010644, 0o060644, 0o104755]) << 16),
                         ("local_name", dice.choice(NAMES)), ("local_method", dice.choice([0, 8, 12, 99])),
                         ("offset", dice.choice([0, 1, 30, 2 ** 32 - 1]))):
        if dice.random() < 0.03:
            changes[field] = value
    method = dice.choice([0, 0, 8, 8, 8, 12, 14, 93]) if dice.random() < 0.2 else dice.choice([0, 8])
    if method == 8 and dice.random() < 0.05:
        changes["packed"] = deflated("\0" * dice.choice([10 ** 6, 30 * 10 ** 6]))   # a bomb
    return Raw(name, data, method, **changes)


def config(dice, names):
    """A config.xml that names some of the files, whole or not."""
    files = "".join("<file>%s</file>" % name for name in names if "\0" not in name and "<" not in name)
    text = '<sdk id="%s" name="n" version="1"><files>%s</files></sdk>' % (
        dice.choice(["7", "7", "7", "-1", "x", "99999999999", ""]), files)
    kind = dice.randrange(8)
    if kind == 0:
        text = '<!DOCTYPE s [<!ENTITY a "%s"><!ENTITY b "&a;&a;&a;">]>' % ("x" * 1000) + text
    if kind == 1:
        text = "<x>" * dice.choice([100, 100000]) + text
    return mutated(dice, text) if kind == 2 else text


def mutated(dice, data):
    """Some bytes changed, moved, doubled or gone."""
    data = bytearray(data)
    for unused in range(dice.randrange(1, 6)):
        if not data:
            break
        at = dice.randrange(len(data))
        length = min(dice.choice([1, 1, 2, 4, 40, 400]), len(data) - at)
        kind = dice.randrange(5)
        if kind == 0:
            data[at] = dice.randrange(256)
        elif kind == 1:
            del data[at:at + length]
        elif kind == 2:
            data[at:at] = data[at:at + length] * dice.choice([1, 2, 50])
        elif kind == 3:
            data[at:at + length] = dice.choice(["\xff", "\0"]) * length
        else:
            other = dice.randrange(len(data))
            data[at:at + length] = data[other:other + length]
    return bytes(data)


def archive(dice, path):
    """An archive at path, with a config.xml in many cases."""
    entries = [entry(dice) for unused in range(dice.choice([0, 1, 2, 3, 5, 8]))]
    if dice.random() < 0.5:
        entries.append(Raw("config.xml", config(dice, [one.name for one in entries[:3]])))
    raw_archive(path, entries, count=dice.choice([None] * 9 + [0, 65535]), comment=dice.choice(["", "", "PK\5\6", "c" * 70000][:3]))
    if dice.random() < 0.3:
        damage(dice, path)


def damage(dice, path):
    """Changes bytes of a file; or takes it for the end of another, or puts a record of the large form before its end."""
    data = read(path)
    kind = dice.randrange(6)
    if kind == 0:
        data = "#!/bin/sh\n" + data
    elif kind == 1:
        end = data.rfind("PK\5\6")
        record = struct.pack("<4sQ2H2L4Q", "PK\6\6", 44, 45, 45, 0, 0, 2 ** 40, 2 ** 40, 2 ** 50, dice.getrandbits(40))
        locator = struct.pack("<4sLQL", "PK\6\7", 0, max(end, 0), 1)
        data = data[:end] + record + locator + data[end:]
    elif kind == 2:
        data = data[:dice.randrange(len(data) + 1)]
    else:
        data = mutated(dice, data)
    with open(path, "wb") as out:
        out.write(data)


def apk(dice, path):
    """The sample APK with damaged bytes."""
    with open(path, "wb") as out:
        out.write(read(APK) if dice.random() < 0.7 else mutated(dice, read(APK)))
    if dice.random() < 0.7:
        damage(dice, path)


def document(dice, whole):
    """JSON text: a whole value, a mutated one, or one without bottom."""
    text = json.dumps(whole)
    kind = dice.randrange(5)
    if kind == 0:
        return text
    if kind == 1:
        depth = dice.choice([100, 2000, 200000])
        return dice.choice(["[", '{"a":', '[{"folder":']) * depth
    if kind == 2:
        return "[" * 1500 + text + "]" * 1500
    return mutated(dice, text)


def picture(dice, whole):
    """A PNG picture: mutated, or by its header far larger than it is."""
    kind = dice.randrange(4)
    if kind == 0:
        side = dice.choice([0, 1, 30000, 65536, 2 ** 31 - 1])
        header = struct.pack(">LL", side, dice.choice([1, side])) + whole[24:29]
        crc = zlib.crc32("IHDR" + header) & 0xffffffff
        return whole[:16] + header + struct.pack(">L", crc) + whole[33:]
    return mutated(dice, whole)


def dice_of(seed):
    return random.Random(seed)
