# SPDX-License-Identifier: MIT
"""Packs a folder after the model of a base archive: what is equal there is taken over as it was packed.

docs/scripts.md says what becomes of each entry.
"""
import contextlib
import os

from quenzo_files import argument_path
from quenzo_pack import Item, new_item, pack_planned
from quenzo_report import ToolError, printable, tell
from quenzo_zipread import STORED, Archive, checked
from quenzo_zipwrite import SIGNATURE_GONE, is_signature, is_signed, record_like


def pack_like(src, dest, apkfile, base):
    """Packs folder src in the order of the base, without the base's entries that the folder lacks."""
    _pack(src, dest, apkfile, base, lambda entry, root: entry.is_folder and os.path.isdir(os.path.join(root, entry.name)))


def pack_onto(src, dest, apkfile, base):
    """Packs what folder src holds over the entries of the base, which stay where the folder has nothing else."""
    _pack(src, dest, apkfile, base, lambda entry, root: True)


def _pack(src, dest, apkfile, base, stays):
    with _Base(argument_path(base, "the base")) as opened:
        pack_planned(src, dest, apkfile, lambda root, found: _plan(opened.entries, root, found, stays), opened)
        if opened.is_signed:
            tell("zip", SIGNATURE_GONE)


def _plan(entries, root, found, stays):
    """The base's entries in their order, then what is new by name; stays(entry, root) decides without a source."""
    items, left = [], dict((name, source) for name, source in found.iteritems() if not is_signature(name))
    for entry in entries:
        if is_signature(entry.name):
            continue
        source = left.pop(entry.name, None)
        if source is None or entry.is_folder:
            if source or stays(entry, root):
                items.append(Item(entry.name, record_like(entry, entry.method, entry.size), None, entry))
            continue
        method = entry.method if source.size or not entry.size else STORED
        items.append(Item(entry.name, record_like(entry, method, source.size), source, entry))
    return items + [new_item(left[name]) for name in sorted(left)]


class _Base(object):
    """The archive that entries are taken from; its failures name it."""

    def __init__(self, path):
        self._path = path
        with self._named():
            self._archive = Archive(path)
            self.is_signed = is_signed(self._archive)
        self.entries = self._archive.entries

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        self._archive.__exit__()

    def packed_blocks(self, entry):
        with self._named():
            for block in self._archive.packed_blocks(entry):
                yield block

    def blocks(self, entry):
        """The content of an entry; raises when it is damaged."""
        with self._named():
            for block in checked(entry, self._archive.packed_blocks(entry)):
                yield block

    def content(self, entry, packed):
        """The same at once, of packed blocks that were read before."""
        with self._named():
            return "".join(checked(entry, packed))

    def verified_blocks(self, entry):
        """The packed bytes of an entry; raises behind the last one when they are damaged."""
        passed = []

        def noted():
            for block in self._archive.packed_blocks(entry):
                passed.append(block)
                yield block

        with self._named():
            for unused in checked(entry, noted()):
                while passed:
                    yield passed.pop(0)
        while passed:
            yield passed.pop(0)

    @contextlib.contextmanager
    def _named(self):
        try:
            yield
        except ToolError as error:
            raise error.__class__("the base %s: %s" % (printable(self._path), error))
