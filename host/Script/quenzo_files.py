# SPDX-License-Identifier: MIT
"""Paths as bytes, files opened with care, and files that take the place of others.

Paths stay byte strings all the way: the interpreter's file system encoding is ASCII in some locales, and a
text path would then fail on its first letter outside it.
"""
import binascii
import contextlib
import errno
import fcntl
import os
import re
import shutil
import stat

from quenzo_report import NoFile, ToolError

BLOCK = 1 << 18
SCRATCH = re.compile(r"^\.quenzo-[0-9a-f]{16}\.tmp$")


def argument_path(value, what):
    """An argument as the library hands it over (UTF-8 bytes, or int for a name of digits), links resolved."""
    return os.path.realpath(argument_text(value, what))


def argument_text(value, what):
    """An argument as UTF-8 bytes; refuses what cannot be a path."""
    if isinstance(value, unicode):
        value = value.encode("utf-8")
    elif isinstance(value, (int, long)) and not isinstance(value, bool):
        value = str(value)
    if not isinstance(value, str):
        raise NoFile("%s must be a text, not %s" % (what, type(value).__name__))
    if not value or "\0" in value:
        raise NoFile("%s is %s" % (what, "no path" if value else "empty"))
    return value


def scratch_name():
    """A hidden name, used by nobody."""
    return ".quenzo-%s.tmp" % binascii.hexlify(os.urandom(8))


def scratch_beside(path):
    """Such a name in the folder of path."""
    return os.path.join(os.path.dirname(path), scratch_name())


def open_file(path, flags, mode=0o666):
    """A binary file object that children do not inherit; mode is cut by the process's umask."""
    descriptor = os.open(path, flags, mode)
    try:
        fcntl.fcntl(descriptor, fcntl.F_SETFD, fcntl.FD_CLOEXEC)
        return os.fdopen(descriptor, "rb" if flags & 3 == os.O_RDONLY else "w+b", BLOCK)
    except Exception:
        os.close(descriptor)
        raise


def open_new(path, mode=0o666):
    """A file that did not exist before, for writing and reading back."""
    return open_file(path, os.O_CREAT | os.O_EXCL | os.O_RDWR, mode)


def open_regular(path):
    """A regular file for reading; no link is followed, and a FIFO or device never blocks."""
    if not stat.S_ISREG(os.lstat(path).st_mode):  # Merely opening a device may do something.
        raise NoFile("not a regular file: %s" % path)
    source = open_file(path, os.O_RDONLY | os.O_NOFOLLOW | os.O_NONBLOCK)
    if not stat.S_ISREG(os.fstat(source.fileno()).st_mode):
        source.close()
        raise NoFile("not a regular file: %s" % path)
    return source


def read_small(path, most):
    """Up to that many bytes of a regular file, without the cost of a file object."""
    descriptor = os.open(path, os.O_RDONLY | os.O_NOFOLLOW | os.O_NONBLOCK)
    try:
        if not stat.S_ISREG(os.fstat(descriptor).st_mode):
            raise NoFile("not a regular file: %s" % path)
        return os.read(descriptor, most)
    finally:
        os.close(descriptor)


def blocks(source):
    """The rest of a file, block by block."""
    return iter(lambda: source.read(BLOCK), "")


def check_replaceable(place, path):
    """Raises unless a file that the caller may write is at place; the rename that replaces it would not mind."""
    kind = os.lstat(place).st_mode
    if stat.S_ISDIR(kind):
        raise ToolError("a folder is in the way: %s" % path)
    if not stat.S_ISREG(kind):
        raise ToolError("a link, pipe, socket or device is in the way: %s" % path)
    if not os.access(place, os.W_OK):
        raise IOError(errno.EACCES, "the file is write-protected", path)


def remove(path):
    """Removes a file that may be gone already."""
    try:
        os.unlink(path)
    except OSError:
        pass


def remove_tree(path):
    """Removes a folder of our own as far as that goes."""
    shutil.rmtree(path, ignore_errors=True)


def flush_folder(path):
    """Brings a rename to disk; file systems that cannot flush a folder are left at that."""
    try:
        descriptor = os.open(path, os.O_RDONLY)
    except OSError:
        return
    try:
        os.fsync(descriptor)
    except OSError:
        pass
    finally:
        os.close(descriptor)


@contextlib.contextmanager
def replaced(folder, name):
    """A new file, given with its place so far, that becomes name in an open folder when the body succeeds.

    Otherwise nothing of it stays. Owner and rights are those of the file that is replaced.
    """
    before = folder.status(name)
    if before:
        check_replaceable(folder.at(name), folder.shown(name))
    scratch = folder.at(scratch_name())
    made = folder.do(lambda unused: open_new(scratch, 0o600 if before else 0o666), name)
    try:
        with made:
            yield made, scratch
            made.flush()
            if before:
                make_alike(made.fileno(), before)
            os.fsync(made.fileno())
        folder.do(lambda place: os.rename(scratch, place), name)
    finally:
        remove(scratch)
    flush_folder(folder.at("."))


def make_alike(descriptor, status):
    """Gives an open file the owner and rights of another, but never the owner's powers to whoever runs it."""
    try:
        os.fchown(descriptor, status.st_uid, status.st_gid)
    except OSError:
        pass  # Only root gives files away.
    os.fchmod(descriptor, status.st_mode & 0o777)
