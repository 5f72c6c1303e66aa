# SPDX-License-Identifier: MIT
"""Writes an APK anew with its assets in another form; every other entry is carried over as it was packed."""
import contextlib

from quenzo_assets import EncryptedAssets, content_digests, decrypted_assets, is_asset, plain_names
from quenzo_cipher import NotAuthentic
from quenzo_files import replaced
from quenzo_folder import parents_made
from quenzo_place import Work
from quenzo_report import DamagedArchive
from quenzo_zipread import STORED, Archive
from quenzo_zipwrite import ZipWriter, is_signature, record_like


def encrypt_file(path, archive, secret, left):
    """Replaces the APK by its encrypted form, once that form has given the same assets back.

    left: the names of the assets that stay as they are.
    """
    with _rewriting(path) as (out, name, work):
        encrypted = EncryptedAssets(archive, secret, work, left)

        def add(writer, entry):
            writer.add(record_like(entry, STORED, encrypted.size(entry.name)), encrypted.blocks(entry.name))

        _rewrite(archive, add, out, left)
        with Archive(name) as made:
            _check_others(archive, made, left)
            if decrypted_assets(made, secret, work).digests() != content_digests(archive, left):
                raise NotAuthentic("the encrypted APK does not give the same assets back")


def decrypt_file(path, archive, secret):
    """Replaces the encrypted APK by one with the assets as they were."""
    with _rewriting(path) as (out, name, work):
        plain, left = decrypted_assets(archive, secret, work), plain_names(archive)

        def add(writer, entry):
            header = plain.headers[entry.name]
            writer.add(record_like(entry, header.method, header.length), plain.blocks(entry.name))

        _rewrite(archive, add, out, left)
        with Archive(name) as made:
            _check_others(archive, made, left)
            if content_digests(made, left) != plain.digests():
                raise NotAuthentic("the new APK does not hold the decrypted assets")


@contextlib.contextmanager
def _rewriting(path):
    """The new file and its place so far, and a folder to work in that is closed to others."""
    with parents_made(path) as (folder, name), Work(folder) as work, replaced(folder, name) as (out, place):
        yield out, place, work.tree


def _rewrite(archive, add_asset, out, left):
    """Every entry in its old order, assets through add_asset, without the signature, which no longer holds."""
    writer = ZipWriter(out)
    for entry in archive.entries:
        if is_asset(entry) and entry.name not in left:
            add_asset(writer, entry)
        elif not is_signature(entry.name):
            writer.add_packed(record_like(entry, entry.method, entry.size), archive.packed_blocks(entry), entry.packed,
                              entry.crc)
    writer.finish()


def _check_others(before, after, left):
    """Every entry that is neither asset in question nor signature is the same in both, and whole."""
    expected = [_likeness(entry, left) for entry in before.entries if not is_signature(entry.name)]
    if expected != [_likeness(entry, left) for entry in after.entries]:
        raise DamagedArchive("the new APK does not hold what the old one did")
    for entry in after.entries:
        after.verify(entry)


def _likeness(entry, left):
    return entry.raw_name if is_asset(entry) and entry.name not in left else (entry.raw_name, entry.crc, entry.size)
