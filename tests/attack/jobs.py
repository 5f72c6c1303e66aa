# SPDX-License-Identifier: MIT
"""One small job for each command of the program, and a judge of what it has left, whatever it was told to do it in."""
import json
import os
import re
import sqlite3

from attack import read, tree, write
from support import APK, Raw, contents, raw_archive

import encrypt
from pictures import is_whole, png

FILES = dict(("d%d/e/file%d" % (number % 3, number), "%d" % number * 2000) for number in range(12))
CONFIG = '<sdk id="7" name="n" version="1"><files><file>a</file></files></sdk>'
CHANNELS = ["one", "two"]


class Job(object):
    """A command in a folder: words() prepares it and gives its words, all paths whole; fault() judges.

    environment is what the command needs beside the words, and says a text that it prints when it is done.
    """
    environment = {}
    says = ""

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


class PackLike(Pack):
    """After the model of an archive that holds some of the files, one of them changed, and one that is gone."""
    option = "--like"

    def words(self):
        base = [Raw(name, content if number else "other", 8) for number, (name, content) in
                enumerate(sorted(FILES.items())[:5])]
        raw_archive(self.path("base.zip"), base + ([Raw("gone", "x")] if self.option == "--like" else []))
        return Pack(self.folder).words() + [self.option, self.path("base.zip")]


class PackOnto(PackLike):
    option = "--onto"


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
    is_encrypted = False

    def words(self):
        self.prepare()
        return [self.__class__.__name__.lower(), "--key", self.path("key"), self.path("game.apk")]

    def prepare(self):
        os.chmod(write(self.path("key"), "0" * 64), 0o600)
        if encrypt.encryptApk(".", write(self.path("encrypted.apk"), read(APK)), self.path("key")) != 0:
            raise RuntimeError("the sample cannot be encrypted")
        write(self.path("game.apk"), read(self.path("encrypted.apk") if self.is_encrypted else APK))

    def fault(self, done):
        found = contents(self.path("game.apk"))
        assets = [name for name in found if name.startswith("assets/")]
        plain = contents(APK)
        if sorted(found) != sorted(plain):
            return sorted(found)
        has_changed = any(found[name] != plain[name] for name in assets)
        return has_changed != (done != self.is_encrypted) or (not has_changed and found != plain)


class Decrypt(Encrypt):
    is_encrypted = True


class KeyNew(Job):
    def words(self):
        return ["key", "new", "--key", self.path("key")]

    def fault(self, done):
        if not os.path.lexists(self.path("key")):
            return done
        is_own = os.stat(self.path("key")).st_mode & 0o777 == 0o600
        return not is_own or not re.match("[0-9a-f]{64}\n\\Z", read(self.path("key")))


class KeyShow(Encrypt):
    says = "fingerprint"

    def words(self):
        self.prepare()
        return ["key", "show", "--key", self.path("key")]

    def fault(self, done):
        return read(self.path("key")) != "0" * 64 or Encrypt.fault(self, False)


class KeyCheck(KeyShow):
    is_encrypted = True
    says = "\n"

    def words(self):
        self.prepare()
        return ["key", "check", "--key", self.path("key"), self.path("game.apk")]


class Sign(Job):
    """Through a signer of its own, which adds to the file, takes its time and knows its own signature."""
    SIGNER = """#!/bin/sh
case $1 in
sign)
    while [ $# -gt 1 ]; do
        case $1 in --out) out=$2 ;; --in) in=$2 ;; esac
        shift
    done
    cat "$in" >"$out" && printf signed >>"$out" ;;
verify)
    while [ $# -gt 1 ]; do
        [ "$1" = --in ] && in=$2
        shift
    done
    [ "$(tail -c 6 "$in")" = signed ] ;;
esac
"""

    def words(self):
        write(self.path("game.apk"), read(APK))
        os.chmod(write(self.path("bin", "apksigner"), self.SIGNER), 0o755)
        self.environment = {"PATH": self.path("bin") + ":/usr/bin:/bin"}
        return ["sign", "--keystore", write(self.path("store"), "k"), "--pass-file", write(self.path("pass"), "p"),
                self.path("game.apk")]

    def fault(self, done):
        return read(self.path("game.apk")) != read(APK) + "signed" * bool(done)


class Check(Job):
    says = "com.quenzo.skyharbour"

    def words(self):
        return ["check", write(self.path("game.apk"), read(APK))]

    def fault(self, done):
        return read(self.path("game.apk")) != read(APK)


