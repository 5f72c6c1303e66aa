# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Encrypting an APK's assets and back: encryptApk(runPath, apkFile), decryptApk(runPath, apkFile)."""
import binascii
import hashlib
import hmac
import os
import shutil
import stat
import struct
import subprocess
import unittest

from support import APK, Raw, as_plain_user, contents, full_disk, killed_when, parsed, python, raw_archive
from support import read, tree, write
from encryptcase import DONE, NO_APK, DAMAGED, NOTHING_THERE, WRONG_FORM, KEY_UNUSABLE, CIPHER_FAILED
from encryptcase import NOT_AUTHENTIC, REFUSED, HEADER, ENCRYPT, Encrypting, openssl

import encrypt
import quenzo_assets
import quenzo_cipher

NOBODY = 65534


def is_asset(name):
    return name.startswith("assets/") and not name.endswith("/")


class RoundTrip(Encrypting):
    def test_everyAssetOfTheSampleComesBack(self):
        self.encrypted()
        before, after = contents(APK), contents(self.apk)
        self.assertEqual(sorted(before), sorted(after))
        for name, data in before.items():
            if is_asset(name):
                self.assertNotIn(data[:16], after[name])
                self.assertEqual(len(data) + HEADER.size + 32, len(after[name]))
            else:
                self.assertEqual(data, after[name])
        self.decrypted()
        self.assertEqual(before, contents(self.apk))
        self.assertEqual(["game.apk"], os.listdir(self.path("apk")))
        self.assertEqual("", self.said.getvalue())

    def test_decryptedSampleIsTheSampleByteByByte(self):
        self.encrypted()
        self.decrypted()
        self.assertEqual(read(APK), read(self.apk))

    def test_sameContentsAndKeyGiveTheSameBytes(self):
        before = read(self.apk)
        self.encrypted()
        first = read(self.apk)
        write(self.apk, before)
        self.encrypted()
        self.assertTrue(first == read(self.apk), "the two differ")

    def test_otherContentsNeverShareASalt(self):
        salts = set()
        for assets in ({"a": "1", "b": "2"}, {"a": "1", "b": "3"}, {"a": "12"}, {"a": "2", "b": "1"}, {"a1": "", "b": "2"}):
            self.made(**assets)
            self.encrypted()
            salts.update(HEADER.unpack(data[:HEADER.size])[1] for name, data in contents(self.apk).items() if is_asset(name))
        self.assertEqual(5, len(salts))

    def test_assetsOfEverySizeComeBack(self):
        assets = dict(("s%d" % size, os.urandom(size)) for size in (
            0, 1, 15, 16, 17, 4095, (1 << 18) - 1, 1 << 18, (1 << 18) + 1, 3 << 18))
        assets["zeros"] = "\0" * 1000
        self.made(**assets)
        before = contents(self.apk)
        self.encrypted()
        self.decrypted()
        self.assertEqual(before, contents(self.apk))

    def test_assetsThatAreAllEmptyComeBack(self):
        self.made(a="", b="")
        before = contents(self.apk)
        self.encrypted()
        self.decrypted()
        self.assertEqual(before, contents(self.apk))

    def test_namesWithQuotesNewlinesAndOtherLettersComeBack(self):
        self.apk = self.path("apk", u"o'ne \"two\"\nигра.apk".encode("utf-8"))
        self.made(**{"it's": "1", "new\nline": "2", u"звук".encode("utf-8"): "3", "-in": "4"})
        before = contents(self.apk)
        self.encrypted()
        self.decrypted()
        self.assertEqual(before, contents(self.apk))

    def test_namesThatAreNotUtf8KeepTheirBytes(self):
        names = ["assets/\x81", "assets/\xcf\xd6", "res/\x81\xff"]
        for system in (0, 3):
            raw_archive(self.apk, [Raw(name, name, system=system) for name in names])
            self.encrypted()
            self.assertEqual(sorted(names), sorted(contents(self.apk)))
            self.decrypted()
            self.assertEqual(dict((name, name) for name in names), contents(self.apk))
            self.assertEqual([0] * 3, [one.flags for one in parsed(self.apk)])

    def test_onlyFilesBelowAssetsAreEncrypted(self):
        names = ["assets/a", "assets/d/b", "assetsx", "Assets/a", "res/assets/a", "assets"]
        for kept in (names[:5], names[2:5]):
            raw_archive(self.apk, [Raw(name, name) for name in kept] + [Raw("assets/void/")])
            if kept[0] != "assets/a":
                self.refused(NOTHING_THERE)
                continue
            self.encrypted()
            found = contents(self.apk)
            self.assertEqual(["assets/a", "assets/d/b"], sorted(name for name in found if found[name] != name and name
                                                                [-1] != "/"))
            self.assertIn("assets/void/", found)

    def test_packingOfEveryEntryIsKept(self):
        self.encrypted()
        before = dict((one.name, one) for one in parsed(APK))
        for one in parsed(self.apk):
            if not is_asset(one.name):
                self.assertEqual((before[one.name].method, before[one.name].packed), (one.method, one.packed))
            if one.method == 0:
                self.assertEqual(0, one.start % (16384 if one.name.endswith(".so") else 4), one.name)

    def test_signatureFilesAreDropped(self):
        signature = ["META-INF/MANIFEST.MF", "META-INF/CERT.SF", "META-INF/CERT.RSA", "META-INF/A.DSA",
                     "META-INF/B.EC", "META-INF/cert.rsa"]
        kept = ["META-INF/services/x.Y", "META-INF/sub/CERT.RSA", "META-INF/NOTICE.txt", "META-INF/CERT.RSA.txt",
                "x/META-INF/CERT.SF"]
        raw_archive(self.apk, [Raw(name, "content") for name in signature + kept + ["assets/a"]])
        self.encrypted()
        self.assertEqual(sorted(kept + ["assets/a"]), sorted(contents(self.apk)))
        self.altered(lambda entries: entries + [["META-INF/CERT.SF", "signed since"]])
        self.decrypted()
        self.assertEqual(sorted(kept + ["assets/a"]), sorted(contents(self.apk)))

    def test_formIsTheDocumentedOne(self):
        """Decrypts with openssl and the hash functions alone."""
        self.encrypted()
        secret = binascii.unhexlify(read(self.key).strip())
        stream, wanted = {}, {}
        for name, data in contents(self.apk).items():
            if not is_asset(name):
                continue
            magic, salt, stream_salt, offset, length, total, rest = HEADER.unpack(data[:HEADER.size])
            tag_key = hmac.new(secret, "quenzo asset authentication" + salt, hashlib.sha256).digest()
            tag = hmac.new(tag_key, struct.pack("<Q", len(name)) + name + data[:-32], hashlib.sha256).digest()
            fingerprint = hmac.new(secret, "quenzo key fingerprint", hashlib.sha256).digest()[:7]
            self.assertEqual(("QZASSET1", fingerprint, tag), (magic, rest[1:], data[-32:]))
            stream[offset] = data[HEADER.size:-32]
            wanted[offset] = contents(APK)[name]
            self.assertEqual(length, len(wanted[offset]))
        cipher = "".join(stream[offset] + "\0" * (-len(stream[offset]) % 16) for offset in sorted(stream))
        self.assertEqual(total, len(cipher))
        phrase = hmac.new(secret, "quenzo asset encryption" + salt, hashlib.sha256).hexdigest()
        write(self.path("cipher"), "Salted__" + stream_salt + cipher)
        plain = subprocess.check_output(["openssl", "enc", "-d", "-aes-256-ctr", "-pbkdf2", "-md", "sha256", "-iter",
                                         "1000", "-pass", "pass:" + phrase, "-in", self.path("cipher")])
        for offset, content in wanted.items():
            self.assertEqual(content, plain[offset:offset + len(content)])


