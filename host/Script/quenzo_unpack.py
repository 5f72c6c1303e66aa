# SPDX-License-Identifier: MIT
"""Unpacks a checked archive."""
import os

from quenzo_files import open_new
from quenzo_folder import walk
from quenzo_place import placed
from quenzo_progress import begin_progress
from quenzo_report import ToolError


def unpack(archive, dest):
    """Unpacks an open Archive into folder dest, which is made when missing and merged over when not."""
    begin_progress(sum(entry.size for entry in archive.entries))
    with placed(dest) as tree:
        for entry in archive.entries:
            _extract(archive, entry, tree)


def check_unpacking(archive, dest):
    """Reads the archive through, and raises where file and folder would meet on the way."""
    walk(dest)[0].close()
    for entry in archive.entries:
        archive.verify(entry)
        parts = entry.name.rstrip("/").split("/")
        folders = len(parts) - (0 if entry.is_folder else 1)
        for count in range(1, len(parts) + 1):
            path = os.path.join(dest, *parts[:count])
            is_folder = os.path.isdir(path) and not os.path.islink(path)
            if os.path.lexists(path) and is_folder != (count <= folders):
                raise ToolError("file and folder meet, or a link is in the way: %s" % path)


def _extract(archive, entry, tree):
    path = os.path.join(tree, entry.name.rstrip("/"))
    _make_folders(path if entry.is_folder else os.path.dirname(path))
    if entry.is_folder:
        archive.verify(entry)
        return
    with open_new(path) as out:
        for block in archive.blocks(entry):
            out.write(block)


def _make_folders(path):
    if not os.path.isdir(path):
        os.makedirs(path)
