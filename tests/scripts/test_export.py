# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Exporting a channel's developer record: export_develop_info(idChannel, dest) answers 0 or a cause."""
import errno
import json
import os
import shutil
import stat
import unittest

from support import SCRIPTS, FolderCase, as_plain_user, ended, full_disk, python, read, tree, write

import start

EXPORTED, NO_CHANNEL, NO_RECORDS, BAD_RECORDS, NOT_WRITTEN, BAD_ARGUMENT = range(6)
VARIABLE = "QUENZO_DEVELOP_INFO"


class Exporting(FolderCase):
    def setUp(self):
        FolderCase.setUp(self)
        self.dest = self.path("out")
        self.addCleanup(os.environ.pop, VARIABLE, None)
        os.environ.pop(VARIABLE, None)

    def records(self, content):
        """Lets the export read this content, given as bytes or as what becomes JSON."""
        if not isinstance(content, str):
            content = json.dumps(content)
        os.environ[VARIABLE] = self.write("records.json", content)

    def record(self, **changes):
        record = {"id": 5, "name": "Store", "developer": "We", "package": "a.b"}
        record.update(changes)
        return dict((key, value) for key, value in record.items() if value is not None)

    def exported(self, channel, dest=None):
        self.assertEqual(EXPORTED, start.export_develop_info(channel, dest or self.dest), self.said.getvalue())
        return tree(dest or self.dest)

    def refused(self, answer, channel=5, dest=None):
        before = tree(self.folder)
        self.said.truncate(0)
        self.assertEqual(answer, start.export_develop_info(channel, dest or self.dest), self.said.getvalue())
        self.assert_unchanged(before)
        self.assertTrue(self.said.getvalue().startswith("export_develop_info: "), self.said.getvalue())
        self.assertEqual(1, self.said.getvalue().count("\n"))


class ShippedRecords(Exporting):
    def test_everyChannelGivesItsRecordAsJsonAndAsSheet(self):
        records = json.loads(read(os.path.join(SCRIPTS, "develop_info.json")).decode("utf-8"))["channels"]
        self.assertGreater(len(records), 3)
        for record in records:
            dest = self.path("out%d" % record["id"])
            files = self.exported(record["id"], dest)
            names = ["channel_%d.%s" % (record["id"], suffix) for suffix in ("json", "txt")]
            self.assertEqual(names, sorted(files))
            self.assertEqual(record, json.loads(files[names[0]].decode("utf-8")))
            sheet = files[names[1]].decode("utf-8").split(u"\n")
            self.assertEqual([record["name"], u"", u""], sheet[:2] + sheet[-1:])
            self.assertEqual(len(record) - 1, len(sheet) - 3)
            self.assertIn(record["package"], [line.partition(u":")[2].strip() for line in sheet])

    def test_lettersAreWrittenAsTheyAre(self):
        files = self.exported(103)
        for name in ("channel_103.json", "channel_103.txt"):
            self.assertIn(u"空港游戏工作室".encode("utf-8"), files[name])
            self.assertNotIn("\\u", files[name])

    def test_sheetHasOneLineAKeyWithValuesInOneColumn(self):
        self.assertEqual(u"Quartz Arcade\n\n"
                         u"id:              104\n"
                         u"developer:       Harbour & Sons \"Deluxe\"\n"
                         u"package:         com.quenzo.skyharbour\n"
                         u"contact:         sons@skyharbour.example\n"
                         u"application:     5\n"
                         u"categories:\n"
                         u"address:         Quay 7\\n00100 Port Quenzo\n"
                         u"signed_contract: yes\n", self.exported(104)["channel_104.txt"].decode("utf-8"))

    def test_noRecordIsForANumberThatNobodyGave(self):
        self.refused(NO_CHANNEL, 0)

    def test_equalRecordsGiveEqualBytes(self):
        self.assertEqual(self.exported(102, self.path("a")), self.exported(102, self.path("b")))

    def test_filesAreUtf8UnderThePosixLocaleToo(self):
        child = python("import sys, start; sys.exit(start.export_develop_info(102, sys.argv[1]))", self.dest,
                       environment={"LC_ALL": "C"})
        self.assertEqual(("", ""), child.communicate())
        self.assertEqual(tree(self.dest), self.exported(102, self.path("again")))


