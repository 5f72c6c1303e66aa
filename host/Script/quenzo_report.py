# SPDX-License-Identifier: MIT
"""Failures of the packaging scripts, and the one line that names them: for a host that asks, or on the error stream.

Such a host names an open file by its descriptor in QUENZO_MESSAGES, and reads one JSON object a line from it.
"""
import contextlib
import json
import os
import sys
import unicodedata

_MOVING = frozenset(("Cc", "Cf", "Cs", "Zl", "Zp"))  # controls, marks of direction, half letters, line breaks
_LONGEST = 5000
VARIABLE = "QUENZO_MESSAGES"


class ToolError(Exception):
    """A failure with a sentence for the user; names from archives may be in it as they are."""

    kind = "failed"  # docs/scripts.md lists the others

    def __init__(self, text, kind=None):
        Exception.__init__(self, printable(text))
        self.kind = kind or self.kind


class NoFile(ToolError):
    """A path that is empty, impossible, or leads to something else than a file."""

    kind = "bad-input"


class DamagedArchive(ToolError):
    """The archive is not whole: cut off, altered, or no archive at all."""

    kind = "bad-input"


class RefusedArchive(ToolError):
    """The archive is hostile, too large, or of a kind that is not known here."""

    kind = "bad-input"


class Answer(ToolError):
    """A failure that has its number already."""

    kind = "bad-input"

    def __init__(self, number, text, kind=None):
        ToolError.__init__(self, text, kind)
        self.number = number


def printable(text):
    """UTF-8 on one line; whatever could steer a terminal shows as an escape, and so do bytes that are no UTF-8."""
    text = text if len(text) <= _LONGEST else text[:_LONGEST] + "..."
    return u"".join(_shown(letter) for letter in _decoded(text)).encode("utf-8")


def sentence(error):
    """The text of an exception, printable."""
    if isinstance(error, EnvironmentError) and error.strerror and isinstance(error.filename, str):
        return printable("%s: %s" % (error.strerror, error.filename))
    try:
        text = str(error)
    except UnicodeError:
        text = repr(error)
    return printable(text or error.__class__.__name__)


def _decoded(text):
    if isinstance(text, unicode):
        return text
    decoded = u""
    while True:
        try:
            return decoded + text.decode("utf-8")
        except UnicodeDecodeError as error:
            decoded += text[:error.start].decode("utf-8")
            decoded += u"".join(u"\\x%02x" % ord(letter) for letter in text[error.start:error.end])
            text = text[error.end:]


def _shown(letter):
    if unicodedata.category(letter) in _MOVING:
        return letter.encode("unicode_escape").decode("ascii")
    return letter


def report(function, error):
    """Names the cause of a failure whose caller gets a number only; never fails itself."""
    if not hand_over(error):
        _print(function, sentence(error))


def tell(function, text):
    """A word of warning for the person; never fails."""
    if not _hand({"warning": printable(text)}):
        _print(function, printable(text))


def hand_over(error):
    """Names a failure to a host that asks, if there is one; never fails itself."""
    return _hand({"failure": sentence(error), "kind": getattr(error, "kind", "failed")})


@contextlib.contextmanager
def handing_over():
    """Around what raises its failures: those that are sentences for the person are handed over as well."""
    try:
        yield
    except (EnvironmentError, ToolError) as error:
        hand_over(error)
        raise


def _hand(message):
    text = os.environ.get(VARIABLE, "")
    try:
        return text.isdigit() and os.write(int(text), json.dumps(message) + "\n") > 0
    except (EnvironmentError, ValueError, OverflowError):
        return False  # Whoever asked is gone.


def _print(function, text):
    try:
        sys.stderr.write("%s: %s\n" % (function, text))
    except (AttributeError, EnvironmentError, ValueError):
        pass  # A host without an error stream.
