# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""What a host that asks with QUENZO_MESSAGES is told, and how QUENZO_PROGRESS ends the work."""
import json
import os
import struct
import tempfile
import unittest

from support import APK, tree
from test_encrypt import Encrypting

import encrypt
import keys
import pytoolForQt
import start


class Messages(Encrypting):
    def setUp(self):
        Encrypting.setUp(self)
        self.file = tempfile.TemporaryFile()
        self.addCleanup(self.file.close)

    def told(self):
        os.lseek(self.file.fileno(), 0, os.SEEK_SET)
        return [json.loads(line) for line in os.read(self.file.fileno(), 1 << 16).splitlines()]

    def ask(self):
        self.set_variable("QUENZO_MESSAGES", str(self.file.fileno()))

    def test_failuresAreHandedOverAndNotPrinted(self):
        self.ask()
        archive = self.write("text", "no archive")
        self.assertEqual(encrypt.DAMAGED, encrypt.encryptApk(".", archive))
        self.assertEqual(pytoolForQt.DAMAGED, pytoolForQt.importSDK(archive, self.path("out")))
        self.assertRaises(Exception, pytoolForQt.unZip, archive, self.path("out"))
        self.assertIn("error", keys.checkKey(archive, ""))
        self.assertEqual([{"failure": "this is not a zip archive", "kind": "bad-input"}] * 4, self.told())
        self.assertEqual("", self.said.getvalue())

    def test_kindsTellFailuresApart(self):
        self.ask()
        start.export_develop_info(999, self.path("out"))
        keys.showKey(self.path("absent"), 0)
        keys.newKey(self.write("key", ""))
        self.assertEqual(["not-found", "not-found", "refused"], [message["kind"] for message in self.told()])

    def test_warningsAreHandedOver(self):
        self.ask()
        apk = self.write("a.apk", open(APK, "rb").read())
        self.assertEqual(0, encrypt.encryptApk(".", apk, "", u"*.\xe9"))
        self.assertIn({"warning": u"no asset is called like '*.\xe9'"}, self.told())
        self.assertEqual("", self.said.getvalue())

    def test_withoutAHostThatAsksTheyArePrinted(self):
        for value in ("", "no number", "-1", "987", "9" * 30):
            self.set_variable("QUENZO_MESSAGES", value)
            self.said.truncate(0)
            encrypt.encryptApk(".", self.write("text", "no archive"))
            self.assertEqual("encryptApk: this is not a zip archive\n", self.said.getvalue().lstrip("\0"))

    def test_workThatIsAskedToEndLeavesWhatWasThere(self):
        self.file.write(struct.pack("=QQQ", 0, 0, 1))
        self.file.flush()
        self.write("src/large", os.urandom(1 << 20))
        archive = self.path("a.zip")
        pytoolForQt.zip(self.path("src"), archive, "")
        self.write("out/large", "before")
        before = tree(self.folder)
        self.set_variable("QUENZO_PROGRESS", str(self.file.fileno()))
        self.assertRaises(Exception, pytoolForQt.zip, self.path("src"), self.path("b.zip"), "")
        self.assertRaises(Exception, pytoolForQt.unZip, archive, self.path("out"))
        self.assertEqual(encrypt.REFUSED, encrypt.encryptApk(".", archive))
        self.assert_unchanged(before)


if __name__ == "__main__":
    unittest.main()