class Answers(Exporting):
    def test_aChannelThatNobodyKnowsAnswers1(self):
        for channel in (1, 999, -1, 1 << 70):
            self.refused(NO_CHANNEL, channel)

    def test_recordsThatAreMissingAnswer2(self):
        os.environ[VARIABLE] = self.path("absent.json")
        self.refused(NO_RECORDS)
        os.environ[VARIABLE] = self.folder
        self.refused(NO_RECORDS)

    def test_aPipeOrDeviceForRecordsAnswers2AtOnce(self):
        os.mkfifo(self.path("pipe"))
        for path in (self.path("pipe"), "/dev/zero"):
            child = python("import sys, start; sys.exit(start.export_develop_info(101, sys.argv[1]))", self.dest,
                           environment={VARIABLE: path})
            self.assertEqual(NO_RECORDS, ended(child), path)
        self.assertEqual(["pipe"], os.listdir(self.folder))

    def test_aPipeForTheFolderAnswers4(self):
        os.mkfifo(self.dest)
        self.assertEqual(NOT_WRITTEN, start.export_develop_info(101, self.dest))
        self.assertTrue(stat.S_ISFIFO(os.stat(self.dest).st_mode))

    def test_recordsThatCannotBeReadAnswer2(self):
        self.records({"channels": [self.record()]})
        os.chmod(self.folder, 0o777)
        os.chmod(os.environ[VARIABLE], 0)
        self.assertEqual(str(NO_RECORDS), as_plain_user(lambda: start.export_develop_info(5, self.dest)))
        os.chmod(os.environ[VARIABLE], 0o600)
        self.assertEqual(["records.json"], os.listdir(self.folder))

    def test_textThatIsNoRecordFileAnswers3(self):
        for content in ("", "{", "[]", "7", "null", '"channels"', "{}", '{"channels": {}}', '{"channels": null}',
                        "\xff\xfe", "[" * 100000, '{"channels": NaN}', '{"channels": [], "channels": []}'):
            self.records(content)
            self.refused(BAD_RECORDS)

    def test_aRecordThatLacksSomethingAnswers3AndBlocksNoOther(self):
        for bad in (self.record(id=6, name=None), self.record(id=6, developer=""), self.record(id=6, package=" "),
                    self.record(id=6, name=7), self.record(id=6, name=1.5)):
            self.records({"channels": [bad, self.record()]})
            self.refused(BAD_RECORDS, 6)
            self.exported(5)
            shutil.rmtree(self.dest)

    def test_whatIsNoRecordBlocksNoOther(self):
        for bad in (7, None, [], self.record(id=None), self.record(id="6"), self.record(id=6.5), self.record(id=True)):
            self.records({"channels": [bad, self.record()]})
            self.refused(NO_CHANNEL, 6)
            self.exported(5)
            shutil.rmtree(self.dest)

    def test_anIdThatIsThereTwiceAnswers3AndBlocksNoOther(self):
        self.records({"channels": [self.record(id=6), self.record(), self.record(id=6)]})
        self.refused(BAD_RECORDS, 6)
        self.exported(5)

    def test_valuesThatAreNoneAnswer3AndBlockNoOther(self):
        record = '{"id": %d, "name": "n", "developer": "d", "package": "p", "x": %s}'
        for value in ('"\\ud800"', '["\\udfff"]', '{"\\ud800": 1}', "Infinity", "[NaN]", '{"a": 1, "a": 2}',
                      "[" * 60 + "]" * 60):
            self.records('{"channels": [%s, %s]}' % (record % (6, value), record % (5, "1")))
            self.refused(BAD_RECORDS, 6)
            self.exported(5)
            shutil.rmtree(self.dest)

    def test_aFolderThatCannotBeMadeAnswers4(self):
        self.records({"channels": [self.record()]})
        self.write("file", "mine")
        for dest in ("file", "file/below"):
            self.refused(NOT_WRITTEN, dest=self.path(dest))

    def test_aFolderThatCannotBeWrittenAnswers4(self):
        os.chmod(self.folder, 0o555)
        self.addCleanup(os.chmod, self.folder, 0o755)
        self.assertEqual(str(NOT_WRITTEN), as_plain_user(lambda: start.export_develop_info(101, self.dest)))
        self.assertEqual([], os.listdir(self.folder))

    def test_argumentsThatAreNoneAnswer5(self):
        for channel in (None, True, 1.5, "", "x", "1.0", u"é", []):
            self.refused(BAD_ARGUMENT, channel)
        for dest in ("", None, 7.5, "a\0b"):
            self.assertEqual(BAD_ARGUMENT, start.export_develop_info(101, dest))


