# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Importing SDK packages: importSDK(src, dest[, idSDK]) answers 1, or 100 to 104."""
import os
import resource
import sys
import unittest

from support import LINK_ATTRIBUTES, SAMPLE, FolderCase, Raw, as_plain_user, contents, deflated, full_disk
from support import killed_when, python, raw_archive, read, tree, write

import pytoolForQt

IMPORTED, WRONG_SDK, DAMAGED, NO_CONFIG, BAD_CONFIG, NOT_UNPACKED = 1, 100, 101, 102, 103, 104
SDK = '<sdk id="%s" name="Pay" version="1"><files><file>lib/pay.jar</file></files></sdk>'


class Importing(FolderCase):
    def setUp(self):
        FolderCase.setUp(self)
        self.src, self.dest = self.path("in.zip"), self.path("out")

    def made(self, config, *entries):
        """Writes a package of that config.xml and other entries; without any, of the file that SDK names."""
        return raw_archive(self.src, [Raw("config.xml", config)] + list(entries or [Raw("lib/pay.jar", "jar")]))

    def answers(self, wanted, *number):
        """The answer into a missing folder and into one with content; that neither is touched on failure."""
        for self.dest, keep in ((self.path("fresh"), False), (self.path("full"), True)):
            if keep:
                write(os.path.join(self.dest, "config.xml"), "mine")
                write(os.path.join(self.dest, "lib", "other"), "mine")
            before = tree(self.folder)
            self.said.truncate(0)
            answer = pytoolForQt.importSDK(self.src, self.dest, *number)
            self.assertEqual(wanted, answer, "%s (%s)" % (answer, self.said.getvalue()))
            if wanted == IMPORTED:
                self.assertEqual("", self.said.getvalue())
                continue
            self.assert_unchanged(before)
            self.assertTrue(self.said.getvalue().startswith("importSDK: "), self.said.getvalue())
            self.assertEqual(1, self.said.getvalue().count("\n"))


class SamplePackages(Importing):
    def sample(self, name):
        self.src = os.path.join(SAMPLE, "packages", name)

    def test_wholePackageAnswers1WithAndWithoutItsNumber(self):
        self.sample("harbourpay.zip")
        for number, arguments in enumerate(((), (7,), ("7",))):
            self.dest = self.path("out%d" % number)
            self.assertEqual(1, pytoolForQt.importSDK(self.src, self.dest, *arguments))
            files = dict((name, data) for name, data in tree(self.dest).items() if data is not None)
            self.assertEqual(contents(self.src), files)
            self.assertIn("config.xml", files)

    def test_anotherSdkAnswers100(self):
        self.sample("another-sdk.zip")
        self.answers(WRONG_SDK, 7)
        self.answers(IMPORTED, 8)

    def test_damagedPackageAnswers101(self):
        self.sample("damaged.zip")
        self.answers(DAMAGED, 7)

    def test_packageWithoutConfigAnswers102(self):
        self.sample("no-config.zip")
        self.answers(NO_CONFIG, 7)

    def test_packageWithBrokenConfigAnswers103(self):
        self.sample("bad-config.zip")
        self.answers(BAD_CONFIG, 7)

    def test_hostilePackageAnswers104(self):
        self.sample("hostile.zip")
        self.answers(NOT_UNPACKED, 7)

    def test_packagesAreWhatTheirRecipeMakes(self):
        child = python("import runpy, sys; del sys.argv[0]; runpy.run_path(sys.argv[0], run_name='__main__')",
                       os.path.join(SAMPLE, "make-packages.py"), self.path("made"))
        self.assertEqual(("", ""), child.communicate())
        self.assertEqual(tree(os.path.join(SAMPLE, "packages")), tree(self.path("made")))


class Numbers(Importing):
    def test_zeroIsANumberLikeOthers(self):
        self.made(SDK % 0)
        self.answers(IMPORTED, 0)
        self.answers(IMPORTED)
        self.answers(WRONG_SDK, 7)
        self.made(SDK % 7)
        self.answers(WRONG_SDK, 0)

    def test_theLargestNumberServes(self):
        self.made(SDK % 2147483647)
        self.answers(IMPORTED, 2147483647)

    def test_aNumberThatIsNoneOfOursIsAnotherSdk(self):
        self.made(SDK % 7)
        for number in (-1, 70, "x", "", u"é", u"é".encode("utf-8"), 7.5):
            self.answers(WRONG_SDK, number)

    def test_leadingZerosAreTheSameNumber(self):
        self.made(SDK % "007")
        self.answers(IMPORTED, 7)


