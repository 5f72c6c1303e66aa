# SPDX-License-Identifier: MIT
"""Hostile files for every command that reads some; QUENZO_ATTACK_SEED is the first seed of as many as QUENZO_ATTACK_FILES.

Whatever is in a file, the program ends in time with one of its codes, writes nowhere but where it was told to, leaves
nothing half there, and what it calls done is done.
"""
import json
import os
import sqlite3
import unittest

from attack import Attack, ROUNDS, of_command, read, tree, write
from pictures import is_whole, png
from support import unprintable
import hostile

SEED = int(os.environ.get("QUENZO_ATTACK_SEED", "1"))
FILES = int(os.environ.get("QUENZO_ATTACK_FILES", str(15 * ROUNDS)))
ICON = png(96, 96)


class Archives(Attack):
    theme = "hostile files"

    def each(self, kind, attack):
        """attack(dice) gives None, or what was wrong, of the files that a seed makes."""
        def run(number):
            write(self.path("precious", "file"), "kept")
            fault = attack(hostile.dice_of("%s %d" % (kind, SEED + number)))
            if not fault and tree(self.path("precious")) != {"file": "kept"}:
                fault = "precious was changed"
            return "QUENZO_ATTACK_SEED=%d: %s" % (SEED + number, fault) if fault else None

        self.rounds(kind, run, count=FILES)

    def judged(self, words, new, failed=()):
        """Runs the program; whether its end is sound: new is what may be there if it succeeds."""
        before = tree(self.folder)
        ended = self.quenzo(*words)
        after = tree(self.folder)
        strange = [name for name in after if name not in before and name.split("/")[0] != new]
        changed = [name for name in before if after.get(name, 0) != before[name] and name not in failed]
        if ended.code not in (0, 1) or (ended.code == 1 and not ended.error.strip()):
            return ended
        if any(unprintable(line) for line in (ended.error + ended.output).split("\n")):
            return ended
        if strange or changed or (ended.code == 1) != (new not in after):
            return "strange %s, changed %s, %s" % (strange[:3], changed[:3], ended)
        return None

    def test_archivesToUnpack(self):
        def attack(dice):
            hostile.archive(dice, self.path("in.zip"))
            return self.judged(["unpack", "in.zip", "out"], "out")

        self.each("unpack", attack)

    def test_packagesToImport(self):
        def attack(dice):
            hostile.archive(dice, self.path("in.zip"))
            return self.judged(["import"] + dice.choice([[], ["--sdk-id", "7"]]) + ["in.zip", "out"], "out")

        self.each("import", attack)

    def test_packagesToEncryptAndDecrypt(self):
        os.chmod(write(os.path.join(self.base, "key"), "0" * 64), 0o600)
        key = ["--key", "../key"] if of_command("encrypt", "--key") else []

        def attack(dice):
            command = dice.choice(["encrypt", "encrypt", "decrypt"]) if key else "encrypt"
            hostile.apk(dice, self.path("in.apk"))
            before = read(self.path("in.apk"))
            ended = self.quenzo(command, *(key + ["in.apk"]))
            same = read(self.path("in.apk")) == before
            listed = sorted(os.listdir(self.folder))
            is_sound = ended.code in (0, 1) and (ended.code == 0) != same and listed == ["in.apk", "precious"]
            return None if is_sound and (ended.code == 0 or ended.error) else ended

        self.each("encrypt and decrypt", attack)

    def test_developerRecordsToExport(self):
        records = {"channels": [{"id": 101, "name": "n", "developer": "d", "package": "p", "x": [1, {"y": None}]}]}

        def attack(dice):
            write(self.path("records.json"), hostile.document(dice, records))
            before = tree(self.folder)
            ended = self.quenzo("export", "101", "out", environment={"QUENZO_DEVELOP_INFO": self.path("records.json")})
            after = tree(self.folder)
            made = sorted(name for name in after if name.startswith("out/"))
            is_sound = made == (["out/channel_101.json", "out/channel_101.txt"] if ended.code == 0 else [])
            rest = dict(one for one in after.items() if not one[0].startswith("out"))
            return None if ended.code in (0, 1) and is_sound and rest == before else ended

        self.each("export", attack)

    def test_listsAndPicturesOfIcons(self):
        def attack(dice):
            channels = [{"folder": "one", "mark": "None", "corner": 1, "x": 1}, {"folder": "two", "name": "n"}]
            broken = dice.randrange(2)
            write(self.path("game.png"), hostile.picture(dice, ICON) if broken else ICON)
            write(self.path("channels.json"), json.dumps(channels) if broken else hostile.document(dice, channels))
            before = tree(self.folder)
            ended = self.quenzo("icons", "--icon", "game.png", "--marks", ".", "--platform", "android", "--ignore-missing",
                                "--out", "out", "channels.json")
            after = tree(self.folder)
            icons = dict(one for one in after.items() if one[0] not in before and one[1] is not None and
                         not one[0].endswith(".quenzo-icons"))
            half = [name for name in icons if not is_whole(icons[name])]
            strange = [name for name in icons if not name.startswith("out/")]
            changed = [name for name in before if after.get(name, 0) != before[name]]
            is_told = ended.code == 0 and icons or ended.code in (1, 2) and ended.error.strip()
            return "%s %s" % (half + strange + changed, ended) if half or strange or changed or not is_told else None

        self.each("icons", attack)

    def test_rowsForADatabase(self):
        def attack(dice):
            with sqlite3.connect(self.path("records.db")) as connection:
                connection.execute("CREATE TABLE t(a TEXT, b TEXT)")
            connection.close()
            lines = "\n".join(hostile.document(dice, {"a": "x", "b": 1.5}) for unused in range(dice.choice([1, 2, 5])))
            ended = self.quenzo("db", "--file", "records.db", "insert", "t", input=lines)
            with sqlite3.connect(self.path("records.db")) as connection:
                found = connection.execute("SELECT count(*) FROM t").fetchone()[0]
            connection.close()
            is_sound = ended.code in (0, 1) and (ended.code == 0 or ended.error) and (ended.code == 0 or found == 0)
            return None if is_sound else "%d rows; %s" % (found, ended)

        self.each("rows", attack)

    def test_whatIsPackedCanBeUnpacked(self):
        """Folders of odd names, depths and links: either refused, or an archive that comes back as it was."""
        names = ["a", "b c", "d\\e", "f:g", "C:x", ".h", "...", "n\nl", "\xff\xfe", "\xc3\xa9", "~", "-x", "x" * 250, "\x1b[2J", "p.zip"]

        def attack(dice):
            depth = dice.choice([1, 2, 3, 99, 100, 101, 102])
            folder = os.path.join("src", *["d"] * (depth - 1))
            for unused in range(dice.randrange(1, 6)):
                write(self.path(folder, dice.choice(names), dice.choice(names)), dice.choice(hostile.DATA))
            if dice.random() < 0.2:
                os.symlink(dice.choice(["d", ".", "nowhere", "../precious/file", "/etc/passwd"]), self.path("src", "link"))
            if dice.random() < 0.3:
                os.makedirs(self.path("src", "empty", dice.choice(names)))
            fault = self.judged(["pack", "src", "out.zip"], "out.zip")
            if fault or not os.path.exists(self.path("out.zip")):
                return fault
            ended = self.quenzo("unpack", "out.zip", "back")
            if ended.code != 0:
                return ended
            wanted, found = tree(self.path("src")), tree(self.path("back"))
            for name in [name for name in wanted if name.split("/")[0] == "link"]:
                wanted.pop(name)
            for name in [name for name in found if name.split("/")[0] == "link"]:
                found.pop(name)
            return None if wanted == found else "came back otherwise: %s" % sorted(set(wanted) ^ set(found))

        self.each("pack and unpack", attack)


if __name__ == "__main__":
    unittest.main()