class Tampering(Encrypting):
    def setUp(self):
        Encrypting.setUp(self)
        self.made(a="first asset", b="the second asset, a longer one", c="third")
        self.plain = contents(self.apk)
        self.encrypted()
        self.whole = read(self.apk)

    def assert_noticed(self, change):
        write(self.apk, self.whole)
        self.altered(change)
        self.refused(NOT_AUTHENTIC, encrypt.decryptApk)

    def test_anUntouchedCopyDecrypts(self):
        self.altered(lambda entries: None)
        self.decrypted()
        self.assertEqual(self.plain, contents(self.apk))

    def test_everyByteOfAnAssetCounts(self):
        for position in range(len(dict(contents(self.apk))["assets/b"])):
            def flip(entries):
                data = entries[2][1]
                entries[2][1] = data[:position] + chr(ord(data[position]) ^ 1) + data[position + 1:]
            self.assert_noticed(flip)

    def test_assetsThatChangedPlacesAreNoticed(self):
        def swap(entries):
            entries[1][1], entries[2][1] = entries[2][1], entries[1][1]
        self.assert_noticed(swap)

    def test_aRenamedAssetIsNoticed(self):
        self.assert_noticed(lambda entries: entries[1].__setitem__(0, "assets/z"))

    def test_aMissingAssetIsNoticed(self):
        for number in (1, 2, 3):
            self.assert_noticed(lambda entries: entries[:number] + entries[number + 1:])

    def test_anAddedAssetIsNoticed(self):
        self.assert_noticed(lambda entries: entries + [["assets/new", "plain"]])
        self.assert_noticed(lambda entries: entries + [["assets/new", "x" * 200]])
        self.assert_noticed(lambda entries: entries + [["assets/new", ""]])
        self.assert_noticed(lambda entries: entries + [["assets/copy", entries[1][1]]])

    def test_aShorterOrLongerAssetIsNoticed(self):
        for length in (0, 1, 63, 64, 95, 96, 100, -1):
            self.assert_noticed(lambda entries: entries[2].__setitem__(1, entries[2][1][:length]))
        self.assert_noticed(lambda entries: entries[2].__setitem__(1, entries[2][1] + "x"))

    def test_anAssetOfAnotherEncryptionIsNoticed(self):
        self.made(a="first asset", b="the second asset, a longer one", c="another third")
        self.encrypted()
        other = contents(self.apk)["assets/a"]
        self.assert_noticed(lambda entries: entries[1].__setitem__(1, other))

    def test_anotherKeyIsNamedAsSuch(self):
        self.write_key(self.key, "0" * 64)
        self.refused(NOT_AUTHENTIC, encrypt.decryptApk)
        named = [binascii.hexlify(hmac.new(secret, "quenzo key fingerprint", hashlib.sha256).digest()[:7])
                 for secret in (binascii.unhexlify("ab" * 32), "\0" * 32)]
        self.assertIn("encrypted with the key %s, and this is the key %s" % tuple(named), self.said.getvalue())

    def test_packagesWithoutAFingerprintDecryptAndNoticeAnotherKey(self):
        """What the first versions made."""
        self.made(a="first asset", b="the second asset, a longer one", c="third")
        fingerprint_of = quenzo_assets.fingerprint_of
        self.addCleanup(setattr, quenzo_assets, "fingerprint_of", fingerprint_of)
        quenzo_assets.fingerprint_of = lambda secret: "\0" * 7
        self.encrypted()
        quenzo_assets.fingerprint_of = fingerprint_of
        self.assertEqual("\0" * 7, HEADER.unpack(contents(self.apk)["assets/a"][:HEADER.size])[-1][1:])
        self.write_key(self.key, "0" * 64)
        self.refused(NOT_AUTHENTIC, encrypt.decryptApk)
        self.assertIn("altered, or encrypted with another key", self.said.getvalue())
        self.write_key(self.key, "ab" * 32)
        self.decrypted()
        self.assertEqual(self.plain, contents(self.apk))


