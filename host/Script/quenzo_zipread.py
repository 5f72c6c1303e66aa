# SPDX-License-Identifier: MIT
"""Reads archives that nobody vouches for.

The standard library parses the directory; everything it would let pass is looked at here: limits before the
first byte is inflated, what really comes out while inflating, ranges that overlap, local headers that tell
another story than the directory.
"""
import errno
import stat
import struct
import zipfile
import zlib

from quenzo_files import BLOCK, open_regular
from quenzo_limits import check_content, check_directory, check_entries, check_ratio
from quenzo_names import check_names, is_utf8
from quenzo_progress import add_progress
from quenzo_report import DamagedArchive, RefusedArchive

STORED, DEFLATED = zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED
FLAG_ENCRYPTED = 0x1 | 0x40 | 0x2000
FLAG_UTF8 = 0x800
DOS, UNIX = 0, 3
_LOCAL = struct.Struct("<4s5HLLL2H")


class Entry(object):
    """One entry: name as the bytes of a path, sizes as declared, and where its packed bytes lie."""

    def __init__(self, info):
        self.raw_name = info.orig_filename
        self.name = _path_name(info)
        self.flags = info.flag_bits
        self.method = info.compress_type
        self.crc = info.CRC
        self.packed = info.compress_size
        self.size = info.file_size
        self.header = info.header_offset
        self.data = None
        year, month, day, hour, minute, second = info.date_time
        self.time = hour << 11 | minute << 5 | second // 2
        self.date = (year - 1980) << 9 | month << 5 | day
        self.system = info.create_system
        self.attributes = info.external_attr

    @property
    def is_folder(self):
        return self.name.endswith("/")


class Archive(object):
    """An archive whose entries have been checked; a context manager. Its directory begins at the place directory."""

    def __init__(self, path):
        self._file = open_regular(path)
        try:
            infos, self.directory = self._directory()
            self.entries = [Entry(info) for info in infos]
            self._check_limits()
            check_names(entry.name for entry in self.entries)
            for entry in self.entries:
                _check_kind(entry)
                self._locate(entry)
            self._check_ranges(self.directory)
        except Exception:
            self._file.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        self._file.close()

    def find(self, name):
        """The entry of that name, or None."""
        return next((entry for entry in self.entries if entry.name == name), None)

    def packed_blocks(self, entry):
        """The bytes of an entry as they lie in the archive."""
        position, left = entry.data, entry.packed
        while left:
            self._file.seek(position)
            block = self._file.read(min(left, BLOCK))
            if not block:
                raise DamagedArchive("the archive is cut off in '%s'" % entry.name)
            position += len(block)
            left -= len(block)
            yield block

    def blocks(self, entry):
        """The content of an entry; raises as soon as it is more than declared, or not what was packed."""
        for block in checked(entry, self.packed_blocks(entry)):
            add_progress(len(block))
            yield block

    def verify(self, entry):
        """Reads an entry through."""
        for unused in self.blocks(entry):
            pass

    def before_directory(self, count):
        """The last bytes before the directory."""
        self._file.seek(max(0, self.directory - count))
        return self._file.read(count)

    def _directory(self):
        """The directory's entries and the place where it begins."""
        try:
            # Python 2.7 is final: this private parser will not change any more.
            end = zipfile._EndRecData(self._file)
            if not end:
                raise DamagedArchive("this is not a zip archive")
            self._check_counts(end)
            directory = zipfile.ZipFile(self._file)
        except (zipfile.BadZipfile, struct.error, LookupError, ValueError, OverflowError, RuntimeError) as error:
            raise DamagedArchive("the archive's directory is damaged: %s" % error)
        except IOError as error:
            if error.filename is None and error.errno in (None, errno.EINVAL):  # A seek to a place that cannot be.
                raise DamagedArchive("the archive's directory is damaged")
            raise
        infos = directory.infolist()
        if len(infos) != end[zipfile._ECD_ENTRIES_TOTAL]:
            raise DamagedArchive("the archive's directory is not complete")
        return infos, directory.start_dir

    def _check_counts(self, end):
        """Before the directory is parsed: each of its entries costs half a kilobyte of memory."""
        count, size = end[zipfile._ECD_ENTRIES_TOTAL], end[zipfile._ECD_SIZE]
        position = end[zipfile._ECD_LOCATION] - size
        if end[zipfile._ECD_SIGNATURE] == zipfile.stringEndArchive64:
            position -= zipfile.sizeEndCentDir64 + zipfile.sizeEndCentDir64Locator
        if position < 0:
            raise DamagedArchive("the archive's directory is not complete")
        check_entries(count)
        check_directory(size)
        end_position = position + size
        for unused in range(count):
            self._file.seek(position)
            head = zipfile.structCentralDir, self._file.read(zipfile.sizeCentralDir)
            position += zipfile.sizeCentralDir + sum(struct.unpack(*head)[zipfile._CD_FILENAME_LENGTH:][:3])
        if position != end_position:
            raise DamagedArchive("the archive's directory does not hold the entries it counts")

    def _check_limits(self):
        total = sum(entry.size for entry in self.entries)
        check_content(total)
        self._file.seek(0, 2)
        check_ratio(total, self._file.tell())

    def _locate(self, entry):
        """Finds the packed bytes behind the local header, which has to agree with the directory."""
        if entry.header < 0:
            raise DamagedArchive("'%s' lies before the archive" % entry.name)
        self._file.seek(entry.header)
        head = self._file.read(_LOCAL.size)
        if len(head) != _LOCAL.size:
            raise DamagedArchive("the archive is cut off before '%s'" % entry.name)
        magic, _, flags, method, _, _, _, _, _, name_length, extra_length = _LOCAL.unpack(head)
        if magic != zipfile.stringFileHeader or self._file.read(name_length) != entry.raw_name:
            raise DamagedArchive("no local header for '%s'" % entry.name)
        if method != entry.method or (flags ^ entry.flags) & FLAG_ENCRYPTED:
            raise DamagedArchive("two headers disagree about '%s'" % entry.name)
        entry.data = entry.header + _LOCAL.size + name_length + extra_length

    def _check_ranges(self, end):
        """Entries that share bytes are how a small archive becomes a huge tree."""
        reached = 0
        for entry in sorted(self.entries, key=lambda one: one.header):
            if entry.header < reached:
                raise RefusedArchive("'%s' shares bytes with another entry" % entry.name)
            reached = entry.data + entry.packed
        if reached > end:
            raise DamagedArchive("the archive is cut off")


