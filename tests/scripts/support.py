# SPDX-License-Identifier: MIT
"""What the tests of the packaging scripts share: folders of their own, and archives written and read byte by byte."""
import contextlib
import os
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unicodedata
import unittest
import zlib
from StringIO import StringIO

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SCRIPTS = os.path.join(ROOT, "host", "Script")
SAMPLE = os.path.join(ROOT, "host", "sample")
APK = os.path.join(SAMPLE, "skyharbour.apk")
sys.path.insert(0, SCRIPTS)

LINK_ATTRIBUTES = 0o120777 << 16


class FolderCase(unittest.TestCase):
    """A test with a new folder, and with the error stream collected in self.said."""

    def setUp(self):
        self.folder = os.path.realpath(tempfile.mkdtemp(prefix="quenzo-scripts-"))
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.said = StringIO()
        self.addCleanup(setattr, sys, "stderr", sys.stderr)
        sys.stderr = self.said

    def path(self, *parts):
        return os.path.join(self.folder, *parts)

    def write(self, name, data=""):
        return write(self.path(name), data)

    def assert_unchanged(self, before):
        """The test's whole folder is what tree() said before."""
        self.assert_same_tree(before, tree(self.folder))

    def assert_same_tree(self, wanted, found):
        """Equal names and content, without a listing of megabytes when not."""
        self.assertEqual(sorted(wanted), sorted(found))
        self.assertEqual([], [name for name in sorted(wanted) if wanted[name] != found[name]], "content differs")


def write(path, data=""):
    if not os.path.isdir(os.path.dirname(path)):
        os.makedirs(os.path.dirname(path))
    with open(path, "wb") as out:
        out.write(data)
    return path


def read(path):
    with open(path, "rb") as source:
        return source.read()


def tree(root):
    """Everything below root: relative name to content, to None for a folder, to ("link", target) for a link."""
    found = {}
    for folder, folders, files in os.walk(root):
        for name in folders + files:
            path = os.path.join(folder, name)
            if os.path.islink(path):
                found[os.path.relpath(path, root)] = ("link", os.readlink(path))
            else:
                found[os.path.relpath(path, root)] = read(path) if name in files else None
    return found


def unprintable(text):
    """What in a text could steer a terminal, or is no UTF-8."""
    try:
        letters = text.decode("utf-8")
    except UnicodeDecodeError as error:
        return str(error)
    return [letter for letter in letters if unicodedata.category(letter) in ("Cc", "Cf", "Cs", "Zl", "Zp")]


class Raw(object):
    """An entry to write with every header field as one likes; what is not given is what an honest writer says."""

    def __init__(self, name, data="", method=0, **changes):
        self.name, self.data, self.method = name, data, method
        self.packed = changes.pop("packed", deflated(data) if method == 8 else data)
        self.size = changes.pop("size", len(data))
        self.packed_size = changes.pop("packed_size", len(self.packed))
        self.crc = changes.pop("crc", zlib.crc32(data) & 0xffffffff)
        self.flags = changes.pop("flags", 0)
        self.system = changes.pop("system", 3)
        self.attributes = changes.pop("attributes", 0)
        self.local_name = changes.pop("local_name", name)
        self.local_method = changes.pop("local_method", method)
        self.offset = changes.pop("offset", None)   # of another entry's local header, to share its bytes
        assert not changes, changes


def deflated(data):
    deflater = zlib.compressobj(9, zlib.DEFLATED, -zlib.MAX_WBITS)
    return deflater.compress(data) + deflater.flush()


def raw_archive(path, entries, count=None, comment=""):
    """Writes an archive of Raw entries."""
    out, directory = "", ""
    for raw in entries:
        offset = raw.offset
        if offset is None:
            offset = len(out)
            out += struct.pack("<4s5HLLLHH", "PK\3\4", 20, raw.flags, raw.local_method, 0, 33, raw.crc,
                               raw.packed_size, raw.size, len(raw.local_name), 0) + raw.local_name + raw.packed
        directory += struct.pack("<4s6HLLL5HLL", "PK\1\2", raw.system << 8 | 20, 20, raw.flags, raw.method, 0, 33, raw.crc,
                                 raw.packed_size, raw.size, len(raw.name), 0, 0, 0, 0, raw.attributes,
                                 offset) + raw.name
    count = len(entries) if count is None else count
    end = struct.pack("<4s4H2LH", "PK\5\6", 0, 0, count, count, len(directory), len(out), len(comment))
    return write(path, out + directory + end + comment)


