# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Assets that an encryption leaves as they are: encryptApk(runPath, apkFile, keyFile, *excluded)."""
import unittest

from support import contents, parsed, raw_archive, read, Raw
from encryptcase import DONE, NOT_AUTHENTIC, NOTHING_THERE, Encrypting

import encrypt


class Excluding(Encrypting):
    def setUp(self):
        Encrypting.setUp(self)
        self.plain = {"assets/a.json": "one", "assets/web/b.json": "two", "assets/web/page.html": "three",
                      "assets/story": "four", u"assets/имя.json".encode("utf-8"): "five"}
        raw_archive(self.apk, [Raw("AndroidManifest.xml", "manifest", 8)] +
                    [Raw(name, data, 8) for name, data in sorted(self.plain.items())])

    def left(self, *patterns):
        """The names below assets/ that an encryption with those patterns leaves as they are."""
        self.assertEqual(DONE, encrypt.encryptApk(".", self.apk, "", *patterns), self.said.getvalue())
        found = contents(self.apk)
        return sorted(name for name, data in self.plain.items() if found[name] == data)

    def test_aPatternWithoutASlashIsForTheLastPart(self):
        self.assertEqual(["assets/a.json", "assets/web/b.json", u"assets/имя.json".encode("utf-8")], self.left("*.json"))

    def test_aPatternWithASlashIsForTheWholeName(self):
        self.assertEqual(["assets/web/b.json", "assets/web/page.html"], self.left("assets/web/*"))

    def test_severalPatternsAddUp(self):
        self.assertEqual(["assets/a.json", "assets/story"], self.left("a.json", u"stor[xy]"))

    def test_theEntryIsTakenOverAsItWasPacked(self):
        before = [(one.method, one.packed, one.crc) for one in parsed(self.apk) if one.name == "assets/a.json"]
        self.left("a.json")
        self.assertEqual(before, [(one.method, one.packed, one.crc) for one in parsed(self.apk)
                                  if one.name == "assets/a.json"])

    def test_decryptingGivesTheWholeApkBack(self):
        before = contents(self.apk)
        self.left("*.json")
        self.decrypted()
        self.assertEqual(before, contents(self.apk))

    def test_aPatternThatFitsNothingIsTold(self):
        self.assertEqual(["assets/story"], self.left("story", "*.JSON", "assets/nothing*"))
        self.assertEqual("encryptApk: no asset is called like '*.JSON'\n"
                         "encryptApk: no asset is called like 'assets/nothing*'\n", self.said.getvalue())

    def test_excludingEverythingIsAnAnswer(self):
        self.refused(NOTHING_THERE, lambda run_path, apk: encrypt.encryptApk(run_path, apk, "", "*"))

    def refused(self, answer, function):
        before = read(self.apk)
        self.assertEqual(answer, function(".", self.apk), self.said.getvalue())
        self.assertEqual(before, read(self.apk))

    def test_contentOfAnExcludedAssetMayChange(self):
        self.left("a.json")
        self.altered(lambda entries: [[name, "new"] if name == "assets/a.json" else [name, data]
                                      for name, data in entries])
        self.decrypted()
        self.assertEqual(dict(self.plain, **{"assets/a.json": "new", "AndroidManifest.xml": "manifest"}),
                         contents(self.apk))

    def test_excludedAssetsThatComeOrGoAreNoticed(self):
        self.left("*.json")
        whole = read(self.apk)
        for change in (lambda entries: entries + [["assets/new.json", "x"]],
                       lambda entries: [one for one in entries if one[0] != "assets/a.json"],
                       lambda entries: [["assets/c.json" if name == "assets/a.json" else name, data]
                                        for name, data in entries],
                       lambda entries: [[name, "x" if name == "assets/story" else data] for name, data in entries]):
            with open(self.apk, "wb") as out:
                out.write(whole)
            self.altered(change)
            self.refused(NOT_AUTHENTIC, encrypt.decryptApk)


if __name__ == "__main__":
    unittest.main()