class Refusals(Encrypting):
    def test_aSecondRunIsRefused(self):
        self.encrypted()
        self.refused(WRONG_FORM)

    def test_decryptingWhatIsNotEncryptedIsRefused(self):
        self.refused(WRONG_FORM, encrypt.decryptApk)

    def test_anApkThatIsHalfEncryptedIsNotEncryptedAgain(self):
        self.encrypted()
        self.altered(lambda entries: entries + [["assets/new", "plain"]])
        self.refused(WRONG_FORM)

    def test_aMissingApkOrAFolderIsAnAnswer(self):
        for function in (encrypt.encryptApk, encrypt.decryptApk):
            self.refused(NO_APK, function, self.path("apk", "absent.apk"))
            self.assertEqual(NO_APK, function(".", self.path("apk")))

    def test_aPipeOrDeviceIsAnAnswerAtOnce(self):
        os.mkfifo(self.path("apk", "pipe"))
        for function in (encrypt.encryptApk, encrypt.decryptApk):
            for path in (self.path("apk", "pipe"), "/dev/zero"):
                self.assertEqual(NO_APK, function(".", path))
        self.assertTrue(stat.S_ISFIFO(os.stat(self.path("apk", "pipe")).st_mode))

    def test_whatIsNoWholeArchiveIsDamaged(self):
        whole = read(APK)
        for data in ("", "text", whole[:-1], whole[:20000], "PK\5\6" + "\xff" * 18):
            write(self.apk, data)
            self.refused(DAMAGED)
            self.refused(DAMAGED, encrypt.decryptApk)
        for name in ("assets/a", "classes.dex"):
            raw_archive(self.apk, [Raw("assets/ok", "x"), Raw(name, "x" * 50, crc=1)])
            self.refused(DAMAGED)

    def test_anApkWithoutAssetsIsAnAnswer(self):
        for entries in ([], [Raw("AndroidManifest.xml", "x")], [Raw("assets/"), Raw("assets/d/")]):
            raw_archive(self.apk, entries)
            self.refused(NOTHING_THERE)

    def test_hostileApksAreRefused(self):
        for evil in (Raw("../x", "x"), Raw("assets/../../x", "x"), Raw("assets/a", "2"), Raw("e", "x", flags=1)):
            raw_archive(self.apk, [Raw("assets/a", "1"), evil])
            self.refused(REFUSED)

    def test_whatIsNoPathLeadsToNoFile(self):
        for value in ("", None, 1.5, [], "a\0b"):
            self.assertEqual(NO_APK, encrypt.encryptApk(".", value))
            self.assertEqual(NO_APK, encrypt.decryptApk(".", value))


