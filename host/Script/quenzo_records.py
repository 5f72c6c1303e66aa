# SPDX-License-Identifier: MIT
"""Reads the developer records, and renders one as JSON or as a sheet for people."""
import collections
import json
import re

from quenzo_files import open_regular
from quenzo_report import ToolError

MAX_NESTING = 50
_HALF_LETTER = re.compile(u"[\ud800-\udfff]")  # no UTF-8 for these
_LINE_BREAKER = re.compile(u"[\x00-\x1f\x7f-\x9f\u2028\u2029\\\\]")
_WANTED_TEXTS = (u"name", u"developer", u"package")


class RecordError(ToolError):
    """The record file is damaged, or the record that was asked for."""

    kind = "bad-input"


class Fraction(unicode):
    """A number with a point or an exponent, as it was written: no digit is lost on the way."""


class Odd(object):
    """Stands for what JSON does not allow; it spoils the record that holds it, and no other."""

    def __init__(self, reason):
        self.reason = reason


def read_records(path):
    """The list of records in a file {"channels": [{"id": 1, ...}]}, unchecked."""
    with open_regular(path) as source:
        text = source.read()
    try:
        content = json.loads(text.decode("utf-8-sig"), object_pairs_hook=_object, parse_float=Fraction,
                             parse_constant=lambda name: Odd("%s is no number" % name))
    except (ValueError, RuntimeError) as error:
        raise RecordError("%s: %s" % (path, error))
    if isinstance(content, dict) and isinstance(content.get(u"twice"), Odd):
        raise RecordError("%s: %s" % (path, content[u"twice"].reason))
    records = content.get(u"channels") if isinstance(content, dict) else None
    if not isinstance(records, list):
        raise RecordError('%s: no list "channels"' % path)
    return records


def find_record(path, records, channel):
    """The record of a channel, or None; only a record of that id is looked at closely."""
    found = [record for record in records if _id_of(record) == channel]
    if len(found) > 1:
        raise RecordError("%s: channel %d is there twice" % (path, channel))
    if not found:
        return None
    problem = _problem(found[0])
    if problem:
        raise RecordError("%s: channel %d: %s" % (path, channel, problem))
    return found[0]


def as_json(record):
    """UTF-8 JSON, keys in the record's own order."""
    return _json(record, u"\n").encode("utf-8") + "\n"


def as_sheet(record):
    """UTF-8 text, one "key: value" a line, values in one column."""
    shown = [(_one_line(key) + u":", _shown(value)) for key, value in record.iteritems() if key != u"name"]
    width = max(len(key) for key, _ in shown)
    lines = [_one_line(record[u"name"]), u""]
    lines += [(key.ljust(width) + u" " + value).rstrip() for key, value in shown]
    return u"\n".join(lines).encode("utf-8") + "\n"


def _object(pairs):
    made = collections.OrderedDict(pairs)
    if len(made) != len(pairs):
        made[u"twice"] = Odd("a key is there twice")
    return made


def _id_of(record):
    number = record.get(u"id") if isinstance(record, dict) else None
    return number if isinstance(number, (int, long)) and not isinstance(number, bool) else None


def _problem(record):
    """What is wrong with a record, or nothing."""
    for key in _WANTED_TEXTS:
        value = record.get(key)
        if not isinstance(value, unicode) or isinstance(value, Fraction) or not value.strip():
            return "it has no %s" % str(key)
    return _problem_in(record, 0)


def _problem_in(value, depth):
    if depth > MAX_NESTING:
        return "it is nested more than %d levels deep" % MAX_NESTING
    if isinstance(value, Odd):
        return value.reason
    if isinstance(value, unicode):
        return "it holds half a letter" if _HALF_LETTER.search(value) else None
    parts = value if isinstance(value, list) else value.keys() + value.values() if isinstance(value, dict) else ()
    return next((problem for problem in (_problem_in(part, depth + 1) for part in parts) if problem), None)


def _json(value, line):
    if isinstance(value, Fraction):
        return unicode(value)
    if isinstance(value, dict):
        parts = [u"%s: %s" % (_json(key, line), _json(one, line + u"  ")) for key, one in value.iteritems()]
        return _json_block(u"{}", parts, line)
    if isinstance(value, list):
        return _json_block(u"[]", [_json(one, line + u"  ") for one in value], line)
    return unicode(json.dumps(value, ensure_ascii=False))


def _json_block(brackets, parts, line):
    inner = (u"," + line + u"  ").join(parts)
    return brackets[0] + line + u"  " + inner + line + brackets[1] if parts else brackets


def _shown(value, nested=False):
    if value is None:
        return u"none"
    if isinstance(value, bool):
        return u"yes" if value else u"no"
    if isinstance(value, list):
        return (u"[%s]" if nested else u"%s") % u", ".join(_shown(one, True) for one in value)
    if isinstance(value, dict):
        parts = [u"%s: %s" % (_one_line(key), _shown(one, True)) for key, one in value.iteritems()]
        return (u"{%s}" if nested else u"%s") % u", ".join(parts)
    return _one_line(value)


def _one_line(value):
    return _LINE_BREAKER.sub(lambda found: found.group().encode("unicode_escape").decode("ascii"), unicode(value))