class Config(Importing):
    def test_whatLacksAFieldAnswers103(self):
        files = "<files><file>lib/pay.jar</file></files>"
        for config in ('<sdk name="Pay" version="1">%s</sdk>' % files, '<sdk id="7" version="1">%s</sdk>' % files,
                       '<sdk id="7" name="Pay">%s</sdk>' % files, '<sdk id="7" name=" " version="1">%s</sdk>' % files,
                       '<sdk id="7" name="Pay" version="">%s</sdk>' % files, '<sdk id="7" name="Pay" version="1"/>',
                       '<sdk id="7" name="Pay" version="1"><files/></sdk>',
                       '<sdk id="7" name="Pay" version="1"><file>lib/pay.jar</file></sdk>',
                       '<kit id="7" name="Pay" version="1">%s</kit>' % files,
                       '<top><sdk id="7" name="Pay" version="1">%s</sdk></top>' % files):
            self.made(config)
            self.answers(BAD_CONFIG, 7)

    def test_numbersThatAreNoneAnswer103(self):
        for number in ("", "x", "-1", "7.0", " 7", "7 ", "7&#10;", "0x7", "2147483648", "9" * 11,
                       u"٧".encode("utf-8")):
            self.made(SDK % number)
            self.answers(BAD_CONFIG)

    def test_filesWithImpossibleNamesAnswer103(self):
        for name in ("", " ", "../x", "/etc/passwd", "a\\b", "lib/", "a//b", "C:/x"):
            self.made('<sdk id="7" name="Pay" version="1"><files><file>lib/pay.jar</file><file>%s</file></files></sdk>'
                      % name)
            self.answers(BAD_CONFIG, 7)

    def test_whatIsNoXmlAnswers103(self):
        for config in ("", " ", "text", "<sdk", "<sdk></sdk><sdk></sdk>", "\xff\xfe", "\0" * 99, (SDK % 7)[:-1],
                       '<?xml version="1.0" encoding="nonsense"?>' + SDK % 7, SDK % 7 + "\0", "\x1f\x8b\x08"):
            self.made(config)
            self.answers(BAD_CONFIG, 7)

    def test_entityBombsAnswer103AtOnce(self):
        bomb = '<!DOCTYPE b [<!ENTITY a "%s">%s]>' % ("x" * 1000, "".join(
            '<!ENTITY a%d "%s">' % (turn + 1, "&a%s;" % (turn or "") * 10) for turn in range(9)))
        self.made(bomb + (SDK % 7).replace("lib", "&a9;lib"))
        before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
        self.answers(BAD_CONFIG, 7)
        self.assertLess(resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before, 64 << 10)

    def test_outerEntitiesAreNeverRead(self):
        self.write("secret", "lib/pay.jar")
        for head in ('<!DOCTYPE sdk [<!ENTITY x SYSTEM "file://%s">]>' % self.path("secret"),
                     '<!DOCTYPE sdk SYSTEM "file://%s">' % self.path("secret")):
            self.made(head + (SDK % 7).replace("lib/pay.jar", "&x;"))
            self.answers(BAD_CONFIG, 7)

    def test_aHugeConfigAnswers103(self):
        self.made(SDK % 7 + " " * (1 << 20))
        self.answers(BAD_CONFIG, 7)

    def test_deepNestingIsReadOrRefusedWithoutACrash(self):
        self.made((SDK % 7).replace("<files>", "<x>" * 100000 + "</x>" * 100000 + "<files>"))
        self.answers(IMPORTED, 7)
        self.made("<x>" * 300000)
        self.answers(BAD_CONFIG, 7)

    def test_otherElementsCommentsAndEncodingsAreFine(self):
        body = u'<sdk id="7" name="Плата" version="1" more="x"><!-- c --><note>é</note><files>' \
               u'<file> lib/имя &amp; co.jar\n</file><other/></files></sdk>'
        name = u"lib/имя & co.jar".encode("utf-8")
        for number, config in enumerate((body.encode("utf-8"), u"\ufeff".encode("utf-8") + body.encode("utf-8"),
                                         body.encode("utf-16"),
                                         u'<?xml version="1.0" encoding="utf-8"?>\n'.encode("utf-8") +
                                         body.encode("utf-8"))):
            self.made(config, Raw(name, "jar"))
            self.dest = self.path("out%d" % number)
            self.assertEqual(IMPORTED, pytoolForQt.importSDK(self.src, self.dest, 7), self.said.getvalue())
            self.assertEqual("jar", read(os.path.join(self.dest, name)))

    def test_aConfigElsewhereDoesNotCount(self):
        for name in ("sub/config.xml", "Config.xml", "config.xml.bak", "config.xml/"):
            raw_archive(self.src, [Raw(name, "" if name.endswith("/") else SDK % 7), Raw("lib/pay.jar", "jar")])
            self.answers(NO_CONFIG, 7)