class Rights(Encrypting):
    def setUp(self):
        Encrypting.setUp(self)
        os.chmod(self.folder, 0o777)
        os.chmod(self.scripts, 0o777)
        os.chmod(self.path("apk"), 0o777)
        shutil.rmtree(self.path("data"))

    def test_rightsAndOwnerOfTheApkAreKept(self):
        for mode in (0o640, 0o600, 0o755, 0o666):
            write(self.apk, read(APK))
            os.chmod(self.apk, mode)
            if os.geteuid() == 0:
                os.chown(self.apk, 65534, 65534)
            wanted = os.stat(self.apk)
            for function in (encrypt.encryptApk, encrypt.decryptApk):
                self.assertEqual(DONE, function(".", self.apk))
                found = os.stat(self.apk)
                self.assertEqual((oct(wanted.st_mode), wanted.st_uid, wanted.st_gid),
                                 (oct(found.st_mode), found.st_uid, found.st_gid))

    def test_aLinkToTheApkStaysALink(self):
        os.symlink("game.apk", self.path("apk", "link.apk"))
        self.assertEqual(DONE, encrypt.encryptApk(".", self.path("apk", "link.apk")))
        self.assertEqual("game.apk", os.readlink(self.path("apk", "link.apk")))
        self.refused(WRONG_FORM)

    def plain_answer(self):
        before = tree(self.path("apk"))
        answer = as_plain_user(lambda: encrypt.encryptApk(".", self.apk))
        self.assert_same_tree(before, tree(self.path("apk")))
        return int(answer)

    def test_aWriteProtectedApkIsLeftAlone(self):
        os.chmod(self.apk, 0o444)
        self.assertEqual(NO_APK, self.plain_answer())

    def test_anApkInAClosedFolderIsLeftAlone(self):
        os.chmod(self.apk, 0o666)
        os.chmod(self.path("apk"), 0o555)
        self.addCleanup(os.chmod, self.path("apk"), 0o777)
        self.assertEqual(NO_APK, self.plain_answer())

    def test_aClosedFolderForDataGivesNoKey(self):
        os.chmod(self.apk, 0o666)
        os.mkdir(self.path("data"), 0o555)
        self.assertEqual(KEY_UNUSABLE, self.plain_answer())

    @unittest.skipUnless(os.geteuid() == 0, "only root can give a key file to somebody else")
    def test_aKeyOfSomebodyElseIsRefused(self):
        os.chmod(self.apk, 0o666)
        self.write_key(self.key, "0" * 64)
        self.assertEqual(KEY_UNUSABLE, self.plain_answer())


    @unittest.skipUnless(os.geteuid() == 0, "only root can give a key file to somebody else")
    def test_aKeyBesideTheScriptsThatIsSomebodyElsesKeepsNobodyFromAnOwn(self):
        self.write_key(self.beside, "0" * 64)
        os.chmod(self.apk, 0o666)
        self.assertEqual(str(DONE), as_plain_user(lambda: encrypt.encryptApk(".", self.apk)))
        self.assertEqual(NOBODY, os.stat(self.key).st_uid)
        self.assertEqual("0" * 64 + "\n", read(self.beside))


