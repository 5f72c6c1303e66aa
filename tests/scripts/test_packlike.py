# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Packing after the model of a base: zipLike and zipOnto(src, dest, apkfile, base)."""
import os
import shutil
import subprocess
import unittest

from support import APK, FolderCase, Raw, contents, parsed, raw_archive, read, tree, write

import pytoolForQt
import quenzo_limits
import quenzo_pack
from quenzo_report import DamagedArchive, ToolError

STORED, DEFLATED = 0, 8
LARGE = "".join("line %d\n" % number for number in range(40000))
NOISE = os.urandom(quenzo_pack.BATCH_BYTES + 1)
SIGNATURE = ["META-INF/MANIFEST.MF", "META-INF/CERT.SF", "META-INF/cert.rsa", "META-INF/X.DSA", "META-INF/X.EC"]


def entries():
    """A base with its own ideas: unsorted, a text stored, a picture deflated, signed, folders as entries."""
    return [Raw("z.txt", "text " * 99, DEFLATED), Raw("res/", ""), Raw("res/icon.png", "picture " * 99, DEFLATED),
            Raw("a.txt", "as it is " * 9, STORED), Raw("lib/x/libgame.so", "\x7fELF" * 99, STORED),
            Raw("large.txt", LARGE, DEFLATED), Raw("noise.bin", NOISE, STORED), Raw("empty", "", DEFLATED),
            Raw("odd", "odd", STORED)] + [Raw(name, "signed", DEFLATED) for name in SIGNATURE]


class Repacking(FolderCase):
    def setUp(self):
        FolderCase.setUp(self)
        self.src, self.dest, self.base = self.path("src"), self.path("out.apk"), self.path("base.apk")
        raw_archive(self.base, entries())

    def unpack_base(self):
        pytoolForQt.unZip(self.base, self.src, "NULL")

    def like(self):
        self.assertEqual(0, pytoolForQt.zipLike(self.src, self.dest, "", self.base))
        return parsed(self.dest)

    def onto(self):
        self.assertEqual(0, pytoolForQt.zipOnto(self.src, self.dest, "", self.base))
        return parsed(self.dest)

    def packed(self, path):
        """Entry name to packed bytes."""
        data = read(path)
        return dict((one.name, (one.method, data[one.start:one.start + one.packed])) for one in parsed(path))

    def assert_aligned(self):
        for one in parsed(self.dest):
            if one.method == STORED:
                boundary = 16384 if one.name.endswith(".so") else 4
                self.assertEqual(0, one.start % boundary, "%s begins at %d" % (one.name, one.start))

    def assert_refused(self, work, kind, *texts):
        before = tree(self.folder)
        with self.assertRaises(kind) as caught:
            work(self.src, self.dest, "", self.base)
        for text in texts:
            self.assertIn(text, str(caught.exception))
        self.assert_unchanged(before)