class Packages(Importing):
    def test_aPackageThatLacksAFileItNamesAnswers101(self):
        self.made(SDK % 7, Raw("lib/other.jar", "jar"))
        self.answers(DAMAGED, 7)
        self.made(SDK % 7, Raw("lib/pay.jar/", ""))
        self.answers(DAMAGED, 7)

    def test_whatIsNoWholeArchiveAnswers101(self):
        whole = read(os.path.join(SAMPLE, "packages", "harbourpay.zip"))
        for data in ("", "text", whole[:-1], whole[:-30], whole[:100], whole[1:], "PK\5\6" + "\xff" * 18):
            write(self.src, data)
            self.answers(DAMAGED, 7)

    def test_aDamagedConfigAnswers101(self):
        self.src = raw_archive(self.src, [Raw("config.xml", SDK % 7, crc=1), Raw("lib/pay.jar", "jar")])
        self.answers(DAMAGED, 7)

    def test_damageInAFileThatNobodyNamedAnswers101(self):
        self.made(SDK % 7, Raw("lib/pay.jar", "jar"), Raw("more", "x" * 99, 8, packed=deflated("x" * 99)[:-1]))
        self.answers(DAMAGED, 7)

    def test_entriesThatAreRefusedAnswer104(self):
        for evil in (Raw("../x", "x"), Raw("/x", "x"), Raw("a\\b", "x"), Raw("C:/x", "x"), Raw("lib/pay.jar", "x"),
                     Raw("l", "/etc", attributes=LINK_ATTRIBUTES), Raw("e", "x", flags=1), Raw("m", "x", 12),
                     Raw("b", "", 8, packed=deflated("\0" * (8 << 20)), size=9), Raw("n" * 256, "x")):
            self.made(SDK % 7, Raw("lib/pay.jar", "jar"), evil)
            self.answers(NOT_UNPACKED, 7)

    def test_aConfigThatUnderstatesItsSizeAnswers104(self):
        raw_archive(self.src, [Raw("config.xml", "", 8, packed=deflated(" " * (64 << 20)), size=100),
                               Raw("lib/pay.jar", "jar")])
        self.answers(NOT_UNPACKED, 7)

    def test_aMissingPackageOrAFolderAnswers104(self):
        for self.src in (self.path("absent"), self.path("folder")):
            self.write("folder/x", "x")
            self.answers(NOT_UNPACKED, 7)

    def test_aPipeOrDeviceForAPackageAnswers104AtOnce(self):
        os.mkfifo(self.path("pipe"))
        for self.src in (self.path("pipe"), "/dev/zero"):
            self.assertEqual(NOT_UNPACKED, pytoolForQt.importSDK(self.src, self.dest, 7))
        self.assertEqual(["pipe"], os.listdir(self.folder))

    def test_aWriteProtectedFileOfSomebodyElseIsLeftAlone(self):
        self.made(SDK % 7)
        jar = self.write("out/lib/pay.jar", "mine")
        os.chmod(jar, 0o444)
        for folder in (self.folder, self.dest, os.path.dirname(jar)):
            os.chmod(folder, 0o777)
        before = tree(self.folder)
        self.assertEqual(str(NOT_UNPACKED),
                         as_plain_user(lambda: pytoolForQt.importSDK(self.src, self.dest, 7)))
        self.assert_unchanged(before)

    def test_whatIsNoPathAnswers104(self):
        good = self.made(SDK % 7)
        for bad in ("", None, 1.5, "a\0b"):
            self.assertEqual(NOT_UNPACKED, pytoolForQt.importSDK(bad, self.dest))
            self.assertEqual(NOT_UNPACKED, pytoolForQt.importSDK(good, bad))
        self.assertEqual(["in.zip"], os.listdir(self.folder))

    def test_aFileInTheWayAnswers104(self):
        self.made(SDK % 7)
        self.write("file", "mine")
        before = tree(self.folder)
        for dest in ("file", "file/below"):
            self.assertEqual(NOT_UNPACKED, pytoolForQt.importSDK(self.src, self.path(dest), 7))
        self.assert_unchanged(before)

    def test_aFullDiskAnswers104(self):
        self.made(SDK % 7, Raw("lib/pay.jar", os.urandom(2 << 20)))
        with full_disk(self.path("small"), 1 << 20):
            self.write("small/full/mine", "x")
            for dest in (self.path("small", "fresh"), self.path("small", "full")):
                self.assertEqual(NOT_UNPACKED, pytoolForQt.importSDK(self.src, dest, 7))
            self.assertEqual({"full": None, "full/mine": "x"}, tree(self.path("small")))

    def test_aKilledImportLeavesNoFolder(self):
        self.made(SDK % 7, Raw("lib/pay.jar", os.urandom(64 << 20)))
        child = python("import sys, pytoolForQt; pytoolForQt.importSDK(sys.argv[1], sys.argv[2], 7)", self.src,
                       self.dest)
        self.assertTrue(killed_when(child, lambda: any(
            name.startswith(".quenzo-") for name in os.listdir(self.folder))), "the run ended before it was killed")
        self.assertFalse(os.path.exists(self.dest))

    def test_anImportOverAnEarlierOneReplacesItsFiles(self):
        self.made(SDK % 7)
        self.assertEqual(IMPORTED, pytoolForQt.importSDK(self.src, self.dest, 7))
        self.made(SDK % 7, Raw("lib/pay.jar", "newer"))
        self.assertEqual(IMPORTED, pytoolForQt.importSDK(self.src, self.dest, 7))
        self.assertEqual("newer", read(self.path("out", "lib", "pay.jar")))

    def test_aHostWithoutAnErrorStreamGetsItsAnswer(self):
        for stream in (None, open(os.devnull, "r")):
            sys.stderr = stream
            answer = pytoolForQt.importSDK(self.path("absent"), self.dest)
            sys.stderr = self.said
            self.assertEqual(NOT_UNPACKED, answer)


