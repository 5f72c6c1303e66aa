# SPDX-License-Identifier: MIT
"""One small job for each command of the program, and a judge of what it has left, whatever it was told to do it in."""
import json
import os
import sqlite3

from attack import read, tree, write
from support import APK, Raw, contents, parsed, raw_archive

from pictures import is_whole, png

FILES = dict(("d%d/e/file%d" % (number % 3, number), "%d" % number * 2000) for number in range(12))
CONFIG = '<sdk id="7" name="n" version="1"><files><file>a</file></files></sdk>'
CHANNELS = ["one", "two"]


class Job(object):
    """A command in a folder: words() prepares it and gives its words, all paths whole; fault() judges."""

    def __init__(self, folder):
        self.folder = folder

    def path(self, *parts):
        return os.path.join(self.folder, *parts)


class Copy(Job):
    command = "copy"

    def words(self):
        for name, content in FILES.items():
            write(self.path("source", name), content)
        os.mkdir(self.path("target"))
        return [self.command, self.path("source"), self.path("target")]

    def fault(self, done):
        source, target = self.files("source"), self.files("target")
        half = [name for name in target if FILES.get(name) != target[name]]
        lost = [name for name in FILES if FILES[name] not in (source.get(name), target.get(name))]
        missing = [name for name in FILES if done and name not in target]
        left = [name for name in source if done and self.command != "copy"]
        return half or lost or missing or left

    def files(self, name):
        return dict(one for one in tree(self.path(name)).items() if one[1] is not None)


class Cut(Copy):
    command = "cut"


class Output(Copy):
    command = "output"


class Remove(Job):
    def words(self):
        Copy(self.folder).words()
        return ["remove", "--yes", self.path("source")]

    def fault(self, done):
        return done == os.path.exists(self.path("source"))


class Pack(Job):
    def words(self):
        Copy(self.folder).words()
        return ["pack", self.path("source"), self.path("out.zip")]

    def fault(self, done):
        if not os.path.exists(self.path("out.zip")):
            return done
        return contents(self.path("out.zip")) != FILES


class Unpack(Job):
    def words(self):
        raw_archive(self.path("in.zip"), [Raw(name, content, 8) for name, content in FILES.items()])
        return ["unpack", self.path("in.zip"), self.path("out")]

    def fault(self, done):
        if not os.path.exists(self.path("out")):
            return done
        return dict(one for one in tree(self.path("out")).items() if one[1] is not None) != FILES


class Import(Job):
    def words(self):
        raw_archive(self.path("sdk.zip"), [Raw("config.xml", CONFIG), Raw("a", "x" * 5000)])
        return ["import", "--sdk-id", "7", self.path("sdk.zip"), self.path("out")]

    def fault(self, done):
        if not os.path.exists(self.path("out")):
            return done
        return tree(self.path("out")) != {"config.xml": CONFIG, "a": "x" * 5000}


class Encrypt(Job):
    def words(self):
        write(self.path("game.apk"), read(APK))
        os.chmod(write(self.path("key"), "0" * 64), 0o600)
        return ["encrypt", "--key", self.path("key"), self.path("game.apk")]

    def fault(self, done):
        names = [one.name for one in parsed(self.path("game.apk"))]
        return not names or done == (read(self.path("game.apk")) == read(APK))


class Export(Job):
    def words(self):
        return ["export", "101", self.path("out")]

    def fault(self, done):
        names = sorted(name for name in tree(self.path("out")) if not name.startswith("."))
        if done and names != ["channel_101.json", "channel_101.txt"]:
            return names
        return [name for name in names if name.endswith("json") and not json.loads(read(self.path("out", name)))]


class Icons(Job):
    def words(self):
        write(self.path("game.png"), png(128, 128))
        write(self.path("channels.json"), json.dumps([{"folder": name} for name in CHANNELS]))
        return ["icons", "--icon", self.path("game.png"), "--marks", self.folder, "--platform", "android", "--out",
                self.path("out"), self.path("channels.json")]

    def fault(self, done):
        icons = dict(one for one in tree(self.path("out")).items() if one[0].endswith(".png"))
        half = [name for name, content in icons.items() if not is_whole(content)]
        return half or (done and len(icons) != 7 * len(CHANNELS))


class Insert(Job):
    queued = []

    def words(self):
        self.execute("CREATE TABLE t(a TEXT)")
        return ["db"] + self.queued + ["--file", self.path("records.db"), "insert", "t", "a=x"]

    def fault(self, done):
        return self.execute("SELECT a FROM t") != ([("x",)] if done else [])

    def execute(self, statement):
        with sqlite3.connect(self.path("records.db")) as connection:
            found = connection.execute(statement).fetchall()
        connection.close()
        return found


class InsertDirectly(Insert):
    queued = ["--direct"]


class Select(Job):
    def words(self):
        insert = Insert(self.folder)
        insert.words()
        insert.execute("INSERT INTO t VALUES ('x')")
        return ["db", "--file", self.path("records.db"), "select", "t"]

    def fault(self, done):
        return False


class PackageName(Job):
    def words(self):
        return ["package-name", APK]

    def fault(self, done):
        return False


ALL = [Copy, Cut, Output, Remove, Pack, Unpack, Import, Encrypt, Export, Icons, Insert, InsertDirectly, Select,
       PackageName]
