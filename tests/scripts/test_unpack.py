# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Unpacking an archive nobody vouches for: unZip(src, dest, "NULL")."""
import os
import random
import stat
import struct
import unittest
import zipfile

from support import APK, LINK_ATTRIBUTES, FolderCase, Raw, as_plain_user, contents, deflated, full_disk, killed_when
from support import python, raw_archive, read, tree, unprintable, write

import pytoolForQt
import quenzo_limits
import quenzo_zipread
from quenzo_report import DamagedArchive, ToolError
from quenzo_zipwrite import ZipWriter


class Unpacking(FolderCase):
    def setUp(self):
        FolderCase.setUp(self)
        self.src, self.dest = self.path("in.zip"), self.path("out")

    def unpack(self, *entries):
        if entries:
            raw_archive(self.src, entries)
        self.assertEqual(0, pytoolForQt.unZip(self.src, self.dest, "NULL"))
        return tree(self.dest)

    def assert_refused(self, entries, text="", kind=ToolError, **options):
        """Refused with that text, into a missing folder and into one that has content already."""
        raw_archive(self.src, entries, **options)
        self.assert_file_refused(text, kind)

    def assert_file_refused(self, text="", kind=ToolError):
        for folder, keep in (("fresh", False), ("full", True)):
            self.dest = self.path(folder)
            if keep:
                write(os.path.join(self.dest, "mine"), "kept")
            before = tree(self.folder)
            with self.assertRaises(kind) as caught:
                pytoolForQt.unZip(self.src, self.dest, "NULL")
            self.assertIn(text, str(caught.exception))
            self.assert_unchanged(before)


class Content(Unpacking):
    def test_sampleUnpacksToWhatItHolds(self):
        self.src = APK
        files = dict((name, data) for name, data in self.unpack().items() if data is not None)
        self.assertEqual(contents(APK), files)

    def test_storedDeflatedEmptyAndFoldersComeOut(self):
        self.assertEqual({"a": "one", "b": "two" * 99, "c": "", "d": None, "d/e": None, "f": None, "f/g": "x"},
                         self.unpack(Raw("a", "one"), Raw("b", "two" * 99, 8), Raw("c", "", 8), Raw("d/e/"),
                                     Raw("f/g", "x"), Raw("f/")))

    def test_contentAroundBlockBordersIsWhole(self):
        entries, block = [], 1 << 18
        for size in (1, block - 1, block, block + 1, 2 * block, 5 * block + 7):
            entries += [Raw("z%d" % size, "\0" * size, 8), Raw("r%d" % size, os.urandom(size), 8)]
        found = self.unpack(*entries)
        for one in entries:
            self.assertTrue(found[one.name] == one.data, one.name)

    def test_archivesOfOtherProgramsUnpack(self):
        with zipfile.ZipFile(self.src, "w", zipfile.ZIP_DEFLATED) as made:
            made.writestr("a/b.txt", "text" * 9)
            made.comment = "a comment"
        self.assertEqual({"a": None, "a/b.txt": "text" * 9}, self.unpack())

    def test_archivesInTheLongFormUnpack(self):
        count = 66000  # more than the short form counts
        with open(self.src, "w+b") as out:
            writer = ZipWriter(out)
            for number in range(count):
                writer.add_folder("f%d/" % number)
            writer.finish()
        with quenzo_zipread.Archive(self.src) as archive:
            self.assertEqual(count, len(archive.entries))
        with zipfile.ZipFile(self.src) as archive:
            self.assertEqual(count, len(archive.namelist()))

    def test_bytesBeforeTheArchiveAreNoHarm(self):
        raw_archive(self.src, [Raw("a", "one")])
        write(self.src, "#!/bin/sh\nexit\n" + read(self.src))
        self.assertEqual({"a": "one"}, self.unpack())

    def test_namesOfTheOldCodePageBecomeUtf8(self):
        utf8 = u"ü".encode("utf-8")
        self.assertEqual({utf8: "1", u"é".encode("utf-8"): "2", u"日".encode("utf-8"): "3"},
                         self.unpack(Raw("\x81", "1", system=0), Raw(u"é".encode("utf-8"), "2", system=0),
                                     Raw(u"日".encode("utf-8"), "3", flags=0x800)))

    def test_namesOfOtherEncodingsKeepTheirBytes(self):
        self.assertEqual({"\xcf\xd6\xb5": "1", "\xff": None, "\xff/\x81": "2"},
                         self.unpack(Raw("\xcf\xd6\xb5", "1"), Raw("\xff/\x81", "2")))

    def test_namesThatAreMerelyOddComeOut(self):
        names = ["it's", 'a "b"', "new\nline", " lead", "...", "..x", "x..", "-rf", "$(x)", "a:b/c", "dev:null"]
        names = [name for name in names if name[1:2] != ":"]
        self.assertEqual(dict((name, name) for name in names), self.unpack(*[Raw(name, name) for name in names]))

    def test_rightsInTheArchiveDoNotCount(self):
        before = os.umask(0o022)
        self.addCleanup(os.umask, before)
        self.unpack(Raw("a", "x", attributes=0o104777 << 16))
        self.assertEqual(0o644, stat.S_IMODE(os.stat(self.path("out", "a")).st_mode))

    def test_anEmptyArchiveGivesAnEmptyFolder(self):
        raw_archive(self.src, [])
        self.assertEqual({}, self.unpack())
        self.assertTrue(os.path.isdir(self.dest))