class Plan(Importing):
    """planImport: what an import would do, without doing it."""

    def plan(self, *number):
        before = tree(self.folder)
        answer = pytoolForQt.planImport(self.src, self.dest, *number)
        self.assert_unchanged(before)
        return answer

    def test_everyFileIsNamed(self):
        self.made(SDK % 7, Raw("lib/", ""), Raw("lib/pay.jar", "jar"), Raw(u"имя".encode("utf-8"), "x"), Raw("a\nb", "x"))
        self.assertEqual(["1", "config.xml", "lib/pay.jar", u"имя".encode("utf-8"), "a\\nb"], self.plan(7))

    def test_answersAreThoseOfTheImport(self):
        self.made(SDK % 7)
        self.assertEqual(["100"], self.plan(8))
        self.made("<sdk/>")
        self.assertEqual(["103"], self.plan())
        self.made(SDK % 7, Raw("lib/pay.jar", "jar", crc=1))
        self.assertEqual(["101"], self.plan())
        write(self.src, "no archive")
        self.assertEqual(["101"], self.plan())

    def test_itSeesWhatTheImportCannotReplace(self):
        rows = [("lib", None), ("lib/pay.jar/inner", None), ("config.xml/inner", None), ("x/y", "absent"),
                ("x/y", self.folder), ("lib/pay.jar", None), ("lib", "absent"), ("lib", self.folder)]
        for number, (taken, link) in enumerate(rows):
            self.made(SDK % 7, Raw("lib/pay.jar", "jar"), Raw("x/y", "x"))
            self.dest = self.path("out%d" % number)
            place = os.path.join(self.dest, taken)
            if link:
                os.makedirs(os.path.dirname(place))
                os.symlink(link, place)
            else:
                write(place, "mine")
            planned = self.plan()[0]
            self.assertEqual((taken, link, str(pytoolForQt.importSDK(self.src, self.dest))), (taken, link, planned))


if __name__ == "__main__":
    unittest.main()
