# SPDX-License-Identifier: MIT
"""Prepares the embedded interpreter for the packaging scripts; the library imports this once at its start.

Encoding: the library makes UTF-8 the default encoding before each call, and reloads sys for that, which puts
the original output streams back. Wrapping them here would therefore not last, and is not needed: into a pipe
or file text goes out in the default encoding, on a terminal in that of the locale. What is left to do is to
let the Python programs that a script starts write UTF-8 as well.
"""
import os
import sys

MODULES = "modules"  # beside this file: a host's own modules that every script may import


def prepare():
    """May run any number of times, with or without PYTHON_QUENZO_ENV."""
    if not hasattr(sys, "argv"):
        sys.argv = [""]  # An embedded interpreter has none, and scripts look at it.
    os.environ.setdefault("PYTHONIOENCODING", "utf-8")
    folder = os.environ.get("PYTHON_QUENZO_ENV") or os.path.dirname(os.path.abspath(__file__))
    _append(os.path.join(os.path.abspath(folder), MODULES))


def _append(folder):
    # As bytes: one text entry with other than ASCII letters breaks every import under the POSIX locale.
    present = [entry.encode("utf-8") if isinstance(entry, unicode) else entry for entry in sys.path]
    if os.path.isdir(folder) and folder not in present:
        sys.path.append(folder)


prepare()
