# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Packing a folder: zip(src, dest, apkfile)."""
import os
import shutil
import socket
import stat
import threading
import unittest
import warnings

from support import APK, FolderCase, as_plain_user, contents, full_disk, killed_when, parsed, python, read, tree, write

import pytoolForQt
import quenzo_ahead
import quenzo_limits
import quenzo_pack
from quenzo_report import ToolError

STORED, DEFLATED = 0, 8


class Packing(FolderCase):
    def setUp(self):
        FolderCase.setUp(self)
        self.src, self.dest = self.path("src"), self.path("out.zip")
        os.mkdir(self.src)

    def pack(self, apkfile=""):
        self.assertEqual(0, pytoolForQt.zip(self.src, self.dest, apkfile))
        return contents(self.dest)

    def assert_refused(self, text, apkfile=""):
        before = tree(self.folder)
        with self.assertRaises(ToolError) as caught:
            pytoolForQt.zip(self.src, self.dest, apkfile)
        self.assertIn(text, str(caught.exception))
        self.assert_unchanged(before)


class Format(Packing):
    def test_nameDecidesWhetherAnEntryIsStored(self):
        stored = ["resources.arsc", "a.png", "b.JPG", "sound/c.ogg", "sound/h.wav", "v.mp4", "lib/x/lib.so", "in.zip",
                  "in.apk", "in.jar", "empty.txt"]
        deflated = ["AndroidManifest.xml", "classes.dex", "a.json", "png", "arsc", "notresources.arsc.txt", "so.txt"]
        for name in stored + deflated:
            write(os.path.join(self.src, name), "" if name.startswith("empty") else "text " * 50)
        self.pack()
        self.assertEqual(dict([(name, STORED) for name in stored] + [(name, DEFLATED) for name in deflated]),
                         dict((one.name, one.method) for one in parsed(self.dest)))

    def test_storedContentIsAlignedForMapping(self):
        for length in range(1, 40):
            write(os.path.join(self.src, "n" * length + ".png"), "p" * length)
            write(os.path.join(self.src, "t" * length + ".txt"), "text" * length)
        write(os.path.join(self.src, "lib/x86_64/libgame.so"), "\x7fELF" * 100)
        write(os.path.join(self.src, "lib/x86_64/libmore.so"), "\x7fELF" * 100)
        self.pack()
        checked = 0
        for one in parsed(self.dest):
            if one.method == STORED:
                boundary = 16384 if one.name.endswith(".so") else 4
                self.assertEqual(0, one.start % boundary, "%s begins at %d" % (one.name, one.start))
                checked += 1
        self.assertEqual(41, checked)

    def test_emptyFoldersAndFilesAreAlignedToo(self):
        for length in range(1, 9):
            os.mkdir(os.path.join(self.src, "d" * length))
            write(os.path.join(self.src, "e" * length), "")
            write(os.path.join(self.src, "x" * length), "text" * length)
        write(os.path.join(self.src, "lib", "empty.so"), "")
        self.pack()
        for one in parsed(self.dest):
            if one.method == STORED:
                boundary = 16384 if one.name.endswith(".so") else 4
                self.assertEqual(0, one.start % boundary, "%s begins at %d" % (one.name, one.start))
        self.assertEqual(8 + 8 + 1, len([one for one in parsed(self.dest) if one.method == STORED]))

    def test_bytesDoNotDependOnTheNumberOfThreads(self):
        for number in range(30):
            text = "".join("%d " % (value * number) for value in range(number * 3000))
            write(os.path.join(self.src, "f%d" % (number % 5), "%02d.txt" % number), text)
        cores = quenzo_ahead._cores
        self.addCleanup(setattr, quenzo_ahead, "_cores", cores)
        results = set()
        for count in (1, 2, 3, 8):
            quenzo_ahead._cores = lambda: count
            self.pack()
            results.add(read(self.dest))
        self.assertEqual(1, len(results))

    def test_memoryStaysBoundedHoweverMuchIsPacked(self):
        code = ("import resource, sys, pytoolForQt, quenzo_ahead\n"
                "quenzo_ahead._cores = lambda: 2\n"
                "pytoolForQt.zip(sys.argv[1], sys.argv[2], '')\n"
                "print(resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)")
        peaks = []
        data = os.urandom(250000)
        for count in (20, 160):
            for number in range(count):
                write(os.path.join(self.src, "%d.png" % number), data)
            peaks.append(int(python(code, self.src, self.dest).communicate()[0]))
        self.assertLess(peaks[1] - peaks[0], 16 << 10)

    def test_entriesCarryOneTimeFixedRightsAndAscendingNames(self):
        for name in ("b.txt", "a.txt", "Z.txt", "d/x", "d.txt"):
            os.chmod(write(os.path.join(self.src, name), name), 0o751)
        os.mkdir(os.path.join(self.src, "void"))
        self.pack()
        found = parsed(self.dest)
        names = [one.name for one in found]
        self.assertEqual(sorted(names), names)
        self.assertEqual(set([(0, 33)]), set((one.time, one.date) for one in found))
        self.assertEqual(set([0o100644 << 16, 0o040755 << 16 | 0x10]), set(one.attributes for one in found))

    def test_bytesDoNotDependOnListingOrderTimesRightsOrUmask(self):
        names = ["%s/%d.txt" % (folder, number) for folder in "abc" for number in range(20)]
        results = []
        listed = os.listdir
        self.addCleanup(setattr, os, "listdir", listed)
        for order, mode, umask in ((sorted, 0o644, 0o022), (lambda all: sorted(all, reverse=True), 0o600, 0o077)):
            shutil.rmtree(self.src)
            for number, name in enumerate(order(names)):
                path = write(os.path.join(self.src, name), name * 30)
                os.chmod(path, mode)
                os.utime(path, (number * 1e6, number * 1e6))
            os.listdir = lambda path, order=order: order(listed(path))
            before = os.umask(umask)
            try:
                self.pack()
            finally:
                os.umask(before)
                os.listdir = listed
            results.append(read(self.dest))
        self.assertEqual(results[0], results[1])

    def test_anArchiveHasTheRightsOfAnyNewFile(self):
        before = os.umask(0o027)
        self.addCleanup(os.umask, before)
        self.pack()
        self.assertEqual(0o640, stat.S_IMODE(os.stat(self.dest).st_mode))

    def test_emptyFoldersAreKept(self):
        os.makedirs(os.path.join(self.src, "a", "b"))
        os.mkdir(os.path.join(self.src, "c"))
        write(os.path.join(self.src, "d", "file"), "x")
        self.assertEqual({"a/b/": "", "c/": "", "d/file": "x"}, self.pack())

    def test_anEmptyFolderGivesAnEmptyArchive(self):
        self.assertEqual({}, self.pack())

    def test_contentAcrossBlockBordersIsWhole(self):
        for size in ((1 << 18) - 1, 1 << 18, (1 << 18) + 1, 3 << 18):
            write(os.path.join(self.src, "%d.txt" % size), ("\0" * 4095 + "x") * (size // 4096 + 1))
            write(os.path.join(self.src, "%d.png" % size), os.urandom(size))
        wanted = tree(self.src)
        self.assertEqual(wanted, self.pack())
        pytoolForQt.unZip(self.dest, self.path("back"), "NULL")
        self.assertEqual(wanted, tree(self.path("back")))

    def test_samplePackedAgainAfterUnpackingIsTheSample(self):
        pytoolForQt.unZip(APK, self.src, "NULL")
        self.pack()
        self.assertEqual(read(APK), read(self.dest))

    def test_theStandardLibraryReadsWhatWePack(self):
        write(os.path.join(self.src, u"каталог/имя.txt".encode("utf-8")), "x" * 99)
        write(os.path.join(self.src, "a.so"), "x" * 99)
        self.pack()
        check = python("import sys, zipfile; sys.exit(zipfile.ZipFile(sys.argv[1]).testzip() is not None)", self.dest)
        self.assertEqual(("", ""), check.communicate())
        self.assertEqual(0, check.returncode)


class AddedFile(Packing):
    def test_fileIsAddedUnderItsOwnName(self):
        write(os.path.join(self.src, "a.txt"), "a")
        added = self.write(u"имя игры.apk".encode("utf-8"), "apk")
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            self.assertEqual({"a.txt": "a", u"имя игры.apk".encode("utf-8"): "apk"}, self.pack(added))

    def test_anEmptyTextAddsNothing(self):
        write(os.path.join(self.src, "a.txt"), "a")
        self.assertEqual({"a.txt": "a"}, self.pack(""))
        self.assertEqual({"a.txt": "a"}, self.pack(u""))

    def test_aMissingFileFails(self):
        self.assert_refused("no such file to add", self.path("absent.apk"))

    def test_aFolderInsteadOfAFileFails(self):
        self.assert_refused("no such file to add", self.src)
        self.assert_refused("no such file to add", self.src + "/")

    def test_aNameThatTheFolderHasFails(self):
        write(os.path.join(self.src, "game.apk"), "one")
        self.assert_refused("of its own", self.write("game.apk", "two"))

    def test_aNameThatIsAFolderOfTheFolderFails(self):
        write(os.path.join(self.src, "game.apk", "file"), "one")
        self.assert_refused("of its own", self.write("game.apk", "two"))

    def test_aLinkIsAddedAsItsFileUnderTheLinksName(self):
        os.symlink(self.write("real.bin", "bytes"), self.path("game.apk"))
        self.assertEqual({"game.apk": "bytes"}, self.pack(self.path("game.apk")))

    def test_theArchiveItselfIsNoFileToAdd(self):
        self.write("out.zip", "an APK that somebody still needs")
        self.assert_refused("is the archive", self.dest)


class Destination(Packing):
    def test_anArchiveInTheFolderItselfIsRefused(self):
        write(os.path.join(self.src, "d", "a.txt"), "a")
        write(os.path.join(self.src, "old.zip"), "old")
        os.symlink("src/d", self.path("link"))
        for self.dest in (os.path.join(self.src, "out.zip"), os.path.join(self.src, "new", "deep", "out.zip"),
                          os.path.join(self.src, "d", "a.txt"), os.path.join(self.src, "old.zip"),
                          self.path("link", "out.zip"), self.path("src", "d", "..", "out.zip")):
            self.assert_refused("would lie in the folder")
        self.dest = self.path("src.zip")
        self.assertEqual({"d/a.txt": "a", "old.zip": "old"}, self.pack())

    def test_aPipeSocketOrDeviceInTheWayStays(self):
        os.mkfifo(self.dest)
        with self.assertRaises(ToolError):
            pytoolForQt.zip(self.src, self.dest, "")
        self.assertTrue(stat.S_ISFIFO(os.stat(self.dest).st_mode))
        os.remove(self.dest)
        server = socket.socket(socket.AF_UNIX)
        server.bind(self.dest)
        with self.assertRaises(ToolError):
            pytoolForQt.zip(self.src, self.dest, "")
        self.assertTrue(stat.S_ISSOCK(os.stat(self.dest).st_mode))
        server.close()
        os.remove(self.dest)
        for source in (self.path("pipe"), "/dev/null"):
            if not os.path.exists(source):
                os.mkfifo(source)
            self.assertRaises(ToolError, pytoolForQt.zip, source, self.dest, "")
            self.assertRaises(ToolError, pytoolForQt.zip, self.src, self.dest, source)
        self.assertEqual(["pipe", "src"], sorted(os.listdir(self.folder)))

    def test_missingParentsAreMade(self):
        self.dest = self.path("a", "b", "out.zip")
        self.assertEqual({}, self.pack())

    def test_madeParentsGoAgainAfterAFailure(self):
        os.mkfifo(os.path.join(self.src, "pipe"))
        self.dest = self.path("a", "b", "out.zip")
        with self.assertRaises(ToolError):
            pytoolForQt.zip(self.src, self.dest, "")
        self.assertEqual(["src"], os.listdir(self.folder))

    def test_anArchiveThatStandsIsReplacedOnSuccessOnly(self):
        self.write("out.zip", "old")
        os.mkfifo(os.path.join(self.src, "pipe"))
        with self.assertRaises(ToolError):
            pytoolForQt.zip(self.src, self.dest, "")
        self.assertEqual("old", read(self.dest))
        os.remove(os.path.join(self.src, "pipe"))
        self.assertEqual({}, self.pack())
        self.assertEqual(["out.zip", "src"], sorted(os.listdir(self.folder)))

    def test_anArchiveThatIsReplacedKeepsItsRights(self):
        os.chmod(self.write("out.zip", "old"), 0o604)
        self.pack()
        self.assertEqual(0o604, stat.S_IMODE(os.stat(self.dest).st_mode))

    def test_aWriteProtectedArchiveIsLeftAlone(self):
        os.chmod(self.folder, 0o777)
        os.chmod(self.src, 0o755)
        os.chmod(self.write("out.zip", "old"), 0o444)

        def work():
            try:
                pytoolForQt.zip(self.src, self.dest, "")
            except IOError as error:
                return error.strerror
            return "packed"

        self.assertEqual("the file is write-protected", as_plain_user(work))
        self.assertEqual("old", read(self.dest))
        self.assertEqual(["out.zip", "src"], sorted(os.listdir(self.folder)))

    def test_aFolderInTheWayFails(self):
        write(self.path("out.zip", "file"), "x")
        self.assert_refused("a folder is in the way")

    def test_relativePathsAndTextsOfBothKindsServe(self):
        write(os.path.join(self.src, "a"), "1")
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        pytoolForQt.zip(u"src/", u"имя.zip", u"")
        self.assertEqual({"a": "1"}, contents(u"имя.zip".encode("utf-8")))

    def test_whatIsNoPathFails(self):
        for value in ("", None, 1.5, "a\0b", []):
            for arguments in ((value, self.dest), (self.src, value)):
                with self.assertRaises(ToolError):
                    pytoolForQt.zip(*(arguments + ("",)))
        self.assertEqual(["src"], os.listdir(self.folder))

    def test_aSourceThatIsMissingOrAFileFails(self):
        self.src = self.write("file", "x")
        self.assert_refused("no such folder")
        self.src = self.path("absent")
        self.assert_refused("no such folder")


class Hostile(Packing):
    def test_namesWithQuotesBlanksNewlinesAndOtherLettersComeBack(self):
        names = ["it's", 'a "b"', "new\nline", " lead", "tab\t", "%s%n", "$(x)", u"日本語".encode("utf-8"),
                 u"café/ü.txt".encode("utf-8"), "-rf", ".hidden", "..dots", "~"]
        for name in names:
            write(os.path.join(self.src, name), name)
        self.assertEqual(dict((name, name) for name in names), self.pack())
        flags = dict((one.name, one.flags) for one in parsed(self.dest))
        self.assertEqual(0, flags["it's"])
        self.assertEqual(0x800, flags[u"日本語".encode("utf-8")])
        pytoolForQt.unZip(self.dest, self.path("back"), "NULL")
        self.assertEqual(tree(self.src), tree(self.path("back")))

    def test_namesOfOtherEncodingsKeepTheirBytes(self):
        for name in ("\xff\xfe", "\xcf\xd6/\xb5", "\x81"):
            write(os.path.join(self.src, name), name)
        self.assertEqual(dict((name, name) for name in ("\xff\xfe", "\xcf\xd6/\xb5", "\x81")), self.pack())
        self.assertEqual(set([0]), set(one.flags for one in parsed(self.dest)))
        pytoolForQt.unZip(self.dest, self.path("back"), "NULL")
        self.assertEqual(tree(self.src), tree(self.path("back")))

    def test_pathsWithQuotesBlanksAndNewlinesServe(self):
        self.src = self.path("it's \"a\" b\nc", u"мир".encode("utf-8"))
        self.dest = self.path(u"o'ut \"x\"\n中.zip".encode("utf-8"))
        write(os.path.join(self.src, "a"), "1")
        self.assertEqual({"a": "1"}, self.pack())

    def test_namesThatCouldNotBeUnpackedAreRefused(self):
        for name, text in (("a\\b", "not a plain path"), ("C:file", "absolute")):
            path = write(os.path.join(self.src, name), "x")
            self.assert_refused(text)
            os.remove(path)

    def test_linksToFilesOfTheFolderArePackedAsFiles(self):
        write(os.path.join(self.src, "d", "real"), "bytes")
        os.symlink("d/real", os.path.join(self.src, "near"))
        os.symlink(os.path.join(self.src, "d", "real"), os.path.join(self.src, "absolute"))
        self.assertEqual({"d/real": "bytes", "near": "bytes", "absolute": "bytes"}, self.pack())

    def test_linksThatLeadElsewhereAreRefused(self):
        self.write("secret", "x")
        self.write("src2/secret", "x")
        os.mkdir(os.path.join(self.src, "d"))
        for target, text in (("../secret", "leads out"), ("/etc/passwd", "leads out"), ("../src2/secret", "leads out"),
                             ("d", "to no file"), ("absent", "to no file"), ("link", "to no file")):
            link = os.path.join(self.src, "link")
            os.symlink(target, link)
            self.assert_refused(text)
            os.remove(link)

    def test_pipesAndSocketsAreRefusedWithoutWaiting(self):
        os.mkfifo(os.path.join(self.src, "pipe"))
        before = sorted(os.listdir(self.folder))
        with self.assertRaises(ToolError):
            pytoolForQt.zip(self.src, self.dest, "")
        os.remove(os.path.join(self.src, "pipe"))
        server = socket.socket(socket.AF_UNIX)
        server.bind(os.path.join(self.src, "s"))
        with self.assertRaises(ToolError):
            pytoolForQt.zip(self.src, self.dest, "")
        server.close()
        self.assertEqual(before, sorted(os.listdir(self.folder)))

    def test_aFolderNestedTooDeepIsRefused(self):
        os.makedirs(os.path.join(self.src, *["d"] * 101))
        self.assert_refused("more than 100 folders deep")

    def test_leftoversOfAKilledRunAreNotPacked(self):
        write(os.path.join(self.src, ".quenzo-0123456789abcdef.tmp", "new", "x"), "x")
        write(os.path.join(self.src, ".quenzo-0123456789abcdee.tmp"), "x")
        write(os.path.join(self.src, ".quenzo-mine.tmp"), "x")
        self.assertEqual({".quenzo-mine.tmp": "x"}, self.pack())


class Limits(Packing):
    """What cannot be unpacked is not packed."""

    def limit(self, name, value):
        self.addCleanup(setattr, quenzo_limits, name, getattr(quenzo_limits, name))
        setattr(quenzo_limits, name, value)

    def assert_packs_what_unpacks(self):
        self.pack()
        pytoolForQt.unZip(self.dest, self.path("back"), "NULL")
        shutil.rmtree(self.path("back"))
        os.remove(self.dest)

    def test_theNumberOfEntries(self):
        for number in range(20):
            os.mkdir(os.path.join(self.src, "d%d" % number))
        self.limit("MAX_ENTRIES", 20)
        self.assert_packs_what_unpacks()
        write(os.path.join(self.src, "one more"), "x")
        self.assert_refused("more than 20 entries")

    def test_theSizeOfAllContent(self):
        write(os.path.join(self.src, "a.png"), "x" * 600)
        self.limit("MAX_BYTES", 1000)
        write(os.path.join(self.src, "b"), "x" * 400)
        self.assert_packs_what_unpacks()
        write(os.path.join(self.src, "b"), "x" * 401)
        self.assert_refused("unpacks to 1001 bytes")
        write(os.path.join(self.src, "b"), "x" * 400)
        self.assert_refused("unpacks to 1001 bytes", self.write("c.apk", "x"))

    def test_theRatioOfContentToArchive(self):
        write(os.path.join(self.src, "a"), "\0" * (4 << 20))
        self.assert_packs_what_unpacks()
        self.limit("RATIO_FREE_BYTES", (4 << 20) - 1)
        self.assert_refused("more than 200 times its size")
        write(os.path.join(self.src, "ballast.png"), os.urandom(32 << 10))
        self.assert_packs_what_unpacks()

    def test_theSizeOfTheDirectory(self):
        for number in range(20):
            write(os.path.join(self.src, "%02d" % number), "x")
        self.limit("MAX_DIRECTORY_BYTES", 20 * 48)
        self.assert_packs_what_unpacks()
        write(os.path.join(self.src, "one more"), "x")
        self.assert_refused("directory has more than")


class Failures(Packing):
    def test_aFileThatCannotBeReadLeavesNothing(self):
        os.chmod(self.folder, 0o777)
        os.chmod(write(os.path.join(self.src, "closed"), "x"), 0)

        def work():
            try:
                pytoolForQt.zip(self.src, self.dest, "")
            except IOError as error:
                return error.__class__.__name__
            except OSError as error:
                return error.__class__.__name__
            return "packed"

        self.assertEqual("OSError", as_plain_user(work))
        self.assertEqual(["src"], os.listdir(self.folder))

    def test_aFileThatGrowsMeanwhileFails(self):
        path = write(os.path.join(self.src, "a.txt"), "x" * (quenzo_pack.BATCH_BYTES + 1))
        read_blocks = quenzo_pack.blocks
        self.addCleanup(setattr, quenzo_pack, "blocks", read_blocks)

        def growing(source):
            for block in read_blocks(source):
                with open(path, "ab") as out:
                    out.write("more")
                yield block
                break
            for block in read_blocks(source):
                yield block

        quenzo_pack.blocks = growing
        with self.assertRaises(ToolError) as caught:
            pytoolForQt.zip(self.src, self.dest, "")
        self.assertIn("changed while it was packed", str(caught.exception))
        self.assertEqual(["src"], os.listdir(self.folder))

    def test_aSmallFileThatChangesMeanwhileFails(self):
        path = os.path.join(self.src, "d", "a.txt")
        check = quenzo_pack.check_names
        self.addCleanup(setattr, quenzo_pack, "check_names", check)
        for later in ("x" * 101, "x" * 99, ""):
            write(path, "x" * 100)
            write(os.path.join(self.src, "b.txt"), "b" * 100)
            quenzo_pack.check_names = lambda names: (check(names), write(path, later))
            with self.assertRaises(ToolError) as caught:
                pytoolForQt.zip(self.src, self.dest, "")
            self.assertIn("'d/a.txt' changed while it was packed", str(caught.exception))
            self.assertEqual(["src"], os.listdir(self.folder))

    def test_noThreadOutlivesTheCall(self):
        for number in range(40):
            write(os.path.join(self.src, "%02d.txt" % number), os.urandom(quenzo_pack.BATCH_BYTES // 2 + 1))
        self.pack()
        self.assertEqual(1, threading.active_count())
        for place, name in ((quenzo_pack, "read_small"), (quenzo_pack, "deflated"),
                            (quenzo_pack.ZipWriter, "add_packed")):
            honest, left = getattr(place, name), [3]

            def failing(*arguments):
                left[0] -= 1
                if left[0] < 0:
                    raise IOError(5, "Input/output error")
                return honest(*arguments)

            setattr(place, name, failing)
            try:
                pytoolForQt.zip(self.src, self.dest, "")
            except IOError:
                self.assertEqual(1, threading.active_count(), name)  # While the exception still holds all its frames.
            else:
                self.fail(name)
            finally:
                setattr(place, name, honest)

    def test_aFullDiskLeavesTheOldArchiveAndNothingElse(self):
        write(os.path.join(self.src, "a.png"), os.urandom(1 << 20))
        with full_disk(self.path("small"), 512 << 10):
            self.dest = self.write("small/out.zip", "old")
            with self.assertRaises(EnvironmentError):
                pytoolForQt.zip(self.src, self.dest, "")
            self.assertEqual({"out.zip": "old"}, tree(self.path("small")))

    def test_aKilledRunLeavesTheOldArchive(self):
        write(os.path.join(self.src, "a.txt"), os.urandom(24 << 20))
        self.write("out.zip", "old")
        child = python("import sys, pytoolForQt; pytoolForQt.zip(sys.argv[1], sys.argv[2], '')", self.src, self.dest)
        self.assertTrue(killed_when(child, lambda: any(
            name.startswith(".quenzo-") and os.path.getsize(self.path(name)) > 1 << 20
            for name in os.listdir(self.folder))), "the run ended before it could be killed")
        self.assertEqual("old", read(self.dest))


if __name__ == "__main__":
    unittest.main()