class Found(object):
    """An entry as the archive's bytes have it."""


def parsed(path):
    """The entries of an archive in directory order, read without the code under test."""
    data = read(path)
    end = data.rindex("PK\5\6")
    count, size, position = struct.unpack("<HLL", data[end + 10:end + 20])
    assert position + size == end, "the directory does not end at the end record"
    found = []
    for unused in range(count):
        fields = struct.unpack("<4s6HLLL5HLL", data[position:position + 46])
        assert fields[0] == "PK\1\2"
        one = Found()
        one.flags, one.method, one.time, one.date, one.crc, one.packed, one.size = fields[3:10]
        one.attributes, one.offset = fields[15:17]
        one.name = data[position + 46:position + 46 + fields[10]]
        position += 46 + fields[10] + fields[11] + fields[12]
        local = struct.unpack("<4s5HLLLHH", data[one.offset:one.offset + 30])
        assert local[0] == "PK\3\4"
        assert local[2:9] == (one.flags, one.method, one.time, one.date, one.crc, one.packed, one.size)
        assert data[one.offset + 30:one.offset + 30 + local[9]] == one.name
        one.start = one.offset + 30 + local[9] + local[10]
        packed = data[one.start:one.start + one.packed]
        one.data = zlib.decompress(packed, -zlib.MAX_WBITS) if one.method == 8 else packed
        assert len(one.data) == one.size and zlib.crc32(one.data) & 0xffffffff == one.crc
        found.append(one)
    return found


def contents(path):
    """Entry name to content."""
    return dict((one.name, one.data) for one in parsed(path))


@contextlib.contextmanager
def full_disk(at, size):
    """Within the body no file in the new folder at can grow beyond size.

    Root gets a small file system there, which all files together fill up, and the body is given True. Others get a
    limit on the size of a single file.
    """
    os.mkdir(at)
    mounted = os.geteuid() == 0 and not subprocess.call(
        ["mount", "-t", "tmpfs", "-o", "size=%d" % size, "quenzo-test", at], stderr=open(os.devnull, "w"))
    limits = resource.getrlimit(resource.RLIMIT_FSIZE)
    action = signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    try:
        if not mounted:
            resource.setrlimit(resource.RLIMIT_FSIZE, (size, limits[1]))
        yield mounted
    finally:
        resource.setrlimit(resource.RLIMIT_FSIZE, limits)
        signal.signal(signal.SIGXFSZ, action)
        if mounted:
            subprocess.check_call(["umount", at])
        shutil.rmtree(at)


def as_plain_user(work):
    """Runs work in a child that root's powers do not help; gives what it returns, a text."""
    reader, writer = os.pipe()
    child = os.fork()
    if not child:
        status = 1
        try:
            if os.geteuid() == 0:
                os.setgroups([])
                os.setgid(65534)
                os.setuid(65534)
            os.write(writer, str(work()))
            status = 0
        finally:
            os._exit(status)
    os.close(writer)
    with os.fdopen(reader) as source:
        text = source.read()
    if os.waitpid(child, 0)[1]:
        raise AssertionError("the child failed")
    return text


def python(code, *arguments, **options):
    """Starts code in a Python of its own, with the scripts (or those in folder scripts=) importable."""
    environment = dict(os.environ, PYTHONPATH=options.pop("scripts", SCRIPTS), **options.pop("environment", {}))
    return subprocess.Popen([sys.executable, "-B", "-c", code] + list(arguments), env=environment,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)


def ended(child, seconds=20):
    """The exit code of a child that has to end by itself in that time."""
    end = time.time() + seconds
    while child.poll() is None:
        if time.time() > end:
            child.kill()
            child.communicate()
            raise AssertionError("no answer within %d seconds" % seconds)
        time.sleep(0.005)
    child.communicate()
    return child.returncode


def killed_when(child, condition, seconds=60):
    """Kills child as soon as condition holds; whether it was still at work then."""
    end = time.time() + seconds
    while child.poll() is None and not condition():
        if time.time() > end:
            child.kill()
            raise AssertionError("the moment to kill at never came")
        time.sleep(0.002)
    if child.poll() is None:
        child.send_signal(signal.SIGKILL)
    child.communicate()
    return child.returncode == -signal.SIGKILL
