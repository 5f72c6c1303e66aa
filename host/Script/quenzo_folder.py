# SPDX-License-Identifier: MIT
"""Folders held open, so that a name below one means the same place until the end.

Whoever owns a folder on the way to a file may put a link in its place at any moment. So each step is taken from
an open folder, by way of /proc, and never through a link that appeared meanwhile.
"""
import contextlib
import errno
import fcntl
import os
import stat

from quenzo_report import ToolError

_O_PATH = 0o10000000    # enough to go on from, also where the folder cannot be read
_MAX_LINKS = 40


class Folder(object):
    """An open folder; a context manager. Messages name it by path."""

    def __init__(self, place, path):
        self.path = path
        try:
            self._handle = os.open(place, _O_PATH | os.O_DIRECTORY | os.O_NOFOLLOW)
        except OSError as error:
            error.filename = path
            raise
        fcntl.fcntl(self._handle, fcntl.F_SETFD, fcntl.FD_CLOEXEC)

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        self.close()

    def close(self):
        handle, self._handle = self._handle, None
        if handle is not None:
            try:
                os.close(handle)
            except OSError:
                pass  # It is closed all the same, and holds nothing that could be lost.

    def at(self, name):
        """A path to name in this folder, wherever the folder is by now."""
        return "/proc/self/fd/%d/%s" % (self._handle, name)

    def shown(self, name):
        """The path of name for messages."""
        return os.path.normpath(os.path.join(self.path, name))

    def do(self, function, name, *more):
        """Calls function with the path to name."""
        try:
            return function(self.at(name), *more)
        except EnvironmentError as error:
            error.filename = self.shown(name)
            raise

    def folder(self, name):
        """Opens a folder in this one; a link is refused."""
        return Folder(self.at(name), self.shown(name))

    def below(self, names):
        """Opens the folder that names lead to, one after the other."""
        here = self.folder(".")
        for name in names:
            with here:
                here = here.folder(name)
        return here

    def status(self, name):
        """What os.lstat says, or None where nothing has that name."""
        try:
            return self.do(os.lstat, name)
        except OSError as error:
            if error.errno != errno.ENOENT:
                raise
        return None


class Parents(object):
    """Missing folders, made one in the other, that go again unless keep() is called."""

    def __init__(self, top, names):
        self._folders = [top]
        self._names = []
        try:
            for name in names:
                self.last.do(os.mkdir, name)
                self._names.append(name)
                self._folders.append(self.last.folder(name))
        except Exception:
            self.__exit__()
            raise

    @property
    def last(self):
        return self._folders[-1]

    def keep(self):
        self._names = []

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        for folder, name in reversed(zip(self._folders, self._names)):
            _removed(folder.at(name))
        for folder in self._folders[1:]:
            folder.close()


def walk(path, to_file=False):
    """The deepest folder on the way to path that exists, open, and the names that are missing below it.

    With to_file whatever else than a folder has the last name counts as missing.
    """
    left = list(reversed(os.path.join(os.getcwd(), path).split("/")))
    here, missing, links = Folder("/", "/"), [], 0
    try:
        while left:
            name = left.pop()
            if name in ("", "."):
                continue
            if missing:
                missing = missing[:-1] if name == ".." else missing + [name]
                continue
            status = here.status(name)
            if status is None:
                missing = [name]
            elif stat.S_ISLNK(status.st_mode):
                links += 1
                target = _followed(here, name, status, links)
                left += reversed(target.split("/"))
                if target.startswith("/"):
                    here = _instead(here, Folder("/", "/"))
            elif stat.S_ISDIR(status.st_mode):
                here = _instead(here, here.folder(name))
            elif to_file and not left:
                missing = [name]
            else:
                raise ToolError("a file is in the way: %s" % here.shown(name))
    except Exception:
        here.close()
        raise
    return here, missing


def _instead(old, new):
    old.close()
    return new


def _followed(folder, name, status, links):
    """Where a link leads. Root goes only where root says: others could change theirs at any moment."""
    if links > _MAX_LINKS:
        raise OSError(errno.ELOOP, os.strerror(errno.ELOOP), folder.shown(name))
    if os.geteuid() == 0:
        around = os.stat(folder.at("."))
        open_to_others = around.st_mode & 0o022 and not around.st_mode & stat.S_ISVTX
        if status.st_uid or around.st_uid or open_to_others:
            raise ToolError("a link that others can change is on the way: %s" % folder.shown(name))
    return folder.do(os.readlink, name)


@contextlib.contextmanager
def parents_made(path):
    """The folder of file path, open, and the file's name; missing folders are made, and go again when the body fails."""
    here, missing = walk(path, to_file=True)
    with here:
        if not missing:
            raise ToolError("a folder is in the way: %s" % here.path)
        with Parents(here, missing[:-1]) as parents:
            yield parents.last, missing[-1]
            parents.keep()


def _removed(place):
    try:
        os.rmdir(place)
    except OSError:
        pass
