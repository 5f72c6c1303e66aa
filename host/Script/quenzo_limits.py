# SPDX-License-Identifier: MIT
"""How much an archive may hold: the same for packing and for unpacking."""
from quenzo_report import RefusedArchive

MAX_ENTRIES = 200 * 1000
MAX_DIRECTORY_BYTES = 128 << 20
MAX_BYTES = 16 << 30            # all entries unpacked
MAX_RATIO = 200                 # all entries unpacked to the archive's own size ...
RATIO_FREE_BYTES = 64 << 20     # ... once they come to more than this
MAX_DEPTH = 100                 # the walks over a tree are recursive


def check_entries(count):
    if count > MAX_ENTRIES:
        raise RefusedArchive("the archive has more than %d entries" % MAX_ENTRIES)


def check_directory(size):
    if size > MAX_DIRECTORY_BYTES:
        raise RefusedArchive("the archive's directory has more than %d bytes" % MAX_DIRECTORY_BYTES)


def check_content(total):
    """total: the bytes of all entries unpacked."""
    if total > MAX_BYTES:
        raise RefusedArchive("the archive unpacks to %d bytes; the limit is %d" % (total, MAX_BYTES))


def check_ratio(total, own):
    """own: the bytes of the archive itself."""
    if total > RATIO_FREE_BYTES and total > own * MAX_RATIO:
        raise RefusedArchive("the archive unpacks to more than %d times its size" % MAX_RATIO)
