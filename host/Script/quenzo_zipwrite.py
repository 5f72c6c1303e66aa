# SPDX-License-Identifier: MIT
"""Writes archives whose bytes follow from their content alone, aligned so that Android can map stored entries."""
import re
import struct
import zlib

from quenzo_limits import check_content, check_directory, check_entries, check_ratio
from quenzo_names import is_utf8
from quenzo_report import ToolError
from quenzo_zipread import DEFLATED, FLAG_UTF8, STORED, UNIX

EPOCH = (0, 1 << 5 | 1)         # 1980-01-01 00:00, the format's first moment
FILE_ATTRIBUTES = 0o100644 << 16
FOLDER_ATTRIBUTES = 0o040755 << 16 | 0x10

ALIGNMENT = 4
LIBRARY_ALIGNMENT = 16384       # serves devices with pages of 4 KiB and of 16 KiB
COMPRESSION_LEVEL = 6           # 9 makes packages less than a hundredth smaller, in twice the time

LIMIT_32 = 0xffffffff
LIMIT_16 = 0xffff
ZIP64_SIZE = 0xf0000000         # sizes from here on are written in the long form; deflating may add a little
_PADDING_ID = 0xd935            # the extra field that Android's own tools align with
_SIGNATURE = re.compile(r"^META-INF/(MANIFEST\.MF|[^/]+\.(SF|RSA|DSA|EC))\Z", re.IGNORECASE)
_SIGNING_BLOCK = "APK Sig Block 42"
SIGNATURE_GONE = "the signature is gone: sign it again"
_LOCAL = struct.Struct("<4s5HLLL2H")
_CENTRAL = struct.Struct("<4s6HLLL5HLL")


def deflater():
    return zlib.compressobj(COMPRESSION_LEVEL, zlib.DEFLATED, -zlib.MAX_WBITS)


def deflated(contents):
    """The packed forms of whole contents: one call each, without the frame that it puts around."""
    return [packed[2:-4] for packed in map(zlib.compress, contents, [COMPRESSION_LEVEL] * len(contents))]


def changed(name):
    """The failure of a content that has another size than it had."""
    return ToolError("'%s' changed while it was packed" % name)


class Record(object):
    """What the headers say about one entry."""

    def __init__(self, name, method, size, time_date=EPOCH, system=UNIX, attributes=FILE_ATTRIBUTES, marks=None):
        self.name = name
        self.marks = _marks(name) if marks is None else marks
        self.method = method
        self.size = size
        self.packed = size
        self.crc = 0
        self.time_date = time_date
        self.system = system
        self.attributes = attributes
        self.offset = 0
        self.padding = 0
        self.long_form = size >= ZIP64_SIZE


def record_like(entry, method, size):
    """A record with the name, time, system, rights and marks of an archive's entry."""
    return Record(entry.raw_name, method, size, (entry.time, entry.date), entry.system, entry.attributes,
                  entry.flags & FLAG_UTF8)


def is_signature(name):
    """Whether an entry is part of a signature, which holds no longer once anything else has changed."""
    return _SIGNATURE.match(name) is not None


def is_signed(archive):
    """Whether there is anything to verify: the files of the old form, or the block of the newer ones."""
    if any(is_signature(entry.name) and not entry.name.endswith("/MANIFEST.MF") for entry in archive.entries):
        return True
    return archive.before_directory(len(_SIGNING_BLOCK)) == _SIGNING_BLOCK


