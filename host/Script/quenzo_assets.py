# SPDX-License-Identifier: MIT
"""The encrypted form of an APK's assets: made from their content, authenticated, and turned back."""
import binascii
import hashlib
import hmac
import os

from quenzo_cipher import (MAGIC, NO_FINGERPRINT, STREAM_MAGIC, TAG_BYTES, Header, Keys, NotAuthentic, fingerprint_of,
                           padded, salt_of)
from quenzo_files import BLOCK, open_new, remove
from quenzo_zipread import checked


def assets_of(archive, left=()):
    """The payload: every file below assets/, but those whose names are left out."""
    return [entry for entry in archive.entries if is_asset(entry) and entry.name not in left]


def is_asset(entry):
    return entry.name.startswith("assets/") and not entry.is_folder


def plain_names(archive):
    """The names of the assets that do not look like our encrypted form."""
    return frozenset(entry.name for entry in assets_of(archive) if not _beginning(archive, entry).startswith(MAGIC))


def has_encrypted(archive):
    """Whether any asset looks like our encrypted form."""
    return any(_beginning(archive, entry).startswith(MAGIC) for entry in assets_of(archive))


def fingerprints(archive):
    """The fingerprints of the keys that the encrypted assets name."""
    beginnings = [_beginning(archive, entry) for entry in assets_of(archive)]
    return set(Header.unpack(one[:Header.SIZE]).fingerprint for one in beginnings
               if one.startswith(MAGIC) and len(one) >= Header.SIZE)


def _beginning(archive, entry):
    return next(checked(entry, archive.packed_blocks(entry)), "")


def content_digests(archive, left):
    """The digest of each asset's content by name."""
    digests = {}
    for entry in assets_of(archive, left):
        digest = hashlib.sha256()
        for block in archive.blocks(entry):
            digest.update(block)
        digests[entry.name] = digest.digest()
    return digests


class PlainAssets(object):
    """Assets in a file of plain content, each at its header's offset."""

    def __init__(self, headers, path):
        self.headers = headers
        self._path = path

    def blocks(self, name):
        """The content of one asset."""
        header = self.headers[name]
        with open(self._path, "rb", BLOCK) as stream:
            for block in _slice(stream, header.offset, header.length):
                yield block

    def digests(self):
        """The digest of each asset's content by name."""
        digests = {}
        for name in self.headers:
            digest = hashlib.sha256()
            for block in self.blocks(name):
                digest.update(block)
            digests[name] = digest.digest()
        return digests


class EncryptedAssets(object):
    """The encrypted form of an archive's assets but those left as they are, made in folder work."""

    def __init__(self, archive, secret, work, left):
        plain = os.path.join(work, "plain")
        self._path = os.path.join(work, "cipher")
        # Those left as they are count: equal salts under other tags would tell that they alone have changed.
        self._keys = Keys(secret, salt_of(secret, content_digests(archive, ())), left)
        self._fingerprint = fingerprint_of(secret)
        self._headers = self._write_plain(assets_of(archive, left), archive, plain)
        self._begin = self._keys.encrypt(plain, self._path)
        remove(plain)

    def size(self, name):
        return Header.SIZE + self._headers[name].length + TAG_BYTES

    def blocks(self, name):
        """Header, encrypted bytes and tag of one asset."""
        header = self._headers[name]
        tag = self._keys.tag(name, header)
        yield header.pack()
        with open(self._path, "rb", BLOCK) as stream:
            for block in _slice(stream, self._begin + header.offset, header.length):
                tag.update(block)
                yield block
        yield tag.digest()

    def _write_plain(self, assets, archive, path):
        """All assets one behind the other, each at a multiple of the cipher's block."""
        headers, offset = {}, 0
        with open_new(path, 0o600) as stream:
            for entry in assets:
                for block in archive.blocks(entry):
                    stream.write(block)
                stream.write("\0" * (padded(entry.size) - entry.size))
                headers[entry.name] = Header(self._keys.salt, self._keys.stream_salt, offset, entry.size, 0, entry.method,
                                             self._fingerprint)
                offset += padded(entry.size)
        for header in headers.itervalues():
            header.total = offset
        return headers


def decrypted_assets(archive, secret, work):
    """PlainAssets of an encrypted archive; every tag is checked before anything is decrypted."""
    left = plain_names(archive)
    entries = assets_of(archive, left)
    headers = dict((entry.name, _authenticated_header(archive, entry, secret, left)) for entry in entries)
    salt, stream_salt, total = _common_stream(headers.values())
    cipher, plain = os.path.join(work, "authentic"), os.path.join(work, "decrypted")
    with open_new(cipher, 0o600) as stream:
        stream.write(STREAM_MAGIC + stream_salt)
        for entry in sorted(entries, key=lambda one: headers[one.name].offset):
            header = headers[entry.name]
            content = _Content(archive, entry)
            content.read(Header.SIZE)
            for block in content.blocks(header.length):
                stream.write(block)
            stream.write("\0" * (padded(header.length) - header.length))
    Keys(secret, salt).decrypt(cipher, plain)
    remove(cipher)
    return PlainAssets(headers, plain)


def _authenticated_header(archive, entry, secret, left):
    if entry.size < Header.SIZE + TAG_BYTES:
        raise NotAuthentic("'%s' is not encrypted, or cut off" % entry.name)
    content = _Content(archive, entry)
    header = Header.unpack(content.read(Header.SIZE))
    _check_key(entry.name, header.fingerprint, fingerprint_of(secret))
    if header.length != entry.size - Header.SIZE - TAG_BYTES:
        raise NotAuthentic("'%s' has another length than it says" % entry.name)
    tag = Keys(secret, header.salt, left).tag(entry.name, header)
    for block in content.blocks(header.length):
        tag.update(block)
    if not hmac.compare_digest(tag.digest(), content.read(TAG_BYTES)):
        raise NotAuthentic("'%s' was altered, or encrypted with another key%s"
                           % (entry.name, "; or an asset beside it came or went" if left else ""))
    return header


def _check_key(name, wanted, given):
    if wanted not in (given, NO_FINGERPRINT):
        raise NotAuthentic("'%s' was encrypted with the key %s, and this is the key %s"
                           % (name, binascii.hexlify(wanted), binascii.hexlify(given)))


def _common_stream(headers):
    """Salts and length that all headers share; the assets have to fill the stream without a gap."""
    stream = headers[0].stream
    offset = 0
    for header in sorted(headers, key=lambda one: (one.offset, one.length)):
        if header.stream != stream:
            raise NotAuthentic("the assets come from different APKs")
        if header.offset != offset:
            raise NotAuthentic("an asset is missing, or there twice")
        offset += padded(header.length)
    if offset != headers[0].total:
        raise NotAuthentic("an asset is missing")
    return stream


class _Content(object):
    """Reads an entry's content in pieces of a wanted length."""

    def __init__(self, archive, entry):
        self._source = archive.blocks(entry)
        self._rest = ""

    def read(self, length):
        return "".join(self.blocks(length))

    def blocks(self, length):
        while length:
            block = self._rest or next(self._source)
            block, self._rest = block[:length], block[length:]
            length -= len(block)
            yield block


def _slice(stream, offset, length):
    stream.seek(offset)
    while length:
        block = stream.read(min(length, BLOCK))
        if not block:
            raise NotAuthentic("the stream is cut off")
        length -= len(block)
        yield block
