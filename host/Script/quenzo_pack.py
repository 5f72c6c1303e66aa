# SPDX-License-Identifier: MIT
"""Packs a folder so that equal content gives equal bytes."""
import binascii
import collections
import contextlib
import itertools
import os

from quenzo_ahead import in_order
from quenzo_files import argument_path, argument_text, blocks, open_regular, read_small, replaced
from quenzo_folder import parents_made
from quenzo_gather import Tree, add_extra, lies_in
from quenzo_limits import check_content, check_entries
from quenzo_names import check_names
from quenzo_progress import add_progress, begin_progress
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

# An entry to write: from a Source, or from an Entry of a base, or from the one of both that turns out right.
Item = collections.namedtuple("Item", "name record source entry")

_Job = collections.namedtuple("_Job", "item data packed")


def pack(src, dest, apkfile):
    """Packs folder src, and file apkfile beside its content unless that is empty, into archive dest."""
    pack_planned(src, dest, apkfile, lambda root, found: [new_item(found[name]) for name in sorted(found)])


def pack_planned(src, dest, apkfile, plan, base=None):
    """The same with the Items that plan(root, found) makes of what the folder holds; base has their entries."""
    root = argument_path(src, "the folder to pack")
    target = argument_path(dest, "the archive to write")
    extra = argument_text(apkfile, "the file to add") if apkfile or not isinstance(apkfile, basestring) else None
    if not os.path.isdir(root):
        raise ToolError("no such folder: %s" % root)
    if lies_in(target, root):
        raise ToolError("the archive would lie in the folder to pack: %s" % target)
    with parents_made(argument_text(dest, "the archive to write")) as (folder, file_name), Tree(root) as tree:
        found = tree.contents()
        if extra is not None:
            add_extra(found, extra, target)
        items = plan(root, found)
        _check(items)
        begin_progress(sum(item.record.size for item in items))
        with replaced(folder, file_name) as (out, _):
            _write(out, items, base)


def new_item(source):
    """An entry of its own."""
    if source.name.endswith("/"):
        return Item(source.name, Record(source.name, STORED, 0, attributes=FOLDER_ATTRIBUTES), source, None)
    return Item(source.name, Record(source.name, method_for(source.name, source.size), source.size), source, None)


def method_for(name, size):
    """Stored or deflated, decided by the name: a tree does not tell how its files were packed once."""
    base = os.path.basename(name).lower()
    if not size or base in STORED_NAMES or os.path.splitext(base)[1] in STORED_SUFFIXES:
        return STORED
    return DEFLATED


def _check(items):
    """Refuses at once what could not be unpacked again."""
    check_entries(len(items))
    check_names([item.name for item in items])
    check_content(sum(item.record.size for item in items))


def _write(out, items, base):
    writer = ZipWriter(out)
    with contextlib.closing(in_order(lambda batch: _packed(batch, base), _batches(items, base))) as done:
        for batch, packed in done:
            for job, content in itertools.izip(batch, packed):
                record = job.item.record
                if content is None:
                    _add_large(writer, job.item, base)
                else:
                    writer.add_packed(record, [content], len(content), record.crc)
                    add_progress(record.size)
    writer.finish()


def _batches(items, base):
    """Lists of jobs: files, and entries of the base, are read here, on one thread.

    Each step that hands the interpreter lock over costs as much as a short text.
    """
    batch, size = [], 0
    for item in items:
        job = _Job(item, None, None) if _is_large(item) else _read(item, base)
        batch.append(job)
        size += len(job.data or "") + len(job.packed or "") + ENTRY_BYTES
        if size > BATCH_BYTES or _is_large(item):
            yield batch
            batch, size = [], 0
    if batch:
        yield batch


def _is_large(item):
    return item.record.size > BATCH_BYTES or item.entry is not None and item.entry.packed > BATCH_BYTES


def _read(item, base):
    record, data, packed = item.record, None, None
    if item.source:
        data = "" if item.name.endswith("/") else item.source.do(read_small, item.source.size + 1)
        if len(data) != item.source.size:
            raise changed(item.name)
        record.crc = binascii.crc32(data) & 0xffffffff
    if item.entry and (data is None or (record.size, record.crc) == (item.entry.size, item.entry.crc)):
        packed = "".join(base.packed_blocks(item.entry))
        record.crc = item.entry.crc
    return _Job(item, data, packed)


def _packed(batch, base):
    """What each content of a batch is in the archive; None for a large one."""
    kept = [job.packed if job.packed is not None and _holds(job, base) else None for job in batch]
    deflating = iter(deflated([job.data for job, packed in zip(batch, kept) if packed is None and _deflates(job)]))
    for position, job in enumerate(batch):
        if kept[position] is None:
            kept[position] = next(deflating) if _deflates(job) else job.data
    return kept


def _holds(job, base):
    """Whether the base's entry is what has to be written; raises when it is damaged."""
    content = base.content(job.item.entry, [job.packed])
    return job.data is None or content == job.data


def _deflates(job):
    return job.data and job.item.record.method == DEFLATED


def _add_large(writer, item, base):
    """Block by block, on this thread."""
    if item.entry and (item.source is None or _is_equal(item, base)):
        writer.add_packed(item.record, base.verified_blocks(item.entry), item.entry.packed, item.entry.crc)
        add_progress(item.record.size)
        return
    with item.source.do(open_regular) as content:
        writer.add(item.record, _counted(blocks(content)))


def _is_equal(item, base):
    if item.source.size != item.entry.size:
        return False
    with item.source.do(open_regular) as content:
        return all(content.read(len(block)) == block for block in base.blocks(item.entry)) and not content.read(1)


def _counted(content):
    for block in content:
        add_progress(len(block))
        yield block
