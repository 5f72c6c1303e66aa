# SPDX-License-Identifier: MIT
"""Brings a tree of new files to a folder all at once or not at all."""
import contextlib
import errno
import os

from quenzo_files import check_replaceable, make_alike, open_regular, parents_made, remove_tree, scratch_beside
from quenzo_report import ToolError


@contextlib.contextmanager
def placed(dest):
    """A new folder to fill; its content comes to folder dest when the body succeeds.

    A missing dest is made, an existing one is merged over. After a failure dest is what it was.
    """
    if os.path.lexists(dest) and not os.path.isdir(dest):
        raise ToolError("a file is in the way: %s" % dest)
    with parents_made(dest):
        work = _work_folder(dest)
        try:
            tree = os.path.join(work, "new")
            os.mkdir(tree)
            yield tree
            _place(tree, dest, work)
        finally:
            remove_tree(work)


def _work_folder(dest):
    """A new folder on the file system of dest: beside it, or inside it where beside is another one or closed."""
    parent = os.path.dirname(dest)
    if os.path.isdir(dest):
        apart = os.stat(dest).st_dev != os.stat(parent).st_dev
        if apart or not os.access(parent, os.W_OK | os.X_OK):
            parent = dest
    work = scratch_beside(os.path.join(parent, "any"))
    os.mkdir(work)
    return work


def _place(tree, dest, work):
    if not os.path.lexists(dest):
        os.rename(tree, dest)
        return
    merge = _Merge(os.path.join(work, "old"))
    done = False
    try:
        merge.folder(tree, dest)
        done = True
    finally:
        if not done:
            merge.undo()


class _Merge(object):
    """Moves a tree over another one, and remembers how to take that back."""

    def __init__(self, attic):
        self._attic = attic     # where replaced files wait
        self._steps = []        # (target, its place in the attic or None)
        os.mkdir(attic)

    def folder(self, source, target):
        for name in sorted(os.listdir(source)):
            self._entry(os.path.join(source, name), os.path.join(target, name))

    def undo(self):
        for target, kept in reversed(self._steps):
            try:
                if kept:
                    os.rename(kept, target)
                else:
                    _remove_any(target)
            except OSError:
                continue  # The others still deserve their place back.

    def _entry(self, source, target):
        is_folder = os.path.isdir(source)
        if not os.path.lexists(target):
            os.rename(source, target)
            self._steps.append((target, None))
        elif is_folder and os.path.isdir(target) and not os.path.islink(target):
            self.folder(source, target)
        elif is_folder or (os.path.isdir(target) and not os.path.islink(target)):
            raise ToolError("file and folder meet, or a link is in the way: %s" % target)
        else:
            self._replace(source, target)

    def _replace(self, source, target):
        if not os.path.islink(target):
            check_replaceable(target)
            with open_regular(source) as made:
                make_alike(made.fileno(), os.lstat(target))
        kept = os.path.join(self._attic, str(len(self._steps)))
        try:
            os.link(target, kept)  # So that the target is there at every moment.
        except OSError:
            os.rename(target, kept)
        self._steps.append((target, kept))
        os.rename(source, target)


def _remove_any(path):
    try:
        os.unlink(path)
    except OSError as error:
        if error.errno not in (errno.EISDIR, errno.EPERM):
            raise
        remove_tree(path)
