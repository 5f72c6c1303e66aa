# SPDX-License-Identifier: MIT
"""How far the work at hand is, for a host that asks.

Such a host names an open file by its descriptor in QUENZO_PROGRESS, and reads two numbers at its beginning: the units
done and those there are, in the machine's byte order. It has one task at work at a time. Nobody else sees anything.
A third number behind them, once it is not 0, asks the work to end: it fails then, and leaves what was there before.
"""
import os
import struct

from quenzo_report import ToolError

VARIABLE = "QUENZO_PROGRESS"
_NUMBERS = struct.Struct("=QQ")
_STOP_BYTES = 8
_STEP = 1 << 18         # units between two messages

_state = {"descriptor": None, "done": 0, "total": 0, "told": 0}


def begin_progress(total):
    """The work has so many units, none of them done."""
    text = os.environ.get(VARIABLE, "")
    _state.update(descriptor=int(text) if text.isdigit() else None, done=0, total=total, told=0)
    _tell()


def add_progress(units):
    """So many more are done."""
    if _state["descriptor"] is None:
        return
    _state["done"] = min(_state["done"] + units, _state["total"])
    news = _state["done"] - _state["told"]
    if news >= _STEP or news and _state["done"] == _state["total"]:
        _tell()
        _check_stop()


def end_progress():
    """All is done, where the total was reckoned roughly."""
    _state["done"] = _state["total"]
    _tell()


def _tell():
    if _state["descriptor"] is None:
        return
    _state["told"] = _state["done"]
    try:
        os.lseek(_state["descriptor"], 0, os.SEEK_SET)
        os.write(_state["descriptor"], _NUMBERS.pack(_state["done"], _state["total"]))
    except OSError:
        _state["descriptor"] = None  # Whoever asked is gone; the work goes on.


def _check_stop():
    try:
        stop = os.read(_state["descriptor"], _STOP_BYTES)  # From where the numbers end.
    except (OSError, TypeError):
        return
    if stop.strip("\0"):
        raise ToolError("the work was stopped")
