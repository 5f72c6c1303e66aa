# SPDX-License-Identifier: MIT
"""Databases and rows that are not what the command db hopes for."""
import json
import os
import sqlite3
import time
import unittest

from attack import Attack, wait_until, write


class Records(Attack):
    theme = "records"

    def database(self, statement="CREATE TABLE t(a TEXT, b TEXT)"):
        with sqlite3.connect(self.path("records.db")) as connection:
            connection.execute(statement)
        connection.close()

    def reader(self):
        """A connection to a new database that is in the middle of reading it."""
        self.database()
        reader = sqlite3.connect(self.path("records.db"), isolation_level=None)
        reader.execute("INSERT INTO t VALUES ('0', '')")
        reader.execute("BEGIN")
        reader.execute("SELECT * FROM t").fetchone()
        return reader

    def rows(self):
        with sqlite3.connect(self.path("records.db")) as connection:
            found = connection.execute("SELECT * FROM t").fetchall()
        connection.close()
        return found

    def test_whatIsNoDatabaseIsRefusedAtOnce(self):
        def run(unused):
            os.mkfifo(self.path("pipe"))
            os.mkdir(self.path("folder"))
            write(self.path("text"), "no database" * 100)
            write(self.path("sqlite"), "SQLite format 3\0" + os.urandom(5000))
            os.symlink("pipe", self.path("link"))
            os.symlink("circle", self.path("circle"))
            told = []
            for name in ("pipe", "folder", "text", "sqlite", "link", "circle", "/dev/zero", "/dev/tty"):
                for way in ([], ["--direct"]):
                    ended = self.quenzo("db", "--file", name, "insert", "t", "a=1", *way, seconds=20)
                    if not ended.refused:
                        told.append(repr(ended))
            return "\n".join(told) if told else None

        self.rounds("files that are no database", run)

    def test_rowsBeyondTheLimitsAreRefused(self):
        def run(unused):
            self.database()
            told = []
            many = json.dumps(dict(("c%d" % number, 1) for number in range(80000)))
            deep = '{"a": ' + "[" * 100000 + "]" * 100000 + "}"
            long_name = json.dumps({"a" * 1000000: 1})
            for line in (many, deep, long_name, '{"a": ' * 5000, '{"a": "\\ud800"}', '{"a": 1e999999}',
                         '{"a": 99999999999999999999}', "\xff\xfe", "\0" * 1000, '{"a": 1, "A": 2}'):
                for way in ([], ["--direct"]):
                    ended = self.quenzo("db", "--file", "records.db", "insert", "t", *way, input=line + "\n", seconds=50)
                    if ended.code is None or ended.crashed or (ended.code and not ended.error) or \
                            (ended.code and self.rows()):
                        told.append("%s: %r" % (line[:40], ended))
            return "\n".join(told) if told else None

        self.rounds("rows beyond the limits", run, count=1)

    def test_aReaderDoesNotLoseRows(self):
        """Somebody reads while a run wants to commit, and ends his reading later."""
        def run(unused):
            reader = self.reader()
            child = self.start("db", "--file", "records.db", "insert", "t", "a=1")
            # The journal is there once the rows are written and wait for their commit.
            wait_until(lambda: os.path.exists(self.path("records.db-journal")) or child.poll() is not None)
            time.sleep(0.2)
            reader.execute("COMMIT")
            reader.close()
            output, error = child.communicate()
            is_there = ("1", None) in self.rows()
            return None if (child.returncode == 0) == is_there else "%s %s %s" % (child.returncode, error, self.rows())

        self.rounds("commit beside a reader", run)

    def test_otherProcessesWriteAgainAfterAReader(self):
        """A commit that failed for good leaves nobody locked out, and is reported as it came out."""
        def run(unused):
            reader = self.reader()
            ended = self.quenzo("db", "--file", "records.db", "insert", "t", "a=1")
            reader.execute("COMMIT")
            reader.execute("INSERT INTO t VALUES ('2', '')")
            reader.close()
            is_there = ("1", None) in self.rows()
            return None if ended.code in (0, 1) and (ended.code == 0) == is_there else "%r %s" % (ended, self.rows())

        self.rounds("commit that a reader refuses", run, count=1)


if __name__ == "__main__":
    unittest.main()