class Like(Repacking):
    def test_orderAndPackedBytesOfWhatIsEqualAreTheBases(self):
        self.unpack_base()
        wanted = [raw.name for raw in entries() if raw.name not in SIGNATURE]
        self.assertEqual(wanted, [one.name for one in self.like()])
        before = self.packed(self.base)
        self.assertEqual(dict((name, before[name]) for name in wanted), self.packed(self.dest))
        self.assert_aligned()

    def test_whatIsNewComesBehindItByName(self):
        self.unpack_base()
        for name in ("new.txt", "B.png", "res/more.txt"):
            write(os.path.join(self.src, name), "new " * 99)
        os.mkdir(os.path.join(self.src, "void"))
        found = self.like()
        self.assertEqual(["B.png", "new.txt", "res/more.txt", "void/"], [one.name for one in found[-4:]])
        self.assertEqual([STORED, DEFLATED, DEFLATED, STORED], [one.method for one in found[-4:]])
        self.assert_aligned()

    def test_aChangedEntryKeepsItsPlaceAndMethod(self):
        self.unpack_base()
        changes = {"a.txt": "changed " * 50, "res/icon.png": "changed " * 50, "large.txt": LARGE + "one more",
                   "noise.bin": NOISE[1:] + "x", "empty": "no longer " * 9, "z.txt": ""}
        for name, content in changes.items():
            write(os.path.join(self.src, name), content)
        found = self.like()
        self.assertEqual([raw.name for raw in entries() if raw.name not in SIGNATURE], [one.name for one in found])
        methods = dict((one.name, one.method) for one in found)
        self.assertEqual({"a.txt": STORED, "res/icon.png": DEFLATED, "large.txt": DEFLATED, "noise.bin": STORED,
                          "empty": DEFLATED, "z.txt": STORED}, dict((name, methods[name]) for name in changes))
        self.assertEqual(changes, dict((one.name, one.data) for one in found if one.name in changes))
        self.assert_aligned()

    def test_whatTheFolderLacksIsLeftOut(self):
        self.unpack_base()
        os.remove(os.path.join(self.src, "noise.bin"))
        shutil.rmtree(os.path.join(self.src, "res"))
        names = [one.name for one in self.like()]
        self.assertEqual(["z.txt", "a.txt", "lib/x/libgame.so", "large.txt", "empty", "odd"], names)

    def test_aFolderThatBecameAFileAndTheOtherWayRound(self):
        self.unpack_base()
        shutil.rmtree(os.path.join(self.src, "res"))
        write(os.path.join(self.src, "res"), "a file now")
        os.remove(os.path.join(self.src, "odd"))
        write(os.path.join(self.src, "odd", "inner"), "x")
        self.like()
        pytoolForQt.unZip(self.dest, self.path("back"), "NULL")
        shutil.rmtree(os.path.join(self.src, "META-INF"))
        self.assert_same_tree(tree(self.src), tree(self.path("back")))

    def test_equalSizeAndChecksumAreNotYetEqualContent(self):
        raw_archive(self.base, [Raw("word", "plumless", DEFLATED)])
        write(os.path.join(self.src, "word"), "buckeroo")
        found = self.like()
        self.assertEqual((parsed(self.base)[0].crc, "buckeroo"), (found[0].crc, found[0].data))

    def test_bytesAreEqualInEveryRun(self):
        self.unpack_base()
        write(os.path.join(self.src, "a.txt"), "changed")
        results = set()
        for stamp in (1000000000, 1500000000):
            for folder, unused, files in os.walk(self.src):
                for name in files:
                    os.utime(os.path.join(folder, name), (stamp, stamp))
            self.like()
            results.add(read(self.dest))
        self.assertEqual(1, len(results))

    def test_theResultIsAModelOfItself(self):
        self.unpack_base()
        self.like()
        first = read(self.dest)
        shutil.copy(self.dest, self.base)
        self.like()
        self.assertEqual(first, read(self.dest))

    def test_theSampleComesOutAsItIs(self):
        self.base = APK
        self.unpack_base()
        self.like()
        self.assertEqual(read(APK), read(self.dest))

    def test_theArchiveMayTakeThePlaceOfItsBase(self):
        self.unpack_base()
        write(os.path.join(self.src, "a.txt"), "changed")
        self.dest = self.base
        self.assertEqual("changed", dict((one.name, one.data) for one in self.like())["a.txt"])

    def test_aFileBesideTheFolderIsPackedToo(self):
        self.unpack_base()
        added = self.write("inner.apk", "apk")
        pytoolForQt.zipLike(self.src, self.dest, added, self.base)
        self.assertEqual("apk", contents(self.dest)["inner.apk"])


class Names(Repacking):
    def test_namesKeepTheirBytesAndMarks(self):
        utf8 = u"имя".encode("utf-8")
        raw_archive(self.base, [Raw("\x81.txt", "dos", system=0), Raw("\xff\xfe", "unix"),
                                Raw(utf8, "marked", flags=0x800), Raw(utf8 + "2", "unmarked"), Raw("plain", "x")])
        self.unpack_base()
        write(os.path.join(self.src, utf8), "changed")
        self.assertEqual([("\x81.txt", 0), ("\xff\xfe", 0), (utf8, 0x800), (utf8 + "2", 0), ("plain", 0)],
                         [(one.name, one.flags) for one in self.like()])
        pytoolForQt.unZip(self.dest, self.path("back"), "NULL")
        self.assert_same_tree(tree(self.src), tree(self.path("back")))


