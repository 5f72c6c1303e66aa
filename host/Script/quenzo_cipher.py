# SPDX-License-Identifier: MIT
"""One APK's assets as one AES-256-CTR stream through the system's openssl, and the header of each asset in it.

The secret never shows in the process list or the environment: openssl gets a phrase derived from it through a
pipe that was filled before openssl started. The pipe's reading end stays open here meanwhile, so no write can
meet a closed pipe, which would end a host whose SIGPIPE has its default action.
"""
import binascii
import hashlib
import hmac
import os
import struct
import subprocess
import tempfile

from quenzo_report import ToolError

PROGRAM = "openssl"
MAGIC = "QZASSET1"
SALT_BYTES = 16
FINGERPRINT_BYTES = 7
NO_FINGERPRINT = "\0" * FINGERPRINT_BYTES    # what packages of the first versions have
TAG_BYTES = 32
BLOCK_BYTES = 16                # assets begin at a multiple of it, so that each can be decrypted alone
STREAM_MAGIC = "Salted__"       # openssl's own head of a stream, followed by its salt
STREAM_SALT_BYTES = 8
STREAM_HEAD_BYTES = 16
_ITERATIONS = "1000"            # the phrase is random already; this many satisfies every policy
_HEADER = struct.Struct("<8s16s8sQQQB7s")
_MAX_FILES_TO_CLOSE = 1 << 20
_UNWRITTEN = "openssl did not write what it should have"


class CipherFailure(ToolError):
    """openssl is missing, or did not do its work."""

    kind = "no-tool"


class NotAuthentic(ToolError):
    """The encrypted form was altered, moved, or made with another key."""

    kind = "bad-input"


class Header(object):
    """What stands before an asset's encrypted bytes."""

    SIZE = _HEADER.size

    def __init__(self, salt, stream_salt, offset, length, total, method, fingerprint):
        self.salt, self.stream_salt = salt, stream_salt
        self.offset, self.length, self.total = offset, length, total
        self.method = method
        self.fingerprint = fingerprint

    @classmethod
    def unpack(cls, data):
        fields = _HEADER.unpack(data)
        if fields[0] != MAGIC:
            raise NotAuthentic("not an encrypted asset")
        return cls(*fields[1:])

    def pack(self):
        return _HEADER.pack(MAGIC, self.salt, self.stream_salt, self.offset, self.length, self.total, self.method,
                            self.fingerprint)

    @property
    def stream(self):
        """What all assets encrypted together have in common."""
        return self.salt, self.stream_salt, self.total


def fingerprint_of(secret):
    """Names the secret and gives nothing of it away."""
    return hmac.new(secret, "quenzo key fingerprint", hashlib.sha256).digest()[:FINGERPRINT_BYTES]


def salt_of(secret, contents):
    """The salt for an APK of these contents: the same ones give the same form, and others never share a salt.

    contents: digests by name.
    """
    named = "".join(_sized(name) + contents[name] for name in sorted(contents))
    return hmac.new(secret, "quenzo salt" + named, hashlib.sha256).digest()[:SALT_BYTES]


class Keys(object):
    """What one APK is encrypted and authenticated with, derived from the secret and a salt of its own.

    left: the names of the assets that are not encrypted; each tag holds them, so that none can come or go unnoticed.
    """

    def __init__(self, secret, salt, left=()):
        self.salt = salt
        self._left = "".join(_sized(name) for name in sorted(left))
        self._phrase = hmac.new(secret, "quenzo asset encryption" + salt, hashlib.sha256).hexdigest()
        self._tag_key = hmac.new(secret, "quenzo asset authentication" + salt, hashlib.sha256).digest()

    @property
    def stream_salt(self):
        """The salt for openssl, which follows from the other one."""
        return hashlib.sha256(self.salt).digest()[:STREAM_SALT_BYTES]

    def encrypt(self, source, target):
        """Encrypts file source into file target of the same folder; gives where in it the bytes begin."""
        _run("-e", source, target, self._phrase, "-S", binascii.hexlify(self.stream_salt))
        # With a salt from outside, openssl 1.1 writes its head, and openssl 3 leaves it out.
        head = max(0, _size(target) - os.path.getsize(source))
        if head not in (0, STREAM_HEAD_BYTES) or _size(target) != head + os.path.getsize(source):
            raise CipherFailure(_UNWRITTEN)
        return head

    def decrypt(self, source, target):
        """The way back, of a file that has openssl's head."""
        _run("-d", source, target, self._phrase)
        if _size(target) != os.path.getsize(source) - STREAM_HEAD_BYTES:
            raise CipherFailure(_UNWRITTEN)

    def tag(self, name, header):
        """Begins the tag of an asset: over its name and header, then its encrypted bytes by update()."""
        begun = hmac.new(self._tag_key, digestmod=hashlib.sha256)
        begun.update(_sized(name) + header.pack() + self._left)
        return begun


def _sized(name):
    return struct.pack("<Q", len(name)) + name


def padded(length):
    """The length of an asset's place in the stream."""
    return length + -length % BLOCK_BYTES


def _size(path):
    # Where a host ignores SIGCHLD the exit code is lost and reads as 0: look at what was made.
    return os.path.getsize(path) if os.path.exists(path) else -1


def _run(direction, source, target, phrase, *further):
    command = [PROGRAM, "enc", "-aes-256-ctr", "-pbkdf2", "-md", "sha256", "-iter", _ITERATIONS, "-pass", "stdin",
               direction] + list(further) + ["-in", os.path.basename(source), "-out", os.path.basename(target)]
    reader, writer = os.pipe()
    try:
        try:
            os.write(writer, phrase + "\n")
        finally:
            os.close(writer)
        with tempfile.TemporaryFile() as errors, open(os.devnull, "wb") as nowhere:
            code = _wait_for(command, os.path.dirname(source), reader, nowhere, errors)
            errors.seek(0)
            text = errors.read(500)
    finally:
        os.close(reader)
    if code:
        raise CipherFailure("openssl ended with %d: %s" % (code, text.strip()))


def _wait_for(command, folder, stdin, stdout, stderr):
    """Runs the command in that folder: the path to it is worth nothing in another process."""
    # Closing a billion descriptors one by one, where that is the limit, would take minutes.
    close = subprocess.MAXFD <= _MAX_FILES_TO_CLOSE
    try:
        child = subprocess.Popen(command, cwd=folder, stdin=stdin, stdout=stdout, stderr=stderr, close_fds=close)
    except OSError as error:
        raise CipherFailure("openssl cannot be started: %s" % error)
    return child.wait()
