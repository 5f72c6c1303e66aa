# SPDX-License-Identifier: MIT
"""Any function of a person's own script, called for its answer."""
import json
import os
import sys
import traceback

from quenzo_report import ToolError, sentence


def answer(script, function, *arguments):
    """JSON: what the function returned as "value" and, for people, as "shown"; or why there is none, as "error"."""
    try:
        value = _call(script, function, arguments)
    except _NoFunction as error:
        return json.dumps({"error": sentence(error)})
    except (Exception, SystemExit) as error:  # The host reads a text, whatever happened.
        return json.dumps({"error": "%s: %s (%s)" % (type(error).__name__, sentence(error), _place())})
    try:
        text = isinstance(value, basestring)
        shown = value if text else json.dumps(value, ensure_ascii=False, sort_keys=True, allow_nan=False)
        return json.dumps({"value": _portable(value), "shown": shown}, allow_nan=False)
    except (TypeError, ValueError) as error:
        return json.dumps({"error": "what %s returned is no text, number, list or map: %s" % (function, sentence(error))})


class _NoFunction(ToolError):
    """The script was imported, and lacks what is to be called."""


def _call(script, function, arguments):
    folder = os.path.dirname(os.path.abspath(script))
    sys.path.append(folder)
    try:
        module = __import__(os.path.splitext(os.path.basename(script))[0])
        if not hasattr(module, function):
            raise _NoFunction("%s has no function %s" % (os.path.basename(script), function))
        return getattr(module, function)(*arguments)
    finally:
        if folder in sys.path:
            sys.path.remove(folder)


def _portable(value):
    """The value with whole numbers beyond 2^53, of which readers of JSON lose digits, as texts."""
    if isinstance(value, (int, long)) and abs(value) > 2 ** 53:
        return str(value)
    if isinstance(value, dict):
        return dict((key, _portable(one)) for key, one in value.items())
    if isinstance(value, (list, tuple)):
        return [_portable(one) for one in value]
    return value


def _place():
    """The file and line where the exception at hand was raised."""
    path, line = traceback.extract_tb(sys.exc_info()[2])[-1][:2]
    return "%s:%d" % (path, line)
