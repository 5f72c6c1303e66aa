# SPDX-License-Identifier: MIT
"""The config.xml of an SDK package.

    <sdk id="7" name="Harbour Pay" version="2.3.1">
      <files>
        <file>libs/harbourpay.jar</file>
      </files>
    </sdk>
"""
import re
from xml.parsers import expat

from quenzo_names import check_name
from quenzo_report import ToolError

CONFIG_NAME = "config.xml"
MAX_CONFIG_BYTES = 1 << 20
MAX_ID = 2147483647
_DIGITS = re.compile(r"^[0-9]{1,10}\Z")


class ConfigError(ToolError):
    """config.xml cannot be read, or lacks what it has to say."""


class SdkConfig(object):
    """What config.xml says: id (int), name and version (text), files (UTF-8 bytes)."""

    def __init__(self, text):
        reader = _Reader()
        reader.parse(text)
        self.id = _number(reader.sdk.get(u"id"))
        self.name = _filled(reader.sdk, u"name")
        self.version = _filled(reader.sdk, u"version")
        self.files = [name.strip().encode("utf-8") for name in reader.files]
        if not self.files:
            raise ConfigError("config.xml names no file")
        for name in self.files:
            _check_file(name)


class _Reader(object):
    """Collects the attributes of <sdk> and the texts of <sdk><files><file>; other elements are left alone."""

    def __init__(self):
        self.sdk = None
        self.files = []
        self._path = []

    def parse(self, text):
        parser = expat.ParserCreate()
        parser.buffer_text = True
        parser.StartElementHandler = self._start
        parser.EndElementHandler = self._end
        parser.CharacterDataHandler = self._text
        parser.StartDoctypeDeclHandler = _refuse_doctype
        try:
            parser.Parse(text, True)
        except (expat.ExpatError, ValueError, LookupError) as error:
            raise ConfigError("config.xml cannot be parsed: %s" % error)
        if self.sdk is None:
            raise ConfigError("config.xml has no <sdk> at its top")

    def _start(self, tag, attributes):
        self._path.append(tag)
        if self._path == [u"sdk"]:
            self.sdk = attributes
        elif self._path == [u"sdk", u"files", u"file"]:
            self.files.append(u"")

    def _end(self, unused):
        self._path.pop()

    def _text(self, text):
        if self._path == [u"sdk", u"files", u"file"]:
            self.files[-1] += text


def _refuse_doctype(*unused):
    """Entities are declared there, and entities are how a small text becomes a huge one."""
    raise ConfigError("config.xml must not declare a document type")


def _number(text):
    if text is None or not _DIGITS.match(text) or int(text) > MAX_ID:
        raise ConfigError("config.xml: the id of <sdk> is no number from 0 to %d" % MAX_ID)
    return int(text)


def _filled(attributes, key):
    value = attributes.get(key, u"").strip()
    if not value:
        raise ConfigError("config.xml: <sdk> has no %s" % str(key))
    return value


def _check_file(name):
    try:
        check_name(name)
    except ToolError as error:
        raise ConfigError("config.xml: %s" % error)
    if name.endswith("/"):
        raise ConfigError("config.xml: '%s' is a folder" % name)
