# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Keys: what a person asks of them (showKey, newKey and checkKey), and which one encryption takes or makes."""
import binascii
import hashlib
import hmac
import os
import shutil
import stat
import unittest

from support import APK, contents, python, read, write
from encryptcase import DONE, KEY_UNUSABLE, NOT_AUTHENTIC, HEADER, ENCRYPT, Encrypting, openssl

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


class Key(Encrypting):
    def test_itIsMadeOnceForItsOwnerAloneAndToldOnce(self):
        shutil.rmtree(self.path("data"))
        umask = os.umask(0)
        self.addCleanup(os.umask, umask)
        child = python(ENCRYPT, self.apk, scripts=self.scripts)
        self.assertEqual(("", "encryptApk: made the key %s; keep a copy, without it nothing can be decrypted\n" % self.key),
                         child.communicate())
        self.assertEqual(0, child.returncode)
        self.assertEqual(0o600, stat.S_IMODE(os.stat(self.key).st_mode))
        self.assertEqual(0o700, stat.S_IMODE(os.stat(os.path.dirname(self.key)).st_mode))
        self.assertFalse(os.path.exists(self.beside))
        text = read(self.key)
        self.assertRegexpMatches(text, r"^[0-9a-f]{64}\n\Z")
        write(self.apk, read(APK))
        self.encrypted()
        self.assertEqual(text, read(self.key))
        self.assertEqual("", self.said.getvalue())
        self.assertEqual(["encrypt.key"], os.listdir(os.path.dirname(self.key)))

    def test_withoutAFolderForDataItIsInTheUsualOne(self):
        for value in ("", "relative"):
            shutil.rmtree(self.path("home"), True)
            child = python(ENCRYPT, self.apk, scripts=self.scripts,
                           environment={"XDG_DATA_HOME": value, "HOME": self.path("home")})
            self.assertIn("made the key", child.communicate()[1])
            self.assertTrue(os.path.isfile(self.path("home", ".local", "share", "quenzo", "encrypt.key")))
            write(self.apk, read(APK))

    def test_aKeyBesideTheScriptsServesAndIsToBeMoved(self):
        os.rename(self.key, self.beside)
        advice = "Apk: the key is still beside the scripts; move it from %s to %s\n" % (self.beside, self.key)
        self.encrypted()
        self.assertEqual("encrypt" + advice, self.said.getvalue())
        self.said.truncate(0)
        self.decrypted()
        self.assertEqual("decrypt" + advice, self.said.getvalue())
        self.encrypted()
        os.rename(self.beside, self.key)
        self.said.truncate(0)
        self.decrypted()
        self.assertEqual("", self.said.getvalue())

    def test_aNamedKeyGoesBeforeTheVariableAndThatBeforeTheOwn(self):
        first = self.write_key(self.path("first.key"), "1" * 64)
        second = self.write_key(self.path("second.key"), "2" * 64)
        os.symlink("second.key", self.path("link"))
        os.environ["QUENZO_KEY"] = self.path("link")
        self.assertEqual(DONE, encrypt.encryptApk(".", self.apk, first))
        for named, answer in ((None, NOT_AUTHENTIC), (second, NOT_AUTHENTIC), (first, DONE)):
            self.assertEqual(answer, encrypt.decryptApk(".", self.apk, named))
        self.encrypted()
        os.environ["QUENZO_KEY"] = ""
        for named, answer in ((None, NOT_AUTHENTIC), (unicode(second), DONE)):
            self.assertEqual(answer, encrypt.decryptApk(".", self.apk, named))

    def test_aNamedKeyThatIsMissingIsNotMade(self):
        for named in (self.path("absent"), "a\0b", self.folder, 1.5):
            self.assertEqual(KEY_UNUSABLE, encrypt.encryptApk(".", self.apk, named))
        os.environ["QUENZO_KEY"] = self.path("absent")
        self.refused(KEY_UNUSABLE)
        self.assertFalse(os.path.exists(self.path("absent")))

    def test_manyProcessesAtOnceAgreeOnOneKey(self):
        os.remove(self.key)
        apks = [write(self.path("apk%d" % number, "game.apk"), read(APK)) for number in range(6)]
        children = [python(ENCRYPT, apk, scripts=self.scripts) for apk in apks]
        said = [child.communicate()[1] for child in children]
        self.assertEqual([0, 0, 0, 0, 0, 1], sorted(text.count("made the key") for text in said), said)
        self.assertEqual([0] * 6, [child.returncode for child in children])
        for self.apk in apks:
            self.decrypted()
            self.assertEqual(contents(APK), contents(self.apk))

    def test_aKeyThatOthersMayReadIsRefusedAndLeftAlone(self):
        for mode in (0o640, 0o604, 0o644, 0o620, 0o601):
            write(self.key, "0" * 64)
            os.chmod(self.key, mode)
            self.refused(KEY_UNUSABLE)
            self.assertEqual(("0" * 64, mode), (read(self.key), stat.S_IMODE(os.stat(self.key).st_mode)))

    def test_aDamagedKeyIsRefusedAndLeftAlone(self):
        for text in ("", "\n", "0" * 63, "0" * 65, "g" * 64, "0" * 64 + "\n\n", "0" * 64 + "x", "A" * 64):
            write(self.key, text)
            os.chmod(self.key, 0o600)
            self.refused(KEY_UNUSABLE)
            self.assertEqual(text, read(self.key))

    def test_aKeyThatIsNoFileIsRefused(self):
        os.remove(self.key)
        os.chmod(self.write("elsewhere", "0" * 64), 0o600)
        for make in (lambda: os.symlink("../../elsewhere", self.key), lambda: os.symlink("../../absent", self.key),
                     lambda: os.mkfifo(self.key)):
            make()
            self.refused(KEY_UNUSABLE)
            os.remove(self.key)
        os.mkdir(self.key)
        self.refused(KEY_UNUSABLE)
        self.assertFalse(os.path.exists(self.path("absent")))

    def test_aKeyThatCannotBeMadeIsAnAnswer(self):
        for value in (self.write("file", "x"), "/proc/nowhere"):
            os.environ["XDG_DATA_HOME"] = value
            self.refused(KEY_UNUSABLE)

    def test_decryptingMakesNoKey(self):
        self.encrypted()
        os.remove(self.key)
        self.refused(KEY_UNUSABLE, encrypt.decryptApk)
        self.assertFalse(os.path.exists(self.key))

    def test_theSecretShowsInNoCommandLineNorEnvironment(self):
        program = self.write("bin/openssl", '#!/bin/sh\ntr "\\0" "\\n" </proc/$$/cmdline >>"$0.seen"\n'
                             'tr "\\0" "\\n" </proc/$$/environ >>"$0.seen"\nexec %s "$@"\n' % openssl())
        os.chmod(program, 0o755)
        child = python(ENCRYPT, self.apk, scripts=self.scripts,
                       environment={"PATH": self.path("bin") + ":/usr/bin:/bin"})
        self.assertEqual(("", ""), child.communicate())
        secret = binascii.unhexlify(read(self.key).strip())
        salt = HEADER.unpack(contents(self.apk)["assets/text/story_en.txt"][:HEADER.size])[1]
        phrase = hmac.new(secret, "quenzo asset encryption" + salt, hashlib.sha256).hexdigest()
        seen = read(program + ".seen")
        self.assertIn("-aes-256-ctr\n", seen)
        for text in (phrase, read(self.key).strip(), secret):
            self.assertNotIn(text, seen)


if __name__ == "__main__":
    unittest.main()
