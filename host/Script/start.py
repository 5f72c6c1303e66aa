# SPDX-License-Identifier: MIT
"""The channels' developer records: what a store's registration form asks for.

docs/scripts.md describes the record file, the two files written and the answers.
"""
import os

from quenzo_files import argument_text, open_new
from quenzo_place import placed
from quenzo_records import RecordError, as_json, as_sheet, find_record, read_records
from quenzo_report import ToolError, report

EXPORTED = 0
NO_CHANNEL = 1          # no record has that id
NO_RECORDS = 2          # the record file is missing or cannot be read
BAD_RECORDS = 3         # the record file is damaged, or the record
NOT_WRITTEN = 4         # the folder cannot be made or written
BAD_ARGUMENT = 5        # the id is no whole number, or dest no path

RECORD_FILE = "develop_info.json"
RECORD_VARIABLE = "QUENZO_DEVELOP_INFO"
_FOLDER = os.path.dirname(os.path.abspath(__file__))


def export_develop_info(idChannel, dest):
    """Writes the channel's record into folder dest; answers 0, or another number above and nothing written."""
    try:
        channel = _channel_id(idChannel)
        folder = argument_text(dest, "the folder to export into")
    except (ToolError, ValueError) as error:
        return _failed(BAD_ARGUMENT, error)
    try:
        source = _record_file()
        record = find_record(source, read_records(source), channel)
    except RecordError as error:
        return _failed(BAD_RECORDS, error)
    except (EnvironmentError, ToolError) as error:
        return _failed(NO_RECORDS, error)
    if record is None:
        return _failed(NO_CHANNEL, ToolError("no record for channel %d in %s" % (channel, source), "not-found"))
    try:
        _write(record, channel, folder)
    except Exception as error:  # The host reads a number, whatever happened.
        return _failed(NOT_WRITTEN, error)
    return EXPORTED


def _write(record, channel, folder):
    with placed(folder) as tree:
        for suffix, content in (("json", as_json(record)), ("txt", as_sheet(record))):
            with open_new(os.path.join(tree, "channel_%d.%s" % (channel, suffix))) as out:
                out.write(content)


def _channel_id(value):
    if isinstance(value, bool) or not isinstance(value, (int, long, basestring)):
        raise ToolError("the channel is no whole number")
    return int(value)


def _record_file():
    return os.path.realpath(os.environ.get(RECORD_VARIABLE) or os.path.join(_FOLDER, RECORD_FILE))


def _failed(answer, cause):
    report("export_develop_info", cause)
    return answer
