# SPDX-License-Identifier: MIT
"""Pictures in PNG form, written byte by byte, and a judge of those that the program writes."""
import struct
import zlib


def chunk(kind, data):
    return struct.pack(">L", len(data)) + kind + data + struct.pack(">L", zlib.crc32(kind + data) & 0xffffffff)


def png(width, height, rows=None, depth=8, colour=6):
    """A picture of that size by its header; what it holds is plain unless rows says otherwise."""
    if rows is None:
        rows = "".join("\0" + "".join(chr((x * 7 + y) & 255) + chr(x & 255) + chr(y & 255) + "\xff"
                                      for x in range(width)) for y in range(height))
    return ("\x89PNG\r\n\x1a\n" + chunk("IHDR", struct.pack(">LLBBBBB", width, height, depth, colour, 0, 0, 0)) +
            chunk("IDAT", zlib.compress(rows, 1)) + chunk("IEND", ""))


def is_whole(data):
    """Whether data is a PNG file from its first byte to its last, every checksum right."""
    if not data.startswith("\x89PNG\r\n\x1a\n"):
        return False
    position = 8
    while position + 12 <= len(data):
        length, kind = struct.unpack(">L4s", data[position:position + 8])
        end = position + 12 + length
        if data[position:end] != chunk(kind, data[position + 8:end - 4]):
            return False
        if kind == "IEND":
            return end == len(data)
        position = end
    return False