def checked(entry, packed):
    """The content that an entry's packed blocks give; raises like Archive.blocks."""
    size = crc = 0
    for block in _inflated(packed, entry.name) if entry.method == DEFLATED else packed:
        size += len(block)
        if size > entry.size:
            raise RefusedArchive("'%s' unpacks to more than it declares" % entry.name)
        crc = zlib.crc32(block, crc)
        yield block
    if size != entry.size or crc & 0xffffffff != entry.crc:
        raise DamagedArchive("'%s' is damaged (size or checksum)" % entry.name)


def _check_kind(entry):
    kind = stat.S_IFMT(entry.attributes >> 16)
    if entry.flags & FLAG_ENCRYPTED:
        raise RefusedArchive("'%s' is encrypted" % entry.name)
    if entry.method not in (STORED, DEFLATED):
        raise RefusedArchive("'%s' is packed with the unknown method %d" % (entry.name, entry.method))
    if kind not in (0, stat.S_IFREG, stat.S_IFDIR):
        raise RefusedArchive("'%s' is a link or a device" % entry.name)
    if entry.method == STORED and entry.packed != entry.size:
        raise DamagedArchive("'%s' is stored in another size than its own" % entry.name)
    if entry.is_folder and entry.size:
        raise RefusedArchive("the folder '%s' has content" % entry.name)


def _path_name(info):
    """Names are UTF-8, marked or not; else those of a DOS program are in its code page, others the bytes they are."""
    name = info.orig_filename
    if is_utf8(name):
        return name
    if info.flag_bits & FLAG_UTF8:
        raise RefusedArchive("entry name is marked as UTF-8 and is not: '%s'" % name)
    return name.decode("cp437").encode("utf-8") if info.create_system == DOS else name


def _inflated(packed, name):
    """Inflates block by block; the stream has to end exactly where the packed bytes end."""
    inflater = zlib.decompressobj(-zlib.MAX_WBITS)
    try:
        for block in packed:
            while block:
                yield inflater.decompress(block, BLOCK)
                block = inflater.unconsumed_tail
                if inflater.unused_data:
                    raise DamagedArchive("'%s' has bytes behind its end" % name)
        # One more byte is left over by a stream that has ended, and eaten by one that has not.
        rest = inflater.decompress("\0")
        if inflater.unused_data != "\0":
            raise DamagedArchive("'%s' is cut off" % name)
    except zlib.error as error:
        raise DamagedArchive("'%s' is damaged: %s" % (name, error))
    yield rest
