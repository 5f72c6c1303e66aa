# SPDX-License-Identifier: MIT
"""Judges an archive with Python's own means, and prints one line an entry: name, method, flags, date, attributes, size.

Exit code 1 with a sentence for an archive that is not what Android wants.
"""
import collections
import struct
import sys
import zipfile


def judge(path):
    archive = zipfile.ZipFile(path)
    infos = archive.infolist()
    damaged = archive.testzip()
    if damaged:
        return "damaged: " + damaged
    twice = [name for name, count in collections.Counter(info.filename for info in infos).items() if count > 1]
    if twice:
        return "twice: %r" % twice
    with open(path, "rb") as raw:
        for info in infos:
            raw.seek(info.header_offset)
            local = struct.unpack("<4s5HLLL2H", raw.read(30))
            place = info.header_offset + 30 + local[9] + local[10]
            unit = 16384 if info.filename.endswith(".so") else 4
            if info.compress_type == zipfile.ZIP_STORED and place % unit:
                return "not aligned: " + info.filename
            if local[2] & 8 or info.flag_bits & 8:
                return "sizes behind the content: " + info.filename
            print(ascii(info.filename), info.compress_type, info.flag_bits, info.date_time[0], "%o" % (info.external_attr >> 16),
                  info.file_size)
    return None


sys.exit(judge(sys.argv[1]))
