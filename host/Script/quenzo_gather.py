# SPDX-License-Identifier: MIT
"""What a folder to pack holds."""
import collections
import os
import stat

from quenzo_files import SCRATCH
from quenzo_report import ToolError

Source = collections.namedtuple("Source", "name path size")


def lies_in(path, root):
    """Whether path is root or below it, by whatever names."""
    while path != "/":
        if os.path.isdir(path) and os.path.samefile(path, root):
            return True
        path = os.path.dirname(path)
    return os.path.samefile("/", root)


def contents(root):
    """Entry name to Source, for every file and every empty folder below root."""
    found = {}

    def walk(folder, prefix):
        names = [name for name in os.listdir(folder) if not SCRATCH.match(name)]
        for name in names:
            path = os.path.join(folder, name)
            status = os.lstat(path)
            if stat.S_ISDIR(status.st_mode):
                walk(path, prefix + name + "/")
            else:
                found[prefix + name] = _file_behind(prefix + name, path, status, root)
        if prefix and not names:
            found[prefix] = Source(prefix, folder, 0)

    try:
        walk(root, "")
    except RuntimeError:
        raise ToolError("the folder is nested too deep: %s" % root)
    return found


def _file_behind(name, path, status, root):
    """The file to read for an entry; a link has to end at a file of the same tree."""
    if stat.S_ISLNK(status.st_mode):
        real = os.path.realpath(path)
        if not real.startswith(root.rstrip("/") + "/"):
            raise ToolError("a link leads out of the folder: %s" % path)
        if not os.path.isfile(real):
            raise ToolError("a link leads to no file: %s" % path)
        return Source(name, real, os.path.getsize(real))
    if not stat.S_ISREG(status.st_mode):
        raise ToolError("neither file nor folder: %s" % path)
    return Source(name, path, status.st_size)


def add_extra(found, extra, target):
    name = os.path.basename(extra)
    path = os.path.realpath(extra)
    if path == target:
        raise ToolError("the file to add is the archive to write: %s" % extra)
    if not os.path.isfile(path):
        raise ToolError("no such file to add: %s" % extra)
    if any(entry.split("/", 1)[0] == name for entry in found):
        raise ToolError("the folder holds a '%s' of its own" % name)
    found[name] = Source(name, path, os.path.getsize(path))
