# SPDX-License-Identifier: MIT
"""The secret that assets are encrypted with: one file for its owner alone.

It is the file that the caller names, else the one that QUENZO_KEY names, else the person's own, which is made at
the first use. A key beside the scripts, where it was kept once, serves as long as the person has no other.
"""
import binascii
import contextlib
import errno
import os
import re
import stat

from quenzo_files import argument_path, flush_folder, open_new, open_regular, remove, scratch_beside
from quenzo_report import NoFile, ToolError

VARIABLE = "QUENZO_KEY"
BESIDE_SCRIPTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "encrypt.key")
SECRET_BYTES = 32
_TEXT = re.compile(r"^[0-9a-f]{%d}\n?\Z" % (2 * SECRET_BYTES))


class KeyFailure(ToolError):
    """The key file cannot be made, read or trusted."""

    kind = "bad-input"


def secret(named, make, tell):
    """The secret's bytes; make says whether a missing key of the person's own is made, tell(text) is told of it."""
    with _failures():
        path = key_file(named, tell)
        own = not named and not os.environ.get(VARIABLE)
        if own and not os.path.lexists(path):
            if not make:
                raise KeyFailure("there is no key: %s" % path, "no-key")
            if _make(path):
                tell("made the key %s; keep a copy, without it nothing can be decrypted" % path)
        return _read(path)


def key_file(named, tell):
    """The path of the key in force, whether it is there or not."""
    named = named or os.environ.get(VARIABLE)
    if named:
        return _named_file(named)
    own = own_file()
    if not os.path.lexists(own) and os.path.lexists(BESIDE_SCRIPTS) and _belongs(os.lstat(BESIDE_SCRIPTS)):
        tell("the key is still beside the scripts; move it from %s to %s" % (BESIDE_SCRIPTS, own))
        return BESIDE_SCRIPTS
    return own


def make_key(named, tell):
    """Makes a key where the one in force would be, and gives its path; one that is there stays."""
    with _failures():
        path = key_file(named, tell)
        if os.path.lexists(path) or not _make(path):
            raise KeyFailure("there is a key already, which packages may need: %s" % path, "refused")
        return path


@contextlib.contextmanager
def _failures():
    try:
        yield
    except EnvironmentError as error:
        kind = "not-found" if error.errno == errno.ENOENT else "failed"
        raise KeyFailure("the key file: %s: %s" % (error.strerror, error.filename), kind)


def _named_file(value):
    try:
        return argument_path(value, "the key file")
    except NoFile as error:
        raise KeyFailure(str(error))


def own_file():
    """Where the person's own key is, by the rules for programs' data."""
    base = os.environ.get("XDG_DATA_HOME", "")
    if not os.path.isabs(base):
        base = os.path.expanduser("~/.local/share")
    if not os.path.isabs(base):
        raise KeyFailure("the key has no place: neither XDG_DATA_HOME nor HOME names a folder")
    return os.path.join(base, "quenzo", "encrypt.key")


def _make(path):
    """A whole file appears under the name or none: linking fails, and the answer is no, where another run was first."""
    _make_folder(os.path.dirname(path))
    scratch = scratch_beside(path)
    try:
        with open_new(scratch, 0o600) as out:
            os.fchmod(out.fileno(), 0o600)
            out.write(binascii.hexlify(os.urandom(SECRET_BYTES)) + "\n")
            out.flush()
            os.fsync(out.fileno())
        os.link(scratch, path)
    except OSError as error:
        if error.errno != errno.EEXIST:
            raise
        return False
    finally:
        remove(scratch)
    flush_folder(os.path.dirname(path))
    return True


def _make_folder(path):
    try:
        os.makedirs(path, 0o700)
    except OSError as error:
        if error.errno != errno.EEXIST or not os.path.isdir(path):
            raise


def _read(path):
    try:
        source = open_regular(path)
    except ToolError as error:
        raise KeyFailure(str(error))
    with source:
        _check_rights(path, os.fstat(source.fileno()))
        text = source.read(4096)
    if not _TEXT.match(text):
        raise KeyFailure("the key file is damaged: %s" % path)
    return binascii.unhexlify(text.strip())


def _check_rights(path, status):
    """Refused rather than mended: a key that others could read may be known to them already."""
    if stat.S_IMODE(status.st_mode) & 0o077:
        raise KeyFailure("others have access to the key file; make it yours alone (chmod 600): %s" % path)
    if not _belongs(status):
        raise KeyFailure("the key file belongs to somebody else: %s" % path)


def _belongs(status):
    return os.geteuid() in (0, status.st_uid)