class HostileEntries(Unpacking):
    def test_namesThatLeadOutAreRefused(self):
        for name in ("../x", "a/../../x", "..", "a/..", "../", "a/../b"):
            self.assert_refused([Raw("ok", "x"), Raw(name, "evil")], "leads out")

    def test_absoluteNamesAreRefused(self):
        for name in ("/tmp/x", "//host/x", "/", "C:/x", "c:x", "C:\\x"):
            self.assert_refused([Raw("ok", "x"), Raw(name, "evil")], "absolute")

    def test_namesThatAreNoPlainPathAreRefused(self):
        for name in ("a\\b", "..\\x", "\\\\host\\x", "a//b", "./a", "a/./b", "", "a\0b", "."):
            self.assert_refused([Raw("ok", "x"), Raw(name, "evil")])

    def test_namesMarkedUtf8ThatAreNotAreRefused(self):
        self.assert_refused([Raw("\xff\xfe", "x", flags=0x800)])

    def test_namesTooLongForTheFileSystemAreRefused(self):
        self.assert_refused([Raw("ok", "x"), Raw("n" * 256, "x")], kind=EnvironmentError)

    def test_entriesNestedTooDeepAreRefused(self):
        self.assert_refused([Raw("d/" * 100 + "x", "x")], "more than 100 folders")
        self.assertIn("d/" * 99 + "x", self.path_names(Raw("d/" * 99 + "x", "x")))

    def path_names(self, *entries):
        self.dest = self.path("deep")
        return self.unpack(*entries)

    def test_linkAndDeviceEntriesAreRefused(self):
        for kind in (0o120777, 0o010644, 0o020644, 0o060644, 0o140644):
            self.assert_refused([Raw("ok", "x"), Raw("link", "/etc", attributes=kind << 16)], "link or a device")

    def test_aLinkEntryWithSomethingBelowItIsRefused(self):
        self.assert_refused([Raw("link", "/tmp", attributes=LINK_ATTRIBUTES), Raw("link/x", "evil")])

    def test_namesThatAreThereTwiceAreRefused(self):
        self.assert_refused([Raw("a", "1"), Raw("a", "2")], "there twice")
        self.assert_refused([Raw("a/"), Raw("a/")], "there twice")
        self.assert_refused([Raw("a", "1"), Raw("a/")], "there twice")
        self.assert_refused([Raw("\x81", "1", system=0), Raw(u"ü".encode("utf-8"), "2")], "there twice")

    def test_aFileThatIsAFolderTooIsRefused(self):
        self.assert_refused([Raw("a", "1"), Raw("a/b/c", "2")], "file and a folder")
        self.assert_refused([Raw("a/b/c", "2"), Raw("a/b", "1")], "file and a folder")

    def test_encryptedEntriesAreRefused(self):
        for flags in (0x1, 0x40, 0x2000, 0x1 | 0x800):
            self.assert_refused([Raw("ok", "x"), Raw("a", "secret", flags=flags)], "encrypted")

    def test_unknownMethodsAreRefused(self):
        for method in (1, 6, 9, 12, 14, 93, 99):
            self.assert_refused([Raw("ok", "x"), Raw("a", "x", method)], "unknown method")

    def test_aFolderWithContentIsRefused(self):
        self.assert_refused([Raw("a/", "content")], "has content")


