# SPDX-License-Identifier: MIT
"""What a person wants to know of keys: which one is in force, and which one a package needs.

Each function answers a map of texts, or one with "error" alone; docs/scripts.md describes them.
"""
import binascii

from quenzo_assets import fingerprints
from quenzo_cipher import NO_FINGERPRINT, fingerprint_of
from quenzo_files import argument_path
from quenzo_key import key_file, make_key, secret
from quenzo_report import hand_over, sentence, tell
from quenzo_zipread import Archive


def showKey(keyFile, withSecret):
    """The key in force: "path", "fingerprint", and "secret" if withSecret is a number other than 0."""
    def work(say):
        found = secret(keyFile, False, lambda text: None)
        answer = {"path": key_file(keyFile, say), "fingerprint": _shown(fingerprint_of(found))}
        if withSecret:
            answer["secret"] = binascii.hexlify(found)
        return answer

    return _answered("showKey", work)


def newKey(keyFile):
    """Makes a key where there is none: "path" and "fingerprint"."""
    def work(say):
        path = make_key(keyFile, say)
        return {"path": path, "fingerprint": _shown(fingerprint_of(secret(path, False, say)))}

    return _answered("newKey", work)


def checkKey(apkFile, keyFile):
    """Which key a package needs ("needed", or "" when its assets are not encrypted, or "unnamed" from a first
    version), which one is in force ("path", "fingerprint"), and whether they are the same ("fits": yes, no or "")."""
    def work(say):
        with Archive(argument_path(apkFile, "the APK")) as archive:
            needed = sorted(fingerprints(archive))
        if not needed:
            return {"needed": "", "fits": ""}
        answer = {"needed": " ".join("unnamed" if one == NO_FINGERPRINT else _shown(one) for one in needed),
                  "path": key_file(keyFile, say)}
        try:
            present = fingerprint_of(secret(keyFile, False, lambda text: None))
        except Exception as error:
            return dict(answer, fits="no", cause=sentence(error))
        fits = "" if NO_FINGERPRINT in needed else "yes" if needed == [present] else "no"
        return dict(answer, fingerprint=_shown(present), fits=fits)

    return _answered("checkKey", work)


def _answered(function, work):
    try:
        return work(lambda text: tell(function, text))
    except Exception as error:  # The host reads a map, whatever happened.
        hand_over(error)
        return {"error": sentence(error)}


def _shown(fingerprint):
    return binascii.hexlify(fingerprint)
