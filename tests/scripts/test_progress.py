# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""How far the work is, for a host that asks with QUENZO_PROGRESS."""
import os
import struct
import tempfile
import unittest

from support import Raw, raw_archive, write
from test_encrypt import Encrypting

import encrypt
import pytoolForQt
import quenzo_progress


class Progress(Encrypting):
    def setUp(self):
        Encrypting.setUp(self)
        self.file = tempfile.TemporaryFile()
        self.addCleanup(self.file.close)
        self.set_variable("QUENZO_PROGRESS", str(self.file.fileno()))
        self.addCleanup(setattr, quenzo_progress, "_tell", quenzo_progress._tell)
        self.addCleanup(setattr, quenzo_progress, "_STEP", quenzo_progress._STEP)
        quenzo_progress._STEP = 1
        self.told, self.honest = [], quenzo_progress._tell

        def noting():
            self.honest()
            self.told.append(self.numbers())

        quenzo_progress._tell = noting
        self.src = self.path("src")
        for number in range(30):
            write(os.path.join(self.src, "assets", "%02d.txt" % number), "text %d " % number * 3000)
        write(os.path.join(self.src, "large.bin"), os.urandom(1 << 20))

    def numbers(self):
        os.lseek(self.file.fileno(), 0, os.SEEK_SET)
        return struct.unpack("=QQ", os.read(self.file.fileno(), 16))

    def assert_counted(self, work, *arguments):
        del self.told[:]
        self.assertIn(work(*arguments), (0, 1))
        totals = set(total for unused, total in self.told)
        self.assertEqual(1, len(totals), totals)
        total = totals.pop()
        steps = [done for done, unused in self.told]
        self.assertEqual(sorted(steps), steps)
        self.assertEqual((0, total), (steps[0], steps[-1]))
        self.assertTrue(any(total // 5 < step < 4 * total // 5 for step in steps), steps)

    def test_everyLongWorkCountsFromNothingToAll(self):
        archive, sdk = self.path("a.apk"), self.path("sdk.zip")
        self.assert_counted(pytoolForQt.zip, self.src, archive, "")
        for work in (pytoolForQt.zipLike, pytoolForQt.zipOnto):
            self.assert_counted(work, self.src, self.path("b.apk"), "", archive)
        self.assert_counted(pytoolForQt.unZip, archive, self.path("out"), "NULL")
        config = "<sdk id='7' name='n' version='1'><files><file>f0</file></files></sdk>"
        raw_archive(sdk, [Raw("config.xml", config)] +
                    [Raw("f%d" % number, "x" * 20000) for number in range(9)])
        self.assert_counted(pytoolForQt.importSDK, sdk, self.path("sdk"))
        self.assert_counted(encrypt.encryptApk, ".", archive)
        self.assert_counted(encrypt.decryptApk, ".", archive)

    def test_nobodyElseSeesAnything(self):
        quenzo_progress._tell = self.honest
        for value in ("", "no number", "-1"):
            os.environ["QUENZO_PROGRESS"] = value
            pytoolForQt.zip(self.src, self.path("a.zip"), "")
        self.file.seek(0)
        self.assertEqual("", self.file.read())
        self.assertEqual("", self.said.getvalue())

    def test_aFileThatIsGoneDisturbsNothing(self):
        quenzo_progress._tell = self.honest
        os.environ["QUENZO_PROGRESS"] = "987"
        self.assertEqual(0, pytoolForQt.zip(self.src, self.path("a.zip"), ""))


if __name__ == "__main__":
    unittest.main()