class Messages(Unpacking):
    EVIL = "a\x1b[2J\r\n\x07\x7f\x9b31m\xff" + u"\u202e\u2028\x9b".encode("utf-8")

    def test_noNameReachesATerminalAsItIs(self):
        evil, packed = self.EVIL, deflated("x" * 99)
        for entries in ([Raw("/" + evil)], [Raw("../" + evil)], [Raw("./" + evil)], [Raw(evil, flags=0x800)],
                        [Raw(evil), Raw(evil)], [Raw(evil), Raw(evil + "/x")], [Raw("d/" * 100 + evil)],
                        [Raw(evil, "x", attributes=LINK_ATTRIBUTES)], [Raw(evil, "x", flags=1)],
                        [Raw(evil, "x", 12)], [Raw(evil + "/", "x")], [Raw(evil, "x", crc=1)],
                        [Raw(evil, "", 8, packed=packed, size=9)], [Raw(evil, "x" * 99, 8, packed=packed[:-1])],
                        [Raw(evil, "x", local_name="y" + evil)], [Raw(evil, "x", size=7)],
                        [Raw(evil * 900, "x", crc=1)]):
            raw_archive(self.src, entries)
            with self.assertRaises(Exception) as caught:
                pytoolForQt.unZip(self.src, self.dest, "NULL")
            self.assertEqual([], unprintable(str(caught.exception)))
            self.assertIn(pytoolForQt.importSDK(self.src, self.dest), (101, 102, 104))
            self.assertEqual([], unprintable(self.said.getvalue().replace("\n", "")))

    def test_noPathReachesATerminalAsItIs(self):
        self.src = self.path(self.EVIL)
        write(self.src, "no archive")
        dest = self.write(self.EVIL + "file")
        for arguments in ((self.src, self.dest), (self.src + "x", self.dest), (APK, dest)):
            with self.assertRaises(Exception) as caught:
                pytoolForQt.unZip(*arguments)
            self.assertEqual([], unprintable(str(caught.exception)))
            pytoolForQt.importSDK(*arguments)
        self.assertEqual([], unprintable(self.said.getvalue().replace("\n", "")))
        self.assertEqual(3, self.said.getvalue().count("\n"))

    def test_otherLettersAreShownAsTheyAre(self):
        self.assert_refused([Raw(u"../имя/日".encode("utf-8"))], u"'../имя/日'".encode("utf-8"))


