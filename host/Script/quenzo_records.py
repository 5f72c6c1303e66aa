# SPDX-License-Identifier: MIT
"""Reads the developer records, and renders one as JSON or as a sheet for people."""
import collections
import json
import re

from quenzo_report import ToolError

_HALF_LETTER = re.compile(u"[\ud800-\udfff]")  # no UTF-8 for these
_LINE_BREAKER = re.compile(u"[\x00-\x1f\x7f-\x9f\u2028\u2029\\\\]")
_WANTED_TEXTS = (u"name", u"developer", u"package")


class RecordError(ToolError):
    """The record file is damaged."""


def read_records(path):
    """The records of a file {"channels": [{"id": 1, ...}]}, every one of them checked."""
    with open(path, "rb") as source:
        text = source.read()
    try:
        content = json.loads(text.decode("utf-8-sig"), object_pairs_hook=_object, parse_constant=_no_number)
    except (ValueError, RuntimeError) as error:
        raise RecordError("%s: %s" % (path, error))
    records = content.get(u"channels") if isinstance(content, dict) else None
    if not isinstance(records, list):
        raise RecordError('%s: no list "channels"' % path)
    seen = set()
    for record in records:
        _check_record(path, record)
        if record[u"id"] in seen:
            raise RecordError("%s: channel %d is there twice" % (path, record[u"id"]))
        seen.add(record[u"id"])
    return records


def find_record(records, channel):
    """The record of a channel, or None."""
    return next((record for record in records if record[u"id"] == channel), None)


def as_json(record):
    """UTF-8 JSON, keys in the record's own order."""
    text = json.dumps(record, ensure_ascii=False, indent=2, separators=(u",", u": "))
    return text.encode("utf-8") + "\n"


def as_sheet(record):
    """UTF-8 text, one "key: value" a line, values in one column."""
    shown = [(_one_line(key) + u":", _shown(value)) for key, value in record.iteritems() if key != u"name"]
    width = max(len(key) for key, _ in shown)
    lines = [_one_line(record[u"name"]), u""]
    lines += [(key.ljust(width) + u" " + value).rstrip() for key, value in shown]
    return u"\n".join(lines).encode("utf-8") + "\n"


def _object(pairs):
    keys = [key for key, _ in pairs]
    if len(keys) != len(set(keys)):
        raise ValueError("a key is there twice")
    return collections.OrderedDict(pairs)


def _no_number(text):
    raise ValueError("%s is no number" % text)


def _check_record(path, record):
    number = record.get(u"id") if isinstance(record, dict) else None
    if not isinstance(number, (int, long)) or isinstance(number, bool):
        raise RecordError("%s: a channel has no whole number as its id" % path)
    for key in _WANTED_TEXTS:
        if not isinstance(record.get(key), unicode) or not record[key].strip():
            raise RecordError("%s: channel %d has no %s" % (path, number, str(key)))
    for key, value in record.iteritems():
        values = value if isinstance(value, list) else [value]
        if not all(isinstance(one, (unicode, int, long)) for one in values):
            raise RecordError("%s: channel %d: %r is neither text, number nor a list of these" % (path, number, key))
        if any(_HALF_LETTER.search(unicode(one)) for one in values + [key]):
            raise RecordError("%s: channel %d: %r holds half a letter" % (path, number, key))


def _shown(value):
    if isinstance(value, bool):
        return u"yes" if value else u"no"
    if isinstance(value, list):
        return u", ".join(_shown(one) for one in value)
    return _one_line(value)


def _one_line(value):
    return _LINE_BREAKER.sub(lambda found: found.group().encode("unicode_escape").decode("ascii"), unicode(value))
