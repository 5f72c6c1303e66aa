# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""What tests of encryption share: an APK, a key, and the answers."""
import os
import shutil
import struct
import subprocess

from support import APK, SCRIPTS, FolderCase, Raw, parsed, raw_archive, read, tree, write

import encrypt
import quenzo_key

DONE, NO_APK, DAMAGED, NOTHING_THERE, WRONG_FORM, KEY_UNUSABLE, CIPHER_FAILED, NOT_AUTHENTIC, REFUSED = range(9)
HEADER = struct.Struct("<8s16s8sQQQ8s")
ENCRYPT = "import sys, encrypt; sys.exit(encrypt.encryptApk('.', sys.argv[1]))"


class Encrypting(FolderCase):
    def setUp(self):
        FolderCase.setUp(self)
        self.scripts = self.path("Script")
        shutil.copytree(SCRIPTS, self.scripts, ignore=shutil.ignore_patterns("*.pyc", "*.key"))
        self.key, self.apk = self.path("data", "quenzo", "encrypt.key"), self.path("apk", "game.apk")
        self.beside = self.path("Script", "encrypt.key")
        self.addCleanup(setattr, quenzo_key, "BESIDE_SCRIPTS", quenzo_key.BESIDE_SCRIPTS)
        quenzo_key.BESIDE_SCRIPTS = self.beside
        self.set_variable("QUENZO_KEY", "")
        self.set_variable("XDG_DATA_HOME", self.path("data"))
        self.write_key(self.key, "ab" * 32)
        write(self.apk, read(APK))

    def set_variable(self, name, value):
        before = os.environ.get(name)
        os.environ[name] = value
        self.addCleanup(lambda: os.environ.pop(name) if before is None else os.environ.update({name: before}))

    def write_key(self, path, text):
        os.chmod(write(path, text + "\n"), 0o600)
        return path

    def made(self, **assets):
        """Writes an APK of those assets and a manifest."""
        raw_archive(self.apk, [Raw("AndroidManifest.xml", "manifest", 8)] +
                    [Raw("assets/" + name, data) for name, data in sorted(assets.items())])

    def encrypted(self):
        self.assertEqual(DONE, encrypt.encryptApk(".", self.apk), self.said.getvalue())

    def decrypted(self):
        self.assertEqual(DONE, encrypt.decryptApk(".", self.apk), self.said.getvalue())

    def refused(self, answer, function=encrypt.encryptApk, apk=None):
        """That answer, a line that says why, and not a byte changed."""
        before = tree(self.path("apk"))
        self.said.truncate(0)
        self.assertEqual(answer, function(".", apk or self.apk), self.said.getvalue())
        self.assert_same_tree(before, tree(self.path("apk")))
        self.assertTrue(self.said.getvalue().startswith(function.__name__ + ": "))
        self.assertEqual(1, self.said.getvalue().count("\n"))

    def altered(self, change):
        """Writes the APK anew with change(entries), entries being a list of [name, content]."""
        entries = [[one.name, one.data] for one in parsed(self.apk)]
        raw_archive(self.apk, [Raw(name, data) for name, data in change(entries) or entries])


def openssl():
    return subprocess.check_output(["sh", "-c", "command -v openssl"]).strip()