class Files(Exporting):
    def test_bothFilesAppearOrNone(self):
        for taken in ("channel_5.txt", "channel_5.json"):
            self.records({"channels": [self.record()]})
            self.dest = self.path("has " + taken)
            write(os.path.join(self.dest, taken, "mine"), "a folder is in the way")
            self.refused(NOT_WRITTEN)

    def test_numbersNothingAndNestedValuesAreKept(self):
        for value, shown in (("1.10", "1.10"), ("0.1", "0.1"), ("1E400", "1E400"), ("-12.5e-3", "-12.5e-3"),
                             ("12345678901234567890123", "12345678901234567890123"), ("null", "none"),
                             ('{\n        "a": {\n          "b": [\n            1,\n            null\n          ]\n'
                              '        },\n        "c": {}\n      }', "a: {b: [1, none]}, c: {}"),
                             ('[\n        []\n      ]', "[]")):
            text = ('{\n      "id": 5,\n      "name": "n",\n      "developer": "d",\n      "package": "p",\n'
                    '      "x": %s\n    }' % value)
            self.records('{"channels": [%s]}' % text)
            files = self.exported(5)
            self.assertEqual(text.replace("\n    ", "\n") + "\n", files["channel_5.json"])
            self.assertIn("\nx:         %s\n" % shown, files["channel_5.txt"])

    def test_aWriteProtectedSheetOfSomebodyElseIsLeftAlone(self):
        sheet = self.write("out/channel_101.txt", "mine")
        os.chmod(self.folder, 0o777)
        os.chmod(self.dest, 0o777)
        os.chmod(sheet, 0o444)
        before = tree(self.folder)
        self.assertEqual(str(NOT_WRITTEN), as_plain_user(lambda: start.export_develop_info(101, self.dest)))
        self.assert_unchanged(before)

    def test_anEarlierExportStaysWhenTheNextFails(self):
        self.records({"channels": [self.record()]})
        self.exported(5)
        self.records({"channels": [self.record(name="New")]})
        sheet = self.path("out", "channel_5.txt")
        os.remove(sheet)
        write(os.path.join(sheet, "mine"), "x")
        self.refused(NOT_WRITTEN)
        os.remove(os.path.join(sheet, "mine"))
        os.rmdir(sheet)
        self.assertIn("New", self.exported(5)["channel_5.txt"])

    def test_aFullDiskLeavesNeither(self):
        self.records({"channels": [self.record(note="x" * (1 << 20))]})
        with full_disk(self.path("small"), 1 << 20):
            for dest in (self.path("small", "fresh"), self.path("small", "full")):
                self.write("small/full/mine", "x")
                self.assertEqual(NOT_WRITTEN, start.export_develop_info(5, dest))
                self.assertEqual({"full": None, "full/mine": "x"}, tree(self.path("small")))

    def fail_once(self, call, name):
        """The next call of os about a work folder fails, when it has done what it is for if that is a close."""
        real = getattr(os, call)

        def failing(about, *more):
            place = os.readlink("/proc/self/fd/%d" % about) if call == "close" else about
            if call == "close":
                real(about)
            if os.path.basename(place).startswith(name):
                setattr(os, call, real)
                raise OSError(errno.EIO, "told by the test", place)
            return None if call == "close" else real(about, *more)

        setattr(os, call, failing)
        self.addCleanup(setattr, os, call, real)

    def test_aFolderThatEndsWithAnErrorLosesNothing(self):
        self.records({"channels": [self.record()]})
        self.fail_once("close", ".quenzo-")
        self.assertEqual(2, len(self.exported(5)))
        self.assertEqual(["out", "records.json"], sorted(os.listdir(self.folder)))

    def test_aFolderThatCannotBeOpenedLeavesNothing(self):
        self.records({"channels": [self.record()]})
        self.fail_once("open", ".quenzo-")
        self.refused(NOT_WRITTEN)
        self.assertEqual(["records.json"], sorted(os.listdir(self.folder)))

    def test_otherFilesOfTheFolderStay(self):
        self.write("out/mine", "x")
        self.exported(101)
        self.assertEqual(["channel_101.json", "channel_101.txt", "mine"], sorted(self.exported(101)))
        self.assertEqual(["out"], os.listdir(self.folder))

    def test_foldersWithQuotesNewlinesAndOtherLettersServe(self):
        dest = self.path(u"a'b \"c\"\nпапка".encode("utf-8"), "new")
        self.assertEqual(2, len(self.exported(101, dest)))
        self.assertEqual(2, len(self.exported(101, dest.decode("utf-8").replace(u"new", u"нов"))))

    def test_aByteOrderMarkBeforeTheRecordsIsNoHarm(self):
        self.records("\xef\xbb\xbf" + json.dumps({"channels": [self.record()]}))
        self.exported(5)

    def test_lettersOutsideTheBasicPlaneServe(self):
        self.records('{"channels": [{"id": 5, "name": "\\ud83c\\udfae", "developer": "d", "package": "p"}]}')
        files = self.exported(5)
        self.assertEqual(u"\U0001f3ae", files["channel_5.txt"].decode("utf-8").split(u"\n")[0])

    def test_noValueBreaksALineOfTheSheet(self):
        self.records({"channels": [self.record(**{
            "name": u"a\u2028b", "x": u"1\r2\n3\x0b4\x0c5\x856\u20297\\n", u"k\ny": ["a\nb", "c"]})]})
        sheet = self.exported(5)["channel_5.txt"].decode("utf-8")
        self.assertEqual(7, len(sheet.splitlines()), repr(sheet))
        self.assertEqual(7, sheet.count(u"\n"))


if __name__ == "__main__":
    unittest.main()
