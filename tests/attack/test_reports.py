# SPDX-License-Identifier: MIT
"""What the program says of its outcome, whatever the environment, and whether that is what has come to be."""
import os
import sqlite3
import unittest

from attack import Attack, become_nobody, read, write
from support import Raw, contents, raw_archive


class Reports(Attack):
    theme = "reports"

    RULES = [("QT_LOGGING_RULES", "*.debug=false"), ("QT_LOGGING_RULES", "*=false;quenzo.*=false"),
             ("QT_LOGGING_CONF", "rules.ini"), ("XDG_CONFIG_HOME", "config")]

    def database(self, *statements):
        path = self.path("records.db")
        with sqlite3.connect(path) as connection:
            for statement in statements:
                connection.execute(statement)
        connection.close()
        return path

    def rows(self, sql="SELECT * FROM t"):
        with sqlite3.connect(self.path("records.db")) as connection:
            return connection.execute(sql).fetchall()

    def test_failuresAreToldUnderEveryRule(self):
        def run(number):
            write(self.path("rules.ini"), "[Rules]\n*=false\nquenzo.*=false\n")
            write(self.path("config", "QtProject", "qtlogging.ini"), "[Rules]\n*=false\nquenzo.*=false\n")
            self.database("CREATE TABLE t(a TEXT UNIQUE)", "INSERT INTO t VALUES (1)")
            write(self.path("no.zip"), "no archive")
            os.mkdir(self.path("empty"))
            name, value = self.RULES[number % len(self.RULES)]
            told = []
            for words in (("db", "--file", "records.db", "insert", "t", "a=1"), ("db", "--file", "records.db", "select", "none"),
                          ("db", "--direct", "--file", "records.db", "insert", "t", "a=1"),
                          ("pack", "absent", "out.zip"), ("unpack", "no.zip", "out"), ("import", "no.zip", "out"),
                          ("encrypt", "no.zip")):
                ended = self.quenzo(*words, environment={name: value})
                if not ended.refused:
                    told.append(repr(ended))
            return "\n".join(told) if told else None

        self.rounds("failures under logging rules", run, count=len(self.RULES))

    def test_whatStaysOfAnUpdateIsTold(self):
        def run(conflict, wanted):
            self.database("CREATE TABLE t(id TEXT, a TEXT UNIQUE%s)" % conflict, "INSERT INTO t VALUES (1, 'x'), (2, 'y')")
            ended = self.quenzo("db", "--file", "records.db", "update", "t", "--where", "id=1",
                                input='{"a": "z"}\n{"a": "y"}\n')
            is_written = ("1", "z") in [(str(one), two) for one, two in self.rows()]
            said = "stays written" in ended.error
            return None if ended.code == 1 and said == is_written and wanted in ended.error else ended

        self.rounds("update, ON CONFLICT ROLLBACK", lambda unused: run(" ON CONFLICT ROLLBACK", "undone"))
        for conflict in ("", " ON CONFLICT ABORT", " ON CONFLICT FAIL"):
            self.rounds("update" + conflict.replace(" ", ", ", 1), lambda unused: run(conflict, "stays written"))

    def test_aMoveThatLeavesFilesIsNoSuccess(self):
        def run(number):
            command = ("cut", "output")[number % 2]
            write(self.path("source", "folder", "file"), "x")
            os.mkdir(self.path("target"))
            for path in (self.folder, self.path("target")):
                os.chmod(path, 0o777)
            os.chmod(self.path("source", "folder"), 0o555)
            ended = self.quenzo(command, "source", "target", before=become_nobody)
            os.chmod(self.path("source", "folder"), 0o755)
            stays = os.path.exists(self.path("source", "folder", "file"))
            return ended if stays and (ended.code == 0 or not ended.refused) else None

        self.rounds("moves from what cannot be changed", run)

    def test_numbersBelowZeroSwitchNothingOff(self):
        def run(number):
            raw_archive(self.path("sdk.zip"), [Raw("config.xml", '<sdk id="7" name="n" version="1"><files><file>a</file>'
                                                   '</files></sdk>'), Raw("a", "x")])
            ended = self.quenzo("import", "--sdk-id=-1", "sdk.zip", "out")
            return None if ended.refused and not os.path.exists(self.path("out")) else ended

        self.rounds("import --sdk-id=-1", run)

    def test_packIntoItsOwnSourceIsRefused(self):
        def run(unused):
            write(self.path("source", "file"), "x")
            os.mkdir(self.path("source", "folder"))
            os.symlink("source", self.path("alias"))
            told = []
            for dest in ("source/out.zip", "source/folder/out.zip", "source/../source/out.zip", "alias/out.zip",
                         "alias/folder/../out.zip", os.path.join(self.folder, "source", "out.zip")):
                ended = self.quenzo("pack", "source", dest)
                if not ended.refused or os.path.exists(self.path("source", "out.zip")):
                    told.append(repr(ended))
            return "\n".join(told) if told else None

        self.rounds("pack into its own source", run)

    def test_answersThatCannotBeWrittenAreNoSuccess(self):
        def run(unused):
            write(self.path("source", "file"), "x")
            with open("/dev/full", "w") as full:
                ended = self.quenzo("copy", "--json", "source", "target", stdout=full)
            return None if ended.code == 1 and ended.error else ended

        self.rounds("output on a full device", run)

    def test_packedArchivesAreRight(self):
        def run(unused):
            write(self.path("source", "file"), "x")
            ended = self.quenzo("pack", "source", "out.zip")
            return None if ended.code == 0 and contents(self.path("out.zip")) == {"file": "x"} else ended

        self.rounds("pack", run, count=1)


if __name__ == "__main__":
    unittest.main()
