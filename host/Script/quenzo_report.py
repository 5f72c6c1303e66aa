# SPDX-License-Identifier: MIT
"""Failures of the packaging scripts, and the one line that names them on the error stream."""
import sys


class ToolError(Exception):
    """A failure with a sentence for the user."""


class NoFile(ToolError):
    """A path that is empty, impossible, or leads to something else than a file."""


class DamagedArchive(ToolError):
    """The archive is not whole: cut off, altered, or no archive at all."""


class Answer(ToolError):
    """A failure that has its number already."""

    def __init__(self, number, text):
        ToolError.__init__(self, text)
        self.number = number


def sentence(error):
    """The text of an exception on one line, as bytes."""
    try:
        text = str(error)
    except UnicodeError:
        text = repr(error)
    text = text or error.__class__.__name__
    return text.replace("\r", "\\r").replace("\n", "\\n")


def report(function, error):
    """Names the cause of a failure whose caller gets a number only; never fails itself."""
    try:
        sys.stderr.write("%s: %s\n" % (function, sentence(error)))
    except (AttributeError, EnvironmentError, ValueError):
        pass  # A host without an error stream.
