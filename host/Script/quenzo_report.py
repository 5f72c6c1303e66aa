# SPDX-License-Identifier: MIT
"""Failures of the packaging scripts, and the one line that names them on the error stream."""
import sys
import unicodedata

_MOVING = frozenset(("Cc", "Cf", "Cs", "Zl", "Zp"))  # controls, marks of direction, half letters, line breaks
_LONGEST = 5000


class ToolError(Exception):
    """A failure with a sentence for the user; names from archives may be in it as they are."""

    def __init__(self, text):
        Exception.__init__(self, printable(text))


class NoFile(ToolError):
    """A path that is empty, impossible, or leads to something else than a file."""


class DamagedArchive(ToolError):
    """The archive is not whole: cut off, altered, or no archive at all."""


class Answer(ToolError):
    """A failure that has its number already."""

    def __init__(self, number, text):
        ToolError.__init__(self, text)
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
    tell(function, sentence(error))


def tell(function, text):
    """A line for the person on the error stream; never fails."""
    try:
        sys.stderr.write("%s: %s\n" % (function, printable(text)))
    except (AttributeError, EnvironmentError, ValueError):
        pass  # A host without an error stream.
