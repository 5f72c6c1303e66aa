# SPDX-License-Identifier: MIT
"""What a folder to pack holds."""
import collections
import os
import stat

from quenzo_files import SCRATCH
from quenzo_folder import Folder
from quenzo_report import NoFile, ToolError
from quenzo_zipwrite import changed

# A file to pack; do(function, *more) calls function with a path to it, whatever others exchange above it.
Source = collections.namedtuple("Source", "name size do")


def lies_in(path, root):
    """Whether path is root or below it, by whatever names."""
    while path != "/":
        if os.path.isdir(path) and os.path.samefile(path, root):
            return True
        path = os.path.dirname(path)
    return os.path.samefile("/", root)


class Tree(object):
    """The folder to pack, held open: its files are reached from there, and through no link."""

    def __init__(self, root):
        self._root = root.rstrip("/") + "/"
        self._top = Folder(root, root)
        self._last, self._names = self._top.folder("."), []     # the folder of the latest file, and its way

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        self._last.close()
        self._top.close()

    def contents(self):
        """Entry name to Source, for every file and every empty folder."""
        found = {}
        try:
            self._walk(self._top, "", found)
        except RuntimeError:
            raise ToolError("the folder is nested too deep: %s" % self._top.path)
        return found

    def _walk(self, folder, prefix, found):
        names = [name for name in folder.do(os.listdir, ".") if not SCRATCH.match(name)]
        place = self._root + prefix
        for name in names:
            status = os.lstat(place + name)     # By its path, which is quicker: no more than a first look.
            if stat.S_ISDIR(status.st_mode):
                with folder.folder(name) as inner:
                    self._walk(inner, prefix + name + "/", found)
            else:
                found[prefix + name] = self._file_behind(prefix + name, status)
        if prefix and not names:
            found[prefix] = Source(prefix, 0, None)

    def _file_behind(self, name, status):
        """The file to read for an entry; a link has to end at a file of the same tree."""
        path = self._root + name
        if stat.S_ISLNK(status.st_mode):
            real = os.path.realpath(path)
            if not real.startswith(self._root):
                raise ToolError("a link leads out of the folder: %s" % path)
            if not os.path.isfile(real):
                raise ToolError("a link leads to no file: %s" % path)
            return self._source(name, os.path.getsize(real), real[len(self._root):])
        if not stat.S_ISREG(status.st_mode):
            raise ToolError("neither file nor folder: %s" % path)
        return self._source(name, status.st_size, name)

    def _source(self, name, size, place):
        names = place.split("/")

        def do(function, *more):
            try:
                return self._folder(names[:-1]).do(function, names[-1], *more)
            except NoFile:
                raise changed(name)

        return Source(name, size, do)

    def _folder(self, names):
        """The open folder of a file; one stays open for those that follow."""
        if names != self._names:
            there = self._top.below(names)
            self._last.close()
            self._last, self._names = there, names
        return self._last


def add_extra(found, extra, target):
    name = os.path.basename(extra)
    path = os.path.realpath(extra)
    if path == target:
        raise ToolError("the file to add is the archive to write: %s" % extra)
    if not os.path.isfile(path):
        raise ToolError("no such file to add: %s" % extra)
    if any(entry.split("/", 1)[0] == name for entry in found):
        raise ToolError("the folder holds a '%s' of its own" % name)
    found[name] = Source(name, os.path.getsize(path), lambda function, *more: function(path, *more))