class Run(Job):
    SCRIPT = """import os
def make(path):
    try:
        with open(path + ".part", "w") as out:
            out.write("made" * 1000)
            out.flush()
        os.rename(path + ".part", path)
    except EnvironmentError:
        os.remove(path + ".part")
        raise
    return "param"
"""

    def words(self):
        return ["run", write(self.path("script.py"), self.SCRIPT), "make", self.path("out")]

    def fault(self, done):
        if not os.path.exists(self.path("out")):
            return done
        return read(self.path("out")) != "made" * 1000


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


class IconsLayout(Icons):
    count = 2 * 7
    layout = ["--layout", "android-res"]

    def words(self):
        return Icons.words(self) + self.layout

    def fault(self, done):
        icons = [content for name, content in tree(self.path("out")).items() if name.endswith(".png")]
        return [one for one in icons if not is_whole(one)] or (done and len(icons) != self.count)


class IconsAdaptive(IconsLayout):
    count = 2 * 19
    layout = ["--layout", "android-adaptive"]

    def words(self):
        words = IconsLayout.words(self)
        return words + ["--background", write(self.path("background.png"), png(432, 432))]


class IconsOnto(IconsLayout):
    count = 2 * 4

    def words(self):
        return IconsLayout.words(self) + ["--onto", write(self.path("game.apk"), read(APK))]


class Records(Job):
    """A table t with a column a, of which there are rows before and, when it is done, after; direct is the other way."""
    before, after = [], []
    operation = []
    direct = False

    def words(self):
        self.execute("CREATE TABLE t(a TEXT)")
        for value in self.before:
            self.execute("INSERT INTO t VALUES ('%s')" % value)
        return ["db"] + ["--direct"] * self.direct + ["--file", self.path("records.db")] + self.operation

    def fault(self, done):
        return self.execute("SELECT a FROM t") != [(value,) for value in (self.after if done else self.before)]

    def execute(self, statement):
        with sqlite3.connect(self.path("records.db")) as connection:
            found = connection.execute(statement).fetchall()
        connection.close()
        return found


class Insert(Records):
    after, operation = ["x"], ["insert", "t", "a=x"]


class InsertDirectly(Insert):
    direct = True


class InsertEncoded(Records):
    after, operation = ["GaVsbG8="], ["insert", "t", "a=hello", "--encode=a"]


class Update(Records):
    before, after = ["x", "y"], ["z", "y"]
    operation = ["update", "t", "a=z", "--where", "A=x"]


class UpdateDirectly(Update):
    direct = True


class Delete(Records):
    before, after, operation = ["x", "y"], ["y"], ["delete", "t", "--where", "a=x"]


class DeleteDirectly(Delete):
    direct = True


class Create(Records):
    operation = ["create", "u", "b:text", "c:integer"]

    def fault(self, done):
        found = self.execute("SELECT count(*) FROM sqlite_master WHERE name = 'u'")
        return found != [(int(done),)] or Records.fault(self, done)


class CreateFile(Create):
    operation = ["create", "t", "a:text", "--init"]

    def words(self):
        return ["db", "--file", self.path("records.db")] + self.operation

    def fault(self, done):
        if not os.path.exists(self.path("records.db")):
            return done
        found = self.execute("SELECT name FROM sqlite_master")
        return found not in ([], [("t",)]) or (done and not found)


class Select(Records):
    before, after, operation = ["x"], ["x"], ["select", "t"]
    says = "x"


class SelectDecoded(Records):
    before, after, operation = ["GaVsbG8="], ["GaVsbG8="], ["select", "t", "--decode=a"]
    says = "hello"


class Encode(Job):
    word, says = "hello", "GaVsbG8="

    def words(self):
        return [self.__class__.__name__.lower(), self.word]

    def fault(self, done):
        return False


class Decode(Encode):
    word, says = "GaVsbG8=", "hello"


class PackageName(Job):
    says = "com.quenzo.skyharbour"

    def words(self):
        return ["package-name", APK]

    def fault(self, done):
        return False


ALL = [Copy, Cut, Output, Remove, Pack, PackLike, PackOnto, Unpack, Import, Encrypt, Decrypt, KeyNew, KeyShow, KeyCheck,
       Sign, Check, Run, Export, Icons, IconsLayout, IconsAdaptive, IconsOnto, Insert, InsertDirectly, InsertEncoded,
       Update, UpdateDirectly, Delete, DeleteDirectly, Create, CreateFile, Select, SelectDecoded, Encode, Decode,
       PackageName]
