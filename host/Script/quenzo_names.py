# SPDX-License-Identifier: MIT
"""Which entry names an archive may hold: the same rule for packing, unpacking and file lists."""
import re

from quenzo_limits import MAX_DEPTH
from quenzo_report import RefusedArchive

_DRIVE = re.compile(r"^[A-Za-z]:")


def check_name(name):
    """Refuses a name (bytes, "/" at the end for a folder) that is not plainly below the top."""
    parts = (name[:-1] if name.endswith("/") else name).split("/")
    if name.startswith("/") or _DRIVE.match(name):
        raise RefusedArchive("entry name is absolute: '%s'" % name)
    if ".." in parts:
        raise RefusedArchive("entry name leads out of the folder: '%s'" % name)
    if "\\" in name or "\0" in name or "" in parts or "." in parts:
        raise RefusedArchive("entry name is not a plain path: '%s'" % name)
    if len(parts) > MAX_DEPTH:
        raise RefusedArchive("entry name is more than %d folders deep: '%s'" % (MAX_DEPTH, name[:80]))


def is_utf8(name):
    try:
        name.decode("utf-8")
    except UnicodeDecodeError:
        return False
    return True


def check_names(names):
    """Checks every name, and that no two want the same place."""
    taken, files = set(), set()
    for name in names:
        check_name(name)
        path = name.rstrip("/")
        if path in taken:
            raise RefusedArchive("entry name is there twice: '%s'" % name)
        taken.add(path)
        if not name.endswith("/"):
            files.add(path)
    for path in taken:
        _check_parents(path, files)


def _check_parents(path, files):
    while True:
        path = path.rpartition("/")[0]
        if not path:
            return
        if path in files:
            raise RefusedArchive("an entry is a file and a folder at once: '%s'" % path)
