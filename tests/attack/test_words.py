# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Words, names and paths that are meant to be something else than they look like."""
import json
import os
import unittest

from attack import Attack, tree, write
from pictures import png
from support import Raw, raw_archive, unprintable

HOSTILE = ["esc\x1b[2Jape", "line\nquenzo: done", "car\rriage", "\xc2\x9bcsi", "tab\tbed", "bell\x07", "back\x08\x08"]
RIGHT_TO_LEFT = "\xe2\x80\xaegpj.exe"


class Words(Attack):
    theme = "words"

    def test_wordsThatAreNoTextAreRefused(self):
        def run(unused):
            write(self.path("tar\xe9get", "file"), "x")
            write(self.path("tar\xef\xbf\xbdget", "file"), "x")   # what a wrong reading would make of it
            before = tree(self.folder)
            told = []
            for words in (["remove", "--yes", "tar\xe9get"], ["copy", "tar\xe9get", "new"], ["cut", "tar\xe9get", "new"],
                          ["pack", "tar\xe9get", "out.zip"], ["unpack", "tar\xe9get", "out"],
                          ["output", "--leave", "\xff", "tar\xe9get", "new"]):
                ended = self.quenzo(*words)
                if not ended.refused or tree(self.folder) != before:
                    told.append(repr(ended))
            return "\n".join(told) if told else None

        self.rounds("words that are no text", run)

    def test_namesCannotSteerATerminal(self):
        def run(number):
            name = HOSTILE[number % len(HOSTILE)]
            write(self.path("source", name, "file"), "x")
            raw_archive(self.path("in.zip"), [Raw("../" + name, "x")])
            raw_archive(self.path("sdk.zip"), [Raw("config.xml", "<" + name + ">"), Raw(name, "x")])
            told = []
            for words in (["copy", "absent" + name, "target"], ["remove", "--yes", name], ["unpack", "in.zip", "out"],
                          ["import", "sdk.zip", "out"], ["unpack", name, "out"], ["pack", name, "out.zip"], [name],
                          ["copy", "source", "target", name], ["copy", "--" + name], ["db", "--file", name, "select", "t"],
                          ["package-name", name], ["icons", "--icon", name, name], ["export", name, "x"],
                          ["copy", "source/" + name, "source/" + name + "/file/x"], ["run", name, "f"]):
                ended = self.quenzo(*words)
                lines = ended.error.split("\n") + ended.output.split("\n")
                if any(unprintable(line) for line in lines) or "quenzo: done" in lines:
                    told.append(repr(ended))
            return "\n".join(told) if told else None

        self.rounds("names with controls", run, count=len(HOSTILE))

    def test_foldersOfIconsAreTakenAsTheSystemDoes(self):
        def icons(out, **options):
            return self.quenzo("icons", "--icon", self.path("game.png"), "--marks", self.folder, "--platform", "android",
                               "--out", out, self.path("channels.json"), **options)

        def prepare():
            write(self.path("game.png"), png(64, 64))
            write(self.path("channels.json"), json.dumps([{"folder": "one"}]))

        def through_a_link(unused):
            prepare()
            write(self.path("real", "inner", "file"), "x")
            write(self.path("lk", ".quenzo-icons"), "")
            write(self.path("lk", "precious"), "x")
            os.symlink(self.path("real", "inner"), self.path("lk", "s"))
            ended = icons("lk/s/..")
            return None if os.path.exists(self.path("lk", "precious")) else ended

        def in_a_deleted_folder(unused):
            prepare()
            name = "quenzo-attack-%d" % os.getpid()
            os.mkdir(self.path("gone"))

            def before():
                os.chdir(self.path("gone"))
                os.rmdir(self.path("gone"))

            ended = icons(name, before=before)
            if os.path.exists("/" + name):
                import shutil
                shutil.rmtree("/" + name)
                return "a folder of the root was made"
            return None if ended.refused else ended

        self.rounds("icons, a folder above a link's target", through_a_link)
        self.rounds("icons, relative to a folder that is gone", in_a_deleted_folder)

    def test_manyAndLongWords(self):
        for words in (["copy"] + ["x"] * 20000, ["copy", "x" * 100000, "y"], ["x" * 100000], ["db"] + ["a=b"] * 20000,
                      ["remove", "--yes", "/".join(["a" * 200] * 600)], [""], ["", ""], ["copy", "", ""], ["pack", "", ""],
                      ["unpack", "", ""], ["remove", "--yes", ""], ["remove", "--yes", "."],
                      ["--", "--"], ["icons", ""], ["run", "", ""], ["export", "", ""]):
            ended = self.quenzo(*words)
            self.assertTrue(ended.refused, ended)


if __name__ == "__main__":
    unittest.main()