class Onto(Repacking):
    def test_theBasesEntriesStayWhereTheFolderHasNothing(self):
        write(os.path.join(self.src, "a.txt"), "over")
        write(os.path.join(self.src, "assets", "channel.json"), "{}")
        os.makedirs(os.path.join(self.src, "res"))
        found = self.onto()
        wanted = [raw.name for raw in entries() if raw.name not in SIGNATURE] + ["assets/channel.json"]
        self.assertEqual(wanted, [one.name for one in found])
        before, after = self.packed(self.base), self.packed(self.dest)
        self.assertEqual((STORED, "over"), after["a.txt"])
        for name in wanted[:-1]:
            if name != "a.txt":
                self.assertEqual(before[name], after[name], name)
        self.assert_aligned()

    def test_anEmptyFolderChangesNothingButTheSignature(self):
        os.mkdir(self.src)
        self.assertEqual([raw.name for raw in entries() if raw.name not in SIGNATURE], [one.name for one in self.onto()])

    def test_aSignatureInTheFolderIsNotTakenOverEither(self):
        write(os.path.join(self.src, "META-INF", "NEW.RSA"), "x")
        write(os.path.join(self.src, "META-INF", "services", "x"), "x")
        names = [one.name for one in self.onto()]
        self.assertEqual(["META-INF/services/x"], [name for name in names if name.startswith("META-INF")])

    def test_aFileWhereTheBaseHasAFolderIsRefused(self):
        write(os.path.join(self.src, "res"), "x")
        self.assert_refused(pytoolForQt.zipOnto, ToolError, "there twice: 'res'")

    def test_aFolderWhereTheBaseHasAFileIsRefused(self):
        write(os.path.join(self.src, "odd", "x"), "x")
        self.assert_refused(pytoolForQt.zipOnto, ToolError, "file and a folder at once", "'odd'")

    def test_theLimitsCountBoth(self):
        raw_archive(self.base, [Raw("%02d" % number, "x") for number in range(10)])
        self.addCleanup(setattr, quenzo_limits, "MAX_ENTRIES", quenzo_limits.MAX_ENTRIES)
        quenzo_limits.MAX_ENTRIES = 11
        write(os.path.join(self.src, "11"), "x")
        self.onto()
        os.remove(self.dest)
        write(os.path.join(self.src, "12"), "x")
        self.assert_refused(pytoolForQt.zipOnto, ToolError, "more than 11 entries")


@unittest.skipUnless(os.path.exists("/usr/bin/zipalign"), "zipalign is not installed")
class Zipalign(Repacking):
    def test_everyWayOfPackingPasses(self):
        for length in range(1, 8):
            os.makedirs(os.path.join(self.src, "void" + "d" * length))
        write(os.path.join(self.src, "lib", "y", "libnew.so"), "\x7fELF" * 50)
        write(os.path.join(self.src, "odd"), "more odd")
        for work in (lambda: pytoolForQt.zip(self.src, self.dest, ""), self.like, self.onto):
            work()
            for words in (["-c", "4"], ["-c", "-p", "4"]):
                with open(os.devnull, "w") as nowhere:
                    code = subprocess.call(["/usr/bin/zipalign"] + words + [self.dest], stdout=nowhere)
                self.assertEqual(0, code, words)


class Bases(Repacking):
    def assert_both_refuse(self, kind, *texts):
        for work in (pytoolForQt.zipLike, pytoolForQt.zipOnto):
            self.assert_refused(work, kind, "the base %s: " % self.base, *texts)

    def test_damagedOnesAreRefusedAndNamed(self):
        self.unpack_base()
        whole = read(self.base)
        for name in ("z.txt", "a.txt", "large.txt", "noise.bin"):
            os.remove(os.path.join(self.src, name))
        for one in parsed(self.base):
            if one.name in ("z.txt", "a.txt", "large.txt", "noise.bin"):
                place = one.start + one.packed // 2
                write(self.base, whole[:place] + chr(ord(whole[place]) ^ 4) + whole[place + 1:])
                self.assert_refused(pytoolForQt.zipOnto, ToolError, "the base %s: " % self.base, "'%s'" % one.name)
        write(self.base, whole[:-30])
        self.assert_both_refuse(DamagedArchive)
        write(self.base, whole[:1000] + whole[1100:])
        self.assert_both_refuse(DamagedArchive)
        write(self.base, "no archive")
        self.assert_both_refuse(DamagedArchive, "not a zip archive")

    def test_aDamagedEntryThatIsNeverTakenOverDoesNoHarm(self):
        self.unpack_base()
        whole = read(self.base)
        place = next(one for one in parsed(self.base) if one.name == "a.txt").start
        write(self.base, whole[:place] + "X" + whole[place + 1:])
        write(os.path.join(self.src, "a.txt"), "other")
        self.assertEqual("other", dict((one.name, one.data) for one in self.like())["a.txt"])

    def test_hostileOnesAreRefused(self):
        os.mkdir(self.src)
        for bad, text in (([Raw("a", "1"), Raw("a", "2")], "there twice"), ([Raw("../a", "1")], "leads out"),
                          ([Raw("a", "1", flags=1)], "encrypted"), ([Raw("a", "1", 12, packed="1")], "unknown method"),
                          ([Raw("a", "1" * 999, DEFLATED, size=5)], "declares")):
            raw_archive(self.base, bad)
            self.assert_refused(pytoolForQt.zipOnto, ToolError, "the base", text)

    def test_aMissingOneFails(self):
        os.mkdir(self.src)
        self.base = self.path("absent.apk")
        for work in (pytoolForQt.zipLike, pytoolForQt.zipOnto):
            with self.assertRaises(OSError):
                work(self.src, self.dest, "", self.base)
        self.base = ""
        self.assert_refused(pytoolForQt.zipOnto, ToolError, "the base is empty")


if __name__ == "__main__":
    unittest.main()