class ZipWriter(object):
    """Writes entries one after the other into a new binary file; finish() completes the archive."""

    def __init__(self, out):
        self._out = out
        self._records = []

    def add_folder(self, name):
        """An entry for a folder; name ends with a slash."""
        self.add(Record(name, STORED, 0, attributes=FOLDER_ATTRIBUTES), ())

    def add(self, record, blocks):
        """An entry from its content; record.size has to be what the blocks come to."""
        self._begin(record)
        start = self._out.tell()
        size = crc = 0
        stream = deflater() if record.method == DEFLATED else None
        for block in blocks:
            size += len(block)
            crc = zlib.crc32(block, crc)
            self._out.write(stream.compress(block) if stream else block)
        if stream:
            self._out.write(stream.flush())
        if size != record.size:
            raise changed(record.name)
        record.crc = crc & 0xffffffff
        record.packed = self._out.tell() - start
        self._out.seek(record.offset)
        self._out.write(_local_header(record))
        self._out.seek(0, 2)

    def add_packed(self, record, blocks, packed, crc):
        """An entry from bytes that are packed already."""
        record.packed, record.crc = packed, crc
        record.long_form = max(record.size, packed) >= ZIP64_SIZE
        self._begin(record)
        for block in blocks:
            self._out.write(block)

    def finish(self):
        """Writes the directory, unless the archive became one that could not be unpacked again."""
        start = self._out.tell()
        check_entries(len(self._records))
        for record in self._records:
            self._out.write(_central_header(record))
        end = self._out.tell()
        check_directory(end - start)
        self._out.write(_end_records(len(self._records), start, end))
        total = sum(record.size for record in self._records)
        check_content(total)
        check_ratio(total, self._out.tell())
        self._out.flush()

    def _begin(self, record):
        record.offset = self._out.tell()
        record.padding = _padding(record, record.offset + len(_local_header(record, padded=False)))
        self._records.append(record)
        self._out.write(_local_header(record))


def _alignment(record):
    return LIBRARY_ALIGNMENT if record.name.endswith(".so") else ALIGNMENT


def _padding(record, position):
    """The length of the extra field that brings data at position to where it belongs."""
    if record.method != STORED:  # Empty entries and folders count, too: whoever checks looks at all that is stored.
        return 0
    alignment = _alignment(record)
    length = -position % alignment
    while 0 < length < 6:  # The field's own head: id, length, alignment.
        length += alignment
    return length


def _padding_field(record):
    if not record.padding:
        return ""
    head = struct.pack("<HHH", _PADDING_ID, record.padding - 4, _alignment(record))
    return head.ljust(record.padding, "\0")


def _marks(name):
    """What the header says about the name: bytes that are no UTF-8 go unmarked, and are kept."""
    plain = all(ord(letter) < 128 for letter in name)
    return FLAG_UTF8 if not plain and is_utf8(name) else 0


def _local_header(record, padded=True):
    extra = _padding_field(record) if padded else ""
    size, packed = record.size, record.packed
    if record.long_form:
        extra = struct.pack("<HHQQ", 1, 16, size, packed) + extra
        size = packed = LIMIT_32
    time, date = record.time_date
    return _LOCAL.pack("PK\3\4", 45 if record.long_form else 20, record.marks, record.method, time, date,
                       record.crc, packed, size, len(record.name), len(extra)) + record.name + extra


def _central_header(record):
    size, packed, offset = record.size, record.packed, record.offset
    long_values = []
    if record.long_form:
        long_values += [size, packed]
        size = packed = LIMIT_32
    if offset >= LIMIT_32:
        long_values.append(offset)
        offset = LIMIT_32
    extra = struct.pack("<HH%dQ" % len(long_values), 1, 8 * len(long_values), *long_values) if long_values else ""
    version = 45 if long_values else 20
    time, date = record.time_date
    return _CENTRAL.pack("PK\1\2", record.system << 8 | version, version, record.marks, record.method, time, date,
                         record.crc, packed, size, len(record.name), len(extra), 0, 0, 0, record.attributes,
                         offset) + record.name + extra


def _end_records(count, start, end):
    size = end - start
    long_form = ""
    if count >= LIMIT_16 or start >= LIMIT_32 or size >= LIMIT_32:
        long_form = struct.pack("<4sQ2H2L4Q", "PK\6\6", 44, UNIX << 8 | 45, 45, 0, 0, count, count, size, start)
        long_form += struct.pack("<4sLQL", "PK\6\7", 0, end, 1)
        count, start, size = min(count, LIMIT_16), min(start, LIMIT_32), min(size, LIMIT_32)
    return long_form + struct.pack("<4s4H2LH", "PK\5\6", 0, 0, count, count, size, start, 0)