class Breakdown(Encrypting):
    def with_openssl(self, text):
        program = self.write("bin/openssl", text)
        os.chmod(program, 0o755)
        self.addCleanup(setattr, quenzo_cipher, "PROGRAM", quenzo_cipher.PROGRAM)
        quenzo_cipher.PROGRAM = program

    def test_aMissingOpensslIsAnAnswer(self):
        self.addCleanup(setattr, quenzo_cipher, "PROGRAM", quenzo_cipher.PROGRAM)
        quenzo_cipher.PROGRAM = self.path("absent")
        self.refused(CIPHER_FAILED)

    def test_aFailingOpensslIsAnAnswerWithItsText(self):
        self.with_openssl("#!/bin/sh\necho no such cipher >&2\nexit 3\n")
        self.refused(CIPHER_FAILED)
        self.assertIn("no such cipher", self.said.getvalue())

    def test_anOpensslThatIgnoresItsInputFailsWithoutHarm(self):
        self.with_openssl("#!/bin/sh\nexec <&-\nexit 0\n")
        self.refused(CIPHER_FAILED)

    def test_anOpensslThatWritesRubbishIsFoundOutBeforeTheApkIsReplaced(self):
        # Encrypts honestly and spoils one byte afterwards; decrypting gives that byte back spoilt.
        self.with_openssl('#!/bin/sh\nfor last; do :; done\n%s "$@" || exit\n[ "$2" = -e ] || case "$*" in *" -e "*) '
                          'printf X | dd of="$last" bs=1 seek=20 conv=notrunc 2>/dev/null;; esac\n' % openssl())
        self.refused(NOT_AUTHENTIC)

    def test_aHostThatIgnoresItsChildrenGetsTheTruth(self):
        code = "import signal; signal.signal(signal.SIGCHLD, signal.SIG_IGN)\n"
        child = python(code + ENCRYPT, self.apk, scripts=self.scripts)
        self.assertEqual("", child.communicate()[1])
        self.assertEqual(DONE, child.returncode)
        self.decrypted()
        self.assertEqual(contents(APK), contents(self.apk))

    def test_aFullDiskLeavesTheApk(self):
        # An asset of 2 MiB, packed to nearly nothing: the more room, the later the step that finds the disk full.
        for room, answer in ((1, NO_APK), (3, CIPHER_FAILED), (5, NO_APK)):
            with full_disk(self.path("small"), room << 20) as filled_up_by_all:
                if room > 1 and not filled_up_by_all:
                    continue  # A limit on single files knows the first step only.
                self.apk = self.path("small", "game.apk")
                raw_archive(self.apk, [Raw("assets/a", "\0" * (2 << 20), 8)])
                before = tree(self.path("small"))
                self.assertEqual(answer, encrypt.encryptApk(".", self.apk), self.said.getvalue())
                self.assert_same_tree(before, tree(self.path("small")))

    def test_aRunKilledAtAnyMomentLeavesAWholeApk(self):
        self.made(a=os.urandom(16 << 20), b="text" * 99)
        plain, before = read(self.apk), contents(self.apk)
        folder = self.path("apk")

        def grown(*wanted):
            def condition():
                for name in tree_names(folder):
                    if os.path.basename(name).endswith(wanted) and os.path.getsize(name) > 1 << 20:
                        return True
                return False
            return condition

        for moment in (grown("plain"), grown("cipher"), grown(".tmp"), grown("authentic"), grown("decrypted")):
            child = python(ENCRYPT, self.apk, scripts=self.scripts)
            self.assertTrue(killed_when(child, moment), "the run ended before it could be killed")
            self.assertTrue(plain == read(self.apk))
            for name in os.listdir(folder):
                if os.path.isdir(os.path.join(folder, name)):
                    self.assertEqual(0o700, stat.S_IMODE(os.stat(os.path.join(folder, name)).st_mode))
                    shutil.rmtree(os.path.join(folder, name), True)
                elif name != "game.apk":
                    os.remove(os.path.join(folder, name))
        self.encrypted()
        self.decrypted()
        self.assertTrue(before == contents(self.apk))

    def test_twoRunsOnOneApkLeaveItEncryptedOnce(self):
        children = [python(ENCRYPT, self.apk, scripts=self.scripts) for unused in range(4)]
        for child in children:
            child.communicate()
        answers = [child.returncode for child in children]
        self.assertIn(DONE, answers)
        self.assertEqual(set(), set(answers) - set([DONE, WRONG_FORM]))
        self.decrypted()
        self.assertEqual(contents(APK), contents(self.apk))


def tree_names(folder):
    try:
        return [os.path.join(where, name) for where, unused, names in os.walk(folder) for name in names]
    except OSError:
        return []


if __name__ == "__main__":
    unittest.main()
