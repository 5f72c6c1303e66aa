# SPDX-License-Identifier: MIT
"""The secret that assets are encrypted with: one file beside the scripts, for its owner alone."""
import binascii
import errno
import os
import re
import stat

from quenzo_files import flush_folder, open_new, open_regular, remove, scratch_beside
from quenzo_report import ToolError

KEY_FILE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "encrypt.key")
SECRET_BYTES = 32
_TEXT = re.compile(r"^[0-9a-f]{%d}\n?\Z" % (2 * SECRET_BYTES))


class KeyFailure(ToolError):
    """The key file cannot be made, read or trusted."""


def secret(path, make):
    """The secret's bytes; make says whether a missing file is made."""
    try:
        if make and not os.path.lexists(path):
            _make(path)
        return _read(path)
    except EnvironmentError as error:
        raise KeyFailure("the key file: %s" % error)


def _make(path):
    """A whole file appears under the name or none: linking fails where another run was first."""
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
    finally:
        remove(scratch)
    flush_folder(os.path.dirname(path))


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
    if os.geteuid() not in (0, status.st_uid):
        raise KeyFailure("the key file belongs to somebody else: %s" % path)
