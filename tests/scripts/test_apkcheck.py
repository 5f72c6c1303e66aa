# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Whether a package is whole, aligned and signed: checkApk(apkFile)."""
import os
import subprocess
import unittest

from support import APK, FolderCase, Raw, raw_archive, read, write

import apkcheck


class Check(FolderCase):
    def check(self, *entries):
        return apkcheck.checkApk(raw_archive(self.path("x.apk"), list(entries)))

    def test_theSampleIsWholeAlignedAndUnsigned(self):
        answer = apkcheck.checkApk(APK)
        self.assertEqual(("0", "", "no"), (answer["misaligned"], answer["names"], answer["signature"]))
        self.assertEqual("12", answer["entries"])

    def test_verdictOnAlignmentIsZipaligns(self):
        if not os.path.exists("/usr/bin/zipalign"):
            self.skipTest("zipalign is not installed")
        rows = [[Raw("n" * length, "stored")] for length in range(1, 9)]
        rows += [[Raw("lib/x.so", "stored", 0)], [Raw("lib/x.so", "deflated", 8)], [Raw("d/", "")],
                 [Raw("n" * (4096 - 30), "x"), Raw("y", "x")], [Raw("n" * (4096 - 33) + ".so", "x")],
                 [Raw("nn", ""), Raw("abcd.txt", "x", 8)], []]
        verdicts = set()
        for row in rows:
            mine = self.check(*row)["misaligned"] == "0"
            with open(os.devnull, "w") as nowhere:
                theirs = subprocess.call(["/usr/bin/zipalign", "-c", "-p", "4", self.path("x.apk")], stdout=nowhere)
            self.assertEqual(not theirs, mine, [raw.name[-9:] for raw in row])
            verdicts.add(mine)
        self.assertEqual(set([True, False]), verdicts)

    def test_theFirstNamesAreTold(self):
        answer = self.check(*[Raw("%03d" % number, "x") for number in range(40)])
        self.assertEqual("40", answer["misaligned"])
        self.assertTrue(answer["names"].startswith("000, 001, "), answer["names"])
        self.assertEqual(20, len(answer["names"].split(", ")))

    def test_aSignatureShowsInBothForms(self):
        for name, wanted in (("META-INF/CERT.SF", "yes"), ("META-INF/X.RSA", "yes"), ("META-INF/MANIFEST.MF", "no"),
                             ("META-INF/services/x", "no")):
            self.assertEqual(wanted, self.check(Raw(name, "x"))["signature"], name)
        data = read(raw_archive(self.path("x.apk"), [Raw("a", "x")]))
        start = data.index("PK\1\2")
        block = "........APK Sig Block 42"
        end = data.index("PK\5\6")
        place = start + len(block)
        moved = data[:start] + block + data[start:end + 16] + chr(place) + "\0\0\0" + data[end + 20:]
        self.assertEqual("yes", apkcheck.checkApk(write(self.path("y.apk"), moved))["signature"])

    def test_damageIsAnError(self):
        self.assertIn("damaged", self.check(Raw("a", "text", crc=1))["error"])
        self.assertIn("not a zip archive", apkcheck.checkApk(write(self.path("y.apk"), "text"))["error"])
        self.assertIn("No such file", apkcheck.checkApk(self.path("absent"))["error"])


if __name__ == "__main__":
    unittest.main()