class Bombs(Unpacking):
    def test_whatUnpacksToMoreThanItDeclaresIsStopped(self):
        bomb = deflated("\0" * (32 << 20))
        for size in (0, 1, 1 << 18, (32 << 20) - 1):
            self.assert_refused([Raw("ok", "x"), Raw("a", "", 8, packed=bomb, size=size)], "more than it declares")

    def test_theRatioIsLimitedOnceItMatters(self):
        self.addCleanup(setattr, quenzo_limits, "RATIO_FREE_BYTES", quenzo_limits.RATIO_FREE_BYTES)
        zeros = "\0" * (4 << 20)
        self.assertEqual({"a": zeros}, self.unpack(Raw("a", zeros, 8)))
        quenzo_limits.RATIO_FREE_BYTES = (4 << 20) - 1
        self.assert_refused([Raw("a", zeros, 8)], "200 times")

    def test_aDeclaredFloodIsRefusedBeforeAnythingIsWritten(self):
        self.assert_refused([Raw("%d" % number, "x", 8, size=0xfffffffe) for number in range(5)], "the limit is")

    def test_entriesThatShareBytesAreRefused(self):
        first = Raw("a", "x" * 999)
        self.assert_refused([first, Raw("a", "x" * 999, offset=0)])
        inner = Raw("k", "y" * 50)
        head = struct.pack("<4s5HLLLHH", "PK\3\4", 20, 0, 0, 0, 33, inner.crc, 50, 50, 1, 0)
        whole = Raw("w", head + "k" + "y" * 50)
        self.assert_refused([whole, Raw("k", "y" * 50, offset=31)], "shares bytes")

    def test_tooManyEntriesAreRefused(self):
        self.addCleanup(setattr, quenzo_limits, "MAX_ENTRIES", quenzo_limits.MAX_ENTRIES)
        quenzo_limits.MAX_ENTRIES = 20
        self.assert_refused([Raw("%d" % number) for number in range(21)], "more than 20 entries")
        self.dest = self.path("fits")
        self.assertEqual(20, len(self.unpack(*[Raw("%d" % number) for number in range(20)])))

    def test_aDirectoryWithMoreEntriesThanItCountsIsRefused(self):
        self.assert_refused([Raw("%d" % number) for number in range(9)], kind=DamagedArchive, count=1)

    def test_aHiddenFloodOfEntriesCostsNoMemory(self):
        entry = struct.pack("<4s6HLLL5HLL", "PK\1\2", 788, 20, 0, 0, 0, 33, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)
        directory = entry * 900000
        end = struct.pack("<4s4H2LH", "PK\5\6", 0, 0, 1, 1, len(directory), 0, 0)
        write(self.src, directory + end)
        child = python("import resource, sys, pytoolForQt\n"
                       "resource.setrlimit(resource.RLIMIT_AS, (160 << 20, 160 << 20))\n"
                       "try: pytoolForQt.unZip(sys.argv[1], sys.argv[2], 'NULL')\n"
                       "except Exception as error: print(error.__class__.__name__)", self.src, self.dest)
        self.assertEqual(("DamagedArchive\n", ""), child.communicate())


