# SPDX-License-Identifier: MIT
"""Encrypts the assets of an APK in place, and decrypts them again.

docs/scripts.md describes the answers, the key file and the encrypted form.
"""
from quenzo_apk import decrypt_file, encrypt_file
from quenzo_assets import assets_of, has_encrypted
from quenzo_cipher import CipherFailure, NotAuthentic
from quenzo_files import argument_path
from quenzo_key import KeyFailure, secret
from quenzo_report import Answer, DamagedArchive, NoFile, report, tell
from quenzo_zipread import Archive

DONE = 0
NO_APK = 1              # the path is empty or leads to no file, or to one that cannot be read or written
DAMAGED = 2             # the file is no whole archive
NOTHING_THERE = 3       # the APK has no file below assets/
WRONG_FORM = 4          # encrypted already, or (decrypting) not encrypted
KEY_UNUSABLE = 5        # the key file cannot be made or read, is open to others, or is damaged
CIPHER_FAILED = 6       # openssl is missing or failed
NOT_AUTHENTIC = 7       # altered assets, another key, or a result that failed its own verification
REFUSED = 8             # hostile or too large archive, or any other failure


def encryptApk(runPath, apkFile, keyFile=None):
    """Replaces the files below the APK's assets/ by their encrypted form; answers 0, or another number above."""
    def work(path, archive):
        if has_encrypted(archive):
            raise Answer(WRONG_FORM, "the assets are encrypted already")
        encrypt_file(path, archive, secret(keyFile, True, lambda text: tell("encryptApk", text)))

    return _answered("encryptApk", work, apkFile)


def decryptApk(runPath, apkFile, keyFile=None):
    """The way back: every asset gets its bytes again; same answers."""
    def work(path, archive):
        if not has_encrypted(archive):
            raise Answer(WRONG_FORM, "the assets are not encrypted")
        decrypt_file(path, archive, secret(keyFile, False, lambda text: tell("decryptApk", text)))

    return _answered("decryptApk", work, apkFile)


def _check(archive):
    for entry in archive.entries:
        archive.verify(entry)
    if not assets_of(archive):
        raise Answer(NOTHING_THERE, "the APK has no file below assets/")


def _answered(function, work, apk_file):
    """Runs work on the APK and turns whatever happens into a number: the host reads nothing else."""
    try:
        path = argument_path(apk_file, "the APK")
        with Archive(path) as archive:
            _check(archive)
            work(path, archive)
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
