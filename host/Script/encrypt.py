# SPDX-License-Identifier: MIT
"""Encrypts the assets of an APK in place, and decrypts them again.

docs/scripts.md describes the answers, the key file and the encrypted form.
"""
import fnmatch
import os

from quenzo_apk import decrypt_file, encrypt_file
from quenzo_assets import assets_of, has_encrypted
from quenzo_cipher import CipherFailure, NotAuthentic
from quenzo_files import argument_path, argument_text
from quenzo_key import KeyFailure, secret
from quenzo_progress import begin_progress, end_progress
from quenzo_report import Answer, DamagedArchive, NoFile, report, tell
from quenzo_zipread import Archive
from quenzo_zipwrite import SIGNATURE_GONE, is_signed

DONE = 0
NO_APK = 1              # the path is empty or leads to no file, or to one that cannot be read or written
DAMAGED = 2             # the file is no whole archive
NOTHING_THERE = 3       # the APK has no file below assets/
WRONG_FORM = 4          # encrypted already, or (decrypting) not encrypted
KEY_UNUSABLE = 5        # the key file cannot be made or read, is open to others, or is damaged
CIPHER_FAILED = 6       # openssl is missing or failed
NOT_AUTHENTIC = 7       # altered assets, another key, or a result that failed its own verification
REFUSED = 8             # hostile or too large archive, or any other failure

_ENCRYPTION_PASSES, _DECRYPTION_PASSES = 5, 3  # how often the assets are read between the two checks of everything


def encryptApk(runPath, apkFile, keyFile=None, *excluded):
    """Replaces the files below the APK's assets/ by their encrypted form; answers 0, or another number above.

    excluded: patterns of names; what fits one stays as it is.
    """
    def work(path, archive):
        if has_encrypted(archive):
            raise Answer(WRONG_FORM, "the assets are encrypted already", "refused")
        left = _left_out(archive, excluded)
        encrypt_file(path, archive, secret(keyFile, True, lambda text: tell("encryptApk", text)), left)
        _tell_of_signature("encryptApk", archive)

    return _answered("encryptApk", work, apkFile, _ENCRYPTION_PASSES)


def decryptApk(runPath, apkFile, keyFile=None):
    """The way back: every asset gets its bytes again; same answers."""
    def work(path, archive):
        if not has_encrypted(archive):
            raise Answer(WRONG_FORM, "the assets are not encrypted")
        decrypt_file(path, archive, secret(keyFile, False, lambda text: tell("decryptApk", text)))
        _tell_of_signature("decryptApk", archive)

    return _answered("decryptApk", work, apkFile, _DECRYPTION_PASSES)


def _tell_of_signature(function, archive):
    if is_signed(archive):
        tell(function, SIGNATURE_GONE)


def _left_out(archive, patterns):
    """The names of the assets that fit a pattern: one with a slash the whole name, another the last part."""
    assets, left = assets_of(archive), set()
    for pattern in patterns:
        pattern = argument_text(pattern, "a pattern")
        whole = "/" in pattern
        fitting = [entry.name for entry in assets
                   if fnmatch.fnmatchcase(entry.name if whole else os.path.basename(entry.name), pattern)]
        if not fitting:
            tell("encryptApk", "no asset is called like '%s'" % pattern)
        left.update(fitting)
    if len(left) == len(assets):
        raise Answer(NOTHING_THERE, "every asset is excluded")
    return frozenset(left)


def _begin(archive, passes):
    """How much will be read, roughly: everything once before the work and once behind it, and the assets on the way."""
    assets = sum(entry.size for entry in assets_of(archive))
    begin_progress(2 * sum(entry.size for entry in archive.entries) + passes * assets)


def _check(archive):
    for entry in archive.entries:
        archive.verify(entry)
    if not assets_of(archive):
        raise Answer(NOTHING_THERE, "the APK has no file below assets/")


def _answered(function, work, apk_file, passes):
    """Runs work on the APK and turns whatever happens into a number: the host reads nothing else."""
    try:
        path = argument_path(apk_file, "the APK")
        with Archive(path) as archive:
            _begin(archive, passes)
            _check(archive)
            work(path, archive)
        end_progress()
        return DONE
    except Answer as error:
        answer, cause = error.number, error
    except (EnvironmentError, NoFile) as error:
        answer, cause = NO_APK, error
    except DamagedArchive as error:
        answer, cause = DAMAGED, error
    except KeyFailure as error:
        answer, cause = KEY_UNUSABLE, error
    except CipherFailure as error:
        answer, cause = CIPHER_FAILED, error
    except NotAuthentic as error:
        answer, cause = NOT_AUTHENTIC, error
    except Exception as error:
        answer, cause = REFUSED, error
    report(function, cause)
    return answer