class Damage(Unpacking):
    def test_wrongChecksumsAndSizesAreNoticed(self):
        for raw in (Raw("a", "text" * 99, crc=1), Raw("a", "text" * 99, 8, crc=1),
                    Raw("a", "text" * 99, 8, size=400), Raw("a", "text" * 99, size=400),
                    Raw("a", "text" * 99, 8, packed=deflated("text" * 99)[:-2]),
                    Raw("a", "text" * 99, 8, packed=deflated("text" * 99) + "rest"),
                    Raw("a", "text" * 99, 8, packed="\xff" * 20), Raw("a", "text", 8, packed="")):
            self.assert_refused([Raw("ok", "x"), raw], kind=DamagedArchive)

    def test_headersThatDisagreeAreNoticed(self):
        self.assert_refused([Raw("good", "x", local_name="evil")], kind=DamagedArchive)
        self.assert_refused([Raw("a", "x", local_method=8)], kind=DamagedArchive)
        self.assert_refused([Raw("a", "x"), Raw("b", "y", offset=5)], kind=DamagedArchive)

    def test_whatIsNoArchiveIsDamaged(self):
        for data in ("", "x", "PK", "PK\5\6", "x" * 100000, "PK\5\6" + "\xff" * 18, "PK\5\6" + "\0" * 17,
                     "PK\6\7" + "\xff" * 16 + "PK\5\6" + "\xff" * 16 + "\0\0"):
            write(self.src, data)
            self.assert_file_refused(kind=DamagedArchive)

    def test_theSampleCutOffAnywhereIsDamaged(self):
        whole = read(APK)
        for length in list(range(0, len(whole), 997)) + list(range(len(whole) - 40, len(whole))):
            write(self.src, whole[:length])
            before = tree(self.folder)
            with self.assertRaises(DamagedArchive):
                pytoolForQt.unZip(self.src, self.dest, "NULL")
            self.assert_unchanged(before)

    def test_randomDamageGivesTheSameFilesOrAnErrorOfOurs(self):
        whole, wanted = read(APK), contents(APK)
        choice = random.Random(7)
        refused = 0
        for turn in range(150):
            data = bytearray(whole)
            tail = turn % 2 and len(data) - 1100  # Half of the flips hit the directory.
            for unused in range(choice.randint(1, 4)):
                data[choice.randrange(tail, len(data))] ^= 1 << choice.randrange(8)
            write(self.src, bytes(data))
            self.dest = self.path("out%d" % turn)
            try:
                pytoolForQt.unZip(self.src, self.dest, "NULL")
            except ToolError:
                refused += 1
                self.assertFalse(os.path.exists(self.dest))
                continue
            files = dict((name, content) for name, content in tree(self.dest).items() if content is not None)
            self.assertEqual(sorted(wanted.values()), sorted(files.values()))
        self.assertGreater(refused, 75)


