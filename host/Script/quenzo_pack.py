# SPDX-License-Identifier: MIT
"""Packs a folder so that equal content gives equal bytes."""
import binascii
import collections
import contextlib
import itertools
import os
import stat

from quenzo_ahead import in_order
from quenzo_files import SCRATCH, argument_path, argument_text, blocks, open_regular, read_small, replaced
from quenzo_folder import parents_made
from quenzo_limits import check_content, check_entries
from quenzo_names import check_names
from quenzo_report import ToolError
from quenzo_zipread import DEFLATED, STORED
from quenzo_zipwrite import FOLDER_ATTRIBUTES, Record, ZipWriter, changed, deflated

# What Android maps or streams straight out of the package, and what deflating cannot make smaller.
STORED_NAMES = frozenset(("resources.arsc",))
STORED_SUFFIXES = frozenset((
    ".so",
    ".png", ".jpg", ".jpeg", ".gif", ".webp", ".heic",
    ".mp2", ".mp3", ".ogg", ".oga", ".opus", ".aac", ".m4a", ".wma", ".wav", ".mid", ".midi", ".imy", ".rtttl",
    ".smf", ".xmf", ".amr", ".awb", ".jet",
    ".mp4", ".m4v", ".3gp", ".3gpp", ".3g2", ".3gpp2", ".mpg", ".mpeg", ".webm", ".mkv", ".wmv",
    ".zip", ".jar", ".apk", ".obb", ".gz", ".xz", ".7z"))

BATCH_BYTES = 1 << 18           # files are read and deflated together up to this; a larger one goes block by block
ENTRY_BYTES = 1 << 10           # what an entry costs besides its content

Source = collections.namedtuple("Source", "name path size")


def pack(src, dest, apkfile):
    """Packs folder src, and file apkfile beside its content unless that is empty, into archive dest."""
    root = argument_path(src, "the folder to pack")
    target = argument_path(dest, "the archive to write")
    extra = argument_text(apkfile, "the file to add") if apkfile or not isinstance(apkfile, basestring) else None
    if not os.path.isdir(root):
        raise ToolError("no such folder: %s" % root)
    if _lies_in(target, root):
        raise ToolError("the archive would lie in the folder to pack: %s" % target)
    with parents_made(argument_text(dest, "the archive to write")) as (folder, file_name):
        found = _contents(root)
        if extra is not None:
            _add_extra(found, extra, target)
        _check(found)
        with replaced(folder, file_name) as (out, _):
            _write(out, found)


def method_for(name, size):
    """Stored or deflated, decided by the name: a tree does not tell how its files were packed once."""
    base = os.path.basename(name).lower()
    if not size or base in STORED_NAMES or os.path.splitext(base)[1] in STORED_SUFFIXES:
        return STORED
    return DEFLATED


def _lies_in(path, root):
    """Whether path is root or below it, by whatever names."""
    while path != "/":
        if os.path.isdir(path) and os.path.samefile(path, root):
            return True
        path = os.path.dirname(path)
    return os.path.samefile("/", root)


def _check(found):
    """Refuses at once what could not be unpacked again."""
    check_entries(len(found))
    check_names(found)
    check_content(sum(source.size for source in found.itervalues()))


def _contents(root):
    """Entry name to Source, for every file and every empty folder below root."""
    found = {}

    def walk(folder, prefix):
        names = [name for name in os.listdir(folder) if not SCRATCH.match(name)]
        for name in names:
            path = os.path.join(folder, name)
            status = os.lstat(path)
            if stat.S_ISDIR(status.st_mode):
                walk(path, prefix + name + "/")
            else:
                found[prefix + name] = _file_behind(prefix + name, path, status, root)
        if prefix and not names:
            found[prefix] = Source(prefix, folder, 0)

    try:
        walk(root, "")
    except RuntimeError:
        raise ToolError("the folder is nested too deep: %s" % root)
    return found


def _file_behind(name, path, status, root):
    """The file to read for an entry; a link has to end at a file of the same tree."""
    if stat.S_ISLNK(status.st_mode):
        real = os.path.realpath(path)
        if not real.startswith(root.rstrip("/") + "/"):
            raise ToolError("a link leads out of the folder: %s" % path)
        if not os.path.isfile(real):
            raise ToolError("a link leads to no file: %s" % path)
        return Source(name, real, os.path.getsize(real))
    if not stat.S_ISREG(status.st_mode):
        raise ToolError("neither file nor folder: %s" % path)
    return Source(name, path, status.st_size)


def _add_extra(found, extra, target):
    name = os.path.basename(extra)
    path = os.path.realpath(extra)
    if path == target:
        raise ToolError("the file to add is the archive to write: %s" % extra)
    if not os.path.isfile(path):
        raise ToolError("no such file to add: %s" % extra)
    if any(entry.split("/", 1)[0] == name for entry in found):
        raise ToolError("the folder holds a '%s' of its own" % name)
    found[name] = Source(name, path, os.path.getsize(path))


def _write(out, found):
    writer = ZipWriter(out)
    batches = _batches(found[name] for name in sorted(found))
    with contextlib.closing(in_order(_packed, batches)) as done:
        for batch, packed in done:
            for (source, record, data), content in itertools.izip(batch, packed):
                if data is None:
                    _add_large(writer, source, record)
                else:
                    writer.add_packed(record, [content], len(content), record.crc)
    writer.finish()


def _batches(sources):
    """Lists of (source, record, content), content being None for a large file.

    Files are read here, on one thread: each step that hands the interpreter lock over costs as much as a short text.
    """
    batch, size = [], 0
    for source in sources:
        record, data = _record(source), None
        if source.size <= BATCH_BYTES:
            data = "" if source.name.endswith("/") else read_small(source.path, source.size + 1)
            if len(data) != source.size:
                raise changed(source.name)
            record.crc = binascii.crc32(data) & 0xffffffff
        batch.append((source, record, data))
        size += len(data or "") + ENTRY_BYTES
        if size > BATCH_BYTES or data is None:
            yield batch
            batch, size = [], 0
    if batch:
        yield batch


def _packed(batch):
    """What each content of a batch is in the archive."""
    deflating = iter(deflated([data for _, record, data in batch if data and record.method == DEFLATED]))
    return [next(deflating) if data and record.method == DEFLATED else data for _, record, data in batch]


def _record(source):
    if source.name.endswith("/"):
        return Record(source.name, STORED, 0, attributes=FOLDER_ATTRIBUTES)
    return Record(source.name, method_for(source.name, source.size), source.size)


def _add_large(writer, source, record):
    with open_regular(source.path) as opened:
        writer.add(record, blocks(opened))
