# SPDX-License-Identifier: MIT
"""Packs a folder so that equal content gives equal bytes."""
import os
import stat

from quenzo_files import SCRATCH, argument_path, argument_text, blocks, open_regular, parents_made, replaced
from quenzo_limits import check_content, check_entries
from quenzo_names import check_names
from quenzo_report import ToolError
from quenzo_zipread import DEFLATED, STORED
from quenzo_zipwrite import Record, ZipWriter

# What Android maps or streams straight out of the package, and what deflating cannot make smaller.
STORED_NAMES = frozenset(("resources.arsc",))
STORED_SUFFIXES = frozenset((
    ".so",
    ".png", ".jpg", ".jpeg", ".gif", ".webp", ".heic",
    ".mp2", ".mp3", ".ogg", ".oga", ".opus", ".aac", ".m4a", ".wma", ".wav", ".mid", ".midi", ".imy", ".rtttl",
    ".smf", ".xmf", ".amr", ".awb", ".jet",
    ".mp4", ".m4v", ".3gp", ".3gpp", ".3g2", ".3gpp2", ".mpg", ".mpeg", ".webm", ".mkv", ".wmv",
    ".zip", ".jar", ".apk", ".obb", ".gz", ".xz", ".7z"))


def pack(src, dest, apkfile):
    """Packs folder src, and file apkfile beside its content unless that is empty, into archive dest."""
    root = argument_path(src, "the folder to pack")
    target = argument_path(dest, "the archive to write")
    extra = argument_text(apkfile, "the file to add") if apkfile or not isinstance(apkfile, basestring) else None
    if not os.path.isdir(root):
        raise ToolError("no such folder: %s" % root)
    if _lies_in(target, root):
        raise ToolError("the archive would lie in the folder to pack: %s" % target)
    with parents_made(target):
        found = _contents(root)
        if extra is not None:
            _add_extra(found, extra, target)
        _check(found)
        with replaced(target) as (out, _):
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
    check_content(sum(os.path.getsize(path) for name, path in found.iteritems() if not name.endswith("/")))


def _contents(root):
    """Entry name to path, for every file and every empty folder below root."""
    found = {}

    def walk(folder, prefix):
        names = [name for name in os.listdir(folder) if not SCRATCH.match(name)]
        for name in names:
            path = os.path.join(folder, name)
            kind = os.lstat(path).st_mode
            if stat.S_ISDIR(kind):
                walk(path, prefix + name + "/")
            else:
                found[prefix + name] = _file_behind(path, kind, root)
        if prefix and not names:
            found[prefix] = folder

    try:
        walk(root, "")
    except RuntimeError:
        raise ToolError("the folder is nested too deep: %s" % root)
    return found


def _file_behind(path, kind, root):
    """The file to read for an entry; a link has to end at a file of the same tree."""
    if stat.S_ISLNK(kind):
        real = os.path.realpath(path)
        if not real.startswith(root.rstrip("/") + "/"):
            raise ToolError("a link leads out of the folder: %s" % path)
        if not os.path.isfile(real):
            raise ToolError("a link leads to no file: %s" % path)
        return real
    if not stat.S_ISREG(kind):
        raise ToolError("neither file nor folder: %s" % path)
    return path


def _add_extra(found, extra, target):
    name = os.path.basename(extra)
    path = os.path.realpath(extra)
    if path == target:
        raise ToolError("the file to add is the archive to write: %s" % extra)
    if not os.path.isfile(path):
        raise ToolError("no such file to add: %s" % extra)
    if any(entry.split("/", 1)[0] == name for entry in found):
        raise ToolError("the folder holds a '%s' of its own" % name)
    found[name] = path


def _write(out, found):
    writer = ZipWriter(out)
    for name in sorted(found):
        if name.endswith("/"):
            writer.add_folder(name)
            continue
        with open_regular(found[name]) as source:
            size = os.fstat(source.fileno()).st_size
            writer.add(Record(name, method_for(name, size), size), blocks(source))
    writer.finish()