class Destination(Unpacking):
    def test_anExistingFolderIsMergedOver(self):
        write(self.path("out", "d", "old"), "old")
        write(self.path("out", "d", "new"), "before")
        write(self.path("out", "other"), "other")
        self.assertEqual({"d": None, "d/old": "old", "d/new": "after", "other": "other", "e": None, "e/x": "x"},
                         self.unpack(Raw("d/new", "after"), Raw("e/x", "x")))
        self.assertEqual(["in.zip", "out"], sorted(os.listdir(self.folder)))

    def test_anExistingFolderStaysTheSameFolder(self):
        """So that whoever works in it goes on seeing it."""
        for content in ({}, {"mine": "x"}):
            self.dest = self.path("out%d" % len(content))
            os.mkdir(self.dest)
            for name, data in content.items():
                write(os.path.join(self.dest, name), data)
            os.chmod(self.dest, 0o2770)
            before = os.stat(self.dest)
            self.assertEqual(dict(content, a="x"), self.unpack(Raw("a", "x")))
            after = os.stat(self.dest)
            self.assertEqual((before.st_ino, before.st_mode), (after.st_ino, after.st_mode))

    def test_theWorkingFolderServes(self):
        os.mkdir(self.dest)
        raw_archive(self.src, [Raw("a", "x")])
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.dest)
        self.assertEqual(0, pytoolForQt.unZip("../in.zip", ".", "NULL"))
        self.assertEqual({"a": "x"}, tree("."))

    def test_aFailureInTheMiddleOfMergingIsTakenBack(self):
        write(self.path("out", "a", "one"), "before")
        write(self.path("out", "clash", "file"), "folder here, file there")
        self.write("aside", "x")
        os.symlink("../aside", self.path("out", "b"))
        raw_archive(self.src, [Raw("a/one", "after"), Raw("a/two", "new"), Raw("a/three/x", "new"), Raw("b", "new"),
                               Raw("clash", "file")])
        before = tree(self.folder)
        with self.assertRaises(ToolError):
            pytoolForQt.unZip(self.src, self.dest, "NULL")
        self.assert_unchanged(before)

    def test_aRenameThatFailsInTheMiddleIsTakenBack(self):
        for name in "abc":
            write(self.path("out", name), "before")
        raw_archive(self.src, [Raw(name, "after") for name in "0abc1"])
        before = tree(self.folder)
        rename = os.rename
        self.addCleanup(setattr, os, "rename", rename)
        for turn in range(5):
            left = [turn]

            def failing(source, target):
                left[0] -= 1
                if left[0] == -1:
                    raise OSError(5, "Input/output error", target)
                rename(source, target)

            os.rename = failing
            with self.assertRaises(OSError):
                pytoolForQt.unZip(self.src, self.dest, "NULL")
            os.rename = rename
            self.assert_unchanged(before)

    def test_linksInTheFolderAreNotFollowed(self):
        self.write("outside/keep", "kept")
        os.mkdir(self.dest)
        os.symlink("../outside", self.path("out", "link"))
        raw_archive(self.src, [Raw("link/keep", "evil")])
        before = tree(self.folder)
        with self.assertRaises(ToolError):
            pytoolForQt.unZip(self.src, self.dest, "NULL")
        self.assert_unchanged(before)

    def test_aLinkWhereAFileGoesIsReplacedNotWrittenThrough(self):
        self.write("outside", "kept")
        os.mkdir(self.dest)
        os.symlink("../outside", self.path("out", "a"))
        self.assertEqual({"a": "new"}, self.unpack(Raw("a", "new")))
        self.assertEqual("kept", read(self.path("outside")))

    def test_aLinkToTheFolderServesAsTheFolder(self):
        os.mkdir(self.path("real"))
        os.symlink("real", self.dest)
        self.unpack(Raw("a", "x"))
        self.assertTrue(os.path.islink(self.dest))
        self.assertEqual({"a": "x"}, tree(self.path("real")))

    def test_aFileInTheWayFails(self):
        raw_archive(self.src, [Raw("a", "x")])
        self.write("out", "mine")
        before = tree(self.folder)
        with self.assertRaises(ToolError):
            pytoolForQt.unZip(self.src, self.dest, "NULL")
        self.assert_unchanged(before)

    def test_missingParentsAreMadeAndGoAgainAfterAFailure(self):
        self.dest = self.path("p", "q", "out")
        raw_archive(self.src, [Raw("a", "x", crc=1)])
        before = tree(self.folder)
        with self.assertRaises(DamagedArchive):
            pytoolForQt.unZip(self.src, self.dest, "NULL")
        self.assert_unchanged(before)
        self.assertEqual({"a": "x"}, self.unpack(Raw("a", "x")))

    def test_pathsWithQuotesNewlinesAndOtherLettersServe(self):
        self.src = self.path(u"o'ne \"two\"\nтри.zip".encode("utf-8"))
        self.dest = self.path(u"a'b \"c\"\n中".encode("utf-8"))
        self.assertEqual({"a": "x"}, self.unpack(Raw("a", "x")))

    def test_missingArchivesFoldersPipesAndDevicesFail(self):
        os.mkfifo(self.path("pipe"))
        for self.src in (self.path("absent"), self.folder, self.path("pipe"), "/dev/zero", ""):
            with self.assertRaises((ToolError, EnvironmentError)):
                pytoolForQt.unZip(self.src, self.dest, "NULL")
        self.assertEqual(["pipe"], os.listdir(self.folder))

    def test_aPipeInTheWayStays(self):
        os.mkfifo(self.dest)
        raw_archive(self.src, [Raw("a/b", "x"), Raw("c", "x")])
        with self.assertRaises(ToolError):
            pytoolForQt.unZip(self.src, self.dest, "NULL")
        self.assertTrue(stat.S_ISFIFO(os.stat(self.dest).st_mode))
        os.remove(self.dest)
        os.mkdir(self.dest)
        os.mkfifo(self.path("out", "c"))
        with self.assertRaises(ToolError):
            pytoolForQt.unZip(self.src, self.dest, "NULL")
        self.assertEqual(["c"], os.listdir(self.dest))
        self.assertTrue(stat.S_ISFIFO(os.stat(self.path("out", "c")).st_mode))

    def test_writeProtectedFilesOfSomebodyElseAreLeftAlone(self):
        raw_archive(self.src, [Raw("a", "new"), Raw("b", "new"), Raw("c/d", "new")])
        os.chmod(self.folder, 0o777)
        write(self.path("out", "a"), "free")
        os.chmod(self.path("out", "a"), 0o666)
        os.chmod(write(self.path("out", "b"), "protected"), 0o444)
        os.chmod(self.dest, 0o777)
        before = tree(self.folder)

        def work():
            try:
                pytoolForQt.unZip(self.src, self.dest, "NULL")
            except IOError as error:
                return "%s: %s" % (error.filename, error.strerror)
            return "unpacked"

        self.assertEqual(self.path("out", "b") + ": the file is write-protected", as_plain_user(work))
        self.assert_unchanged(before)

    def test_aFileThatIsReplacedKeepsItsOwnerAndRights(self):
        for mode in (0o600, 0o664, 0o755):
            os.chmod(write(self.path("out", "a"), "old"), mode)
            if os.geteuid() == 0:
                os.chown(self.path("out", "a"), 65534, 65534)
            before = os.stat(self.path("out", "a"))
            self.unpack(Raw("a", "new"))
            after = os.stat(self.path("out", "a"))
            self.assertEqual((before.st_uid, before.st_gid, oct(before.st_mode)),
                             (after.st_uid, after.st_gid, oct(after.st_mode)))

    def test_aFolderThatCannotBeWrittenFails(self):
        raw_archive(self.src, [Raw("a", "x")])
        os.chmod(self.src, 0o644)
        os.chmod(self.folder, 0o755)
        os.mkdir(self.dest, 0o555)

        def work():
            try:
                pytoolForQt.unZip(self.src, self.dest, "NULL")
            except EnvironmentError as error:
                return error.strerror
            return "unpacked"

        if os.geteuid():
            os.chmod(self.folder, 0o555)
            self.addCleanup(os.chmod, self.folder, 0o755)
        self.assertEqual("Permission denied", as_plain_user(work))
        self.assertEqual({}, tree(self.dest))


