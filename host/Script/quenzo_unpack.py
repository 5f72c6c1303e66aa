# SPDX-License-Identifier: MIT
"""Unpacks a checked archive."""
import os

from quenzo_files import open_new
from quenzo_place import placed
from quenzo_progress import begin_progress


def unpack(archive, dest):
    """Unpacks an open Archive into folder dest, which is made when missing and merged over when not."""
    begin_progress(sum(entry.size for entry in archive.entries))
    with placed(dest) as tree:
        for entry in archive.entries:
            _extract(archive, entry, tree)


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
