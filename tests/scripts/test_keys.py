# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""What a person asks of keys: showKey, newKey and checkKey."""
import binascii
import hashlib
import hmac
import os
import stat
import unittest

from support import read, write
from test_encrypt import Encrypting

import encrypt
import keys
import quenzo_assets


def fingerprint(secret):
    return binascii.hexlify(hmac.new(binascii.unhexlify(secret), "quenzo key fingerprint", hashlib.sha256).digest()[:7])


class Keys(Encrypting):
    def test_showingNamesTheKeyAndKeepsItToItself(self):
        self.assertEqual({"path": self.key, "fingerprint": fingerprint("ab" * 32)}, keys.showKey("", 0))

    def test_theKeyItselfIsShownWhenAskedFor(self):
        self.assertEqual("ab" * 32, keys.showKey("", 1)["secret"])

    def test_showingMakesNoKey(self):
        os.remove(self.key)
        self.assertEqual({"error": "there is no key: %s" % self.key}, keys.showKey("", 0))
        self.assertFalse(os.path.exists(self.key))

    def test_aNamedKeyAndTheVariableCount(self):
        first, second = self.write_key(self.path("1.key"), "1" * 64), self.write_key(self.path("2.key"), "2" * 64)
        os.environ["QUENZO_KEY"] = first
        self.assertEqual((first, second), (keys.showKey("", 0)["path"], keys.showKey(second, 0)["path"]))

    def test_aKeyInTheOldPlaceIsShownWithTheAdviceToMoveIt(self):
        os.rename(self.key, self.beside)
        self.assertEqual(self.beside, keys.showKey("", 0)["path"])
        self.assertEqual("showKey: the key is still beside the scripts; move it from %s to %s\n"
                         % (self.beside, self.key), self.said.getvalue())
        self.assertIn("there is a key already", keys.newKey("")["error"])
        self.assertFalse(os.path.exists(self.key))

    def test_aNewKeyIsForItsOwnerAlone(self):
        os.remove(self.key)
        os.rmdir(os.path.dirname(self.key))
        made = keys.newKey("")
        self.assertEqual({"path": self.key, "fingerprint": fingerprint(read(self.key).strip())}, made)
        self.assertEqual(0o600, stat.S_IMODE(os.stat(self.key).st_mode))
        named = self.path("new folder", "team.key")
        self.assertEqual(named, keys.newKey(named)["path"])
        self.assertNotEqual(read(self.key), read(named))

    def test_aKeyThatIsThereIsNeverOverwritten(self):
        for path in (self.key, self.write_key(self.path("team.key"), "not even a key")):
            before = read(path)
            self.assertEqual({"error": "there is a key already, which packages may need: %s" % path},
                             keys.newKey(path))
            self.assertEqual(before, read(path))
        os.symlink("nowhere", self.path("link"))
        self.assertEqual(self.path("nowhere"), keys.newKey(self.path("link"))["path"])

    def test_checkingNamesTheKeyThatAPackageNeeds(self):
        self.encrypted()
        mine = fingerprint("ab" * 32)
        self.assertEqual({"needed": mine, "path": self.key, "fingerprint": mine, "fits": "yes"},
                         keys.checkKey(self.apk, ""))
        other = self.write_key(self.path("other.key"), "0" * 64)
        self.assertEqual({"needed": mine, "path": other, "fingerprint": fingerprint("0" * 64), "fits": "no"},
                         keys.checkKey(self.apk, other))
        os.remove(self.key)
        self.assertEqual({"needed": mine, "path": self.key, "fits": "no", "cause": "there is no key: %s" % self.key},
                         keys.checkKey(self.apk, ""))

    def test_checkingKnowsPlainPackagesAndThoseOfTheFirstVersions(self):
        self.assertEqual({"needed": "", "fits": ""}, keys.checkKey(self.apk, ""))
        fingerprint_of = quenzo_assets.fingerprint_of
        self.addCleanup(setattr, quenzo_assets, "fingerprint_of", fingerprint_of)
        quenzo_assets.fingerprint_of = lambda secret: "\0" * 7
        self.assertEqual(0, encrypt.encryptApk(".", self.apk))
        found = keys.checkKey(self.apk, "")
        self.assertEqual(("unnamed", ""), (found["needed"], found["fits"]))

    def test_whatIsNoPackageIsAnError(self):
        self.assertIn("not a zip archive", keys.checkKey(write(self.path("x.apk"), "text"), "")["error"])
        self.assertIn("No such file", keys.checkKey(self.path("absent.apk"), "")["error"])
        self.assertIn("empty", keys.checkKey("", "")["error"])


if __name__ == "__main__":
    unittest.main()