class Breakdown(Unpacking):
    def test_aFullDiskLeavesTheFolderAsItWas(self):
        raw_archive(self.src, [Raw("a", "new"), Raw("big", os.urandom(2 << 20))])
        with full_disk(self.path("small"), 1 << 20):
            for self.dest, before in ((self.path("small", "out"), {}), (self.path("small", "full"), {"a": "old"})):
                for name, data in before.items():
                    write(os.path.join(self.dest, name), data)
                wanted = tree(self.path("small"))
                with self.assertRaises(EnvironmentError):
                    pytoolForQt.unZip(self.src, self.dest, "NULL")
                self.assertEqual(wanted, tree(self.path("small")))

    def test_aFolderOnAFileSystemOfItsOwnIsFilled(self):
        raw_archive(self.src, [Raw("a/b", "new"), Raw("c", "x")])
        with full_disk(self.path("small"), 1 << 20):
            self.dest = self.path("small")
            write(self.path("small", "a", "old"), "old")
            self.assertEqual({"a": None, "a/b": "new", "a/old": "old", "c": "x"}, self.unpack())

    def test_aKilledRunLeavesNoFolder(self):
        raw_archive(self.src, [Raw("%d" % number, "\0" * (1 << 22), 8) for number in range(30)] +
                    [Raw("ballast", os.urandom(1 << 20))])
        child = python("import sys, pytoolForQt; pytoolForQt.unZip(sys.argv[1], sys.argv[2], 'NULL')", self.src,
                       self.dest)
        self.assertTrue(killed_when(child, lambda: any(
            name.startswith(".quenzo-") and len(tree_names(self.path(name))) > 5 for name in os.listdir(self.folder))),
            "the run ended before it could be killed")
        self.assertFalse(os.path.exists(self.dest))


def tree_names(folder):
    return [name for unused, unused, names in os.walk(folder) for name in names]


if __name__ == "__main__":
    unittest.main()
