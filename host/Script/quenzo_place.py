# SPDX-License-Identifier: MIT
"""Brings a tree of new files to a folder all at once or not at all."""
import contextlib
import os
import stat

from quenzo_files import check_replaceable, make_alike, open_regular, remove_tree, scratch_name
from quenzo_folder import Parents, walk
from quenzo_report import ToolError


@contextlib.contextmanager
def placed(dest):
    """The path of a new folder to fill; its content comes to folder dest when the body succeeds.

    A missing dest is made, an existing one is merged over. After a failure dest is what it was. Links on the way
    are followed once, at the beginning; what others do to the folders afterwards leads nothing elsewhere.
    """
    here, missing = walk(dest)
    with here:
        if not missing:
            with _neighbour(here) as beside, Work(beside) as work:
                with _named_errors(work.tree, here.path):
                    yield work.tree
                _merge(work, here)
            return
        with Parents(here, missing[:-1]) as parents, Work(parents.last) as work:
            with _named_errors(work.tree, parents.last.shown(missing[-1])):
                yield work.tree
            parents.last.do(lambda place: os.rename(work.tree, place), missing[-1])
            parents.keep()


def _neighbour(folder):
    """Where work can be prepared: beside the folder, or inside it where beside is another file system or closed."""
    parent = folder.folder("..")
    apart = os.stat(folder.at(".")).st_dev != os.stat(parent.at(".")).st_dev
    if not apart and os.access(parent.at("."), os.W_OK | os.X_OK):
        return parent
    parent.close()
    return folder.folder(".")


@contextlib.contextmanager
def _named_errors(place, path):
    """Lets errors about files below place name them below path."""
    try:
        yield
    except EnvironmentError as error:
        if isinstance(error.filename, str) and error.filename.startswith(place):
            error.filename = path + error.filename[len(place):]
        raise


class Work(object):
    """A folder closed to others, gone after the body: new files wait below tree, replaced ones below "old"."""

    def __init__(self, parent):
        self._parent = parent
        self._name = scratch_name()
        parent.do(os.mkdir, self._name, 0o700)
        try:
            self._folder = parent.folder(self._name)
        except Exception:
            _tried(os.rmdir, parent.at(self._name))
            raise
        self.tree = self._folder.at("new")
        try:
            self._check_own()
            for name in ("new", "old"):
                self._folder.do(os.mkdir, name)
        except Exception:
            self.__exit__()
            raise

    def _check_own(self):
        own = self._folder.at(".")
        if os.stat(own).st_uid != os.geteuid() or os.listdir(own):
            raise ToolError("somebody exchanged a folder just made: %s" % self._folder.path)

    def old(self, number):
        return self._folder.at("old/%d" % number)

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        for name in ("new", "old"):
            remove_tree(self._folder.at(name))
        self._folder.close()
        _tried(os.rmdir, self._parent.at(self._name))


def _merge(work, target):
    merge = _Merge(work, target)
    done = False
    try:
        merge.folder(work.tree, target, ())
        done = True
    finally:
        if not done:
            merge.undo()


class _Merge(object):
    """Moves a tree over another one, and remembers how to take that back."""

    def __init__(self, work, target):
        self._work = work
        self._target = target
        self._steps = []        # (names from the target on, the entry's place, that of what it replaced, identity)

    def folder(self, source, target, names):
        for name in sorted(os.listdir(source)):
            self._entry(os.path.join(source, name), target, names + (name,))

    def undo(self):
        for step in reversed(self._steps):
            _tried(self._undo_step, *step)  # The others still deserve their place back.

    def _entry(self, source, target, names):
        name = names[-1]
        there = target.status(name)
        is_folder = os.path.isdir(source)
        if there is None:
            moved = _identity(source)
            target.do(lambda place: os.rename(source, place), name)
            self._steps.append((names, source, None, moved))
        elif is_folder and stat.S_ISDIR(there.st_mode):
            with target.folder(name) as inner:
                self.folder(source, inner, names)
        elif is_folder or stat.S_ISDIR(there.st_mode):
            raise ToolError("file and folder meet, or a link is in the way: %s" % target.shown(name))
        else:
            self._replace(source, target, names)

    def _replace(self, source, target, names):
        """What is replaced is looked at once it is out of everybody's reach."""
        name, kept = names[-1], self._work.old(len(self._steps))
        try:
            os.link(target.at(name), kept)  # So that the target is there at every moment.
        except OSError:
            _check(target.at(name), target.shown(name))
            os.rename(target.at(name), kept)
        self._steps.append((names, source, kept, None))
        if _check(kept, target.shown(name)):
            with open_regular(source) as made:
                make_alike(made.fileno(), os.lstat(kept))
        target.do(lambda place: os.rename(source, place), name)

    def _undo_step(self, names, source, kept, moved):
        with self._target.below(names[:-1]) as folder:
            place = folder.at(names[-1])
            if kept:
                os.rename(kept, place)
                return
            os.rename(place, source)
            if _identity(source) != moved:  # Somebody else's by now.
                os.rename(source, place)


def _check(place, path):
    """Whether a regular file is there; raises when it must not be replaced."""
    if os.path.islink(place):
        return False
    check_replaceable(place, path)
    return True


def _identity(place):
    status = os.lstat(place)
    return status.st_dev, status.st_ino


def _tried(work, *arguments):
    try:
        work(*arguments)
    except OSError:
        pass
