# SPDX-License-Identifier: MIT
"""Trees that somebody else changes while the program removes them."""
import os
import unittest

from attack import Attack, attempt, meanwhile, mode, of_command, read, write
from pictures import png

FOLDERS = 60


class Removal(Attack):
    theme = "removal"

    def removed_under(self, attack, words=None):
        """Gives what happened outside of a tree that is removed while attack is called again and again."""
        words = words or ["remove", "source"] + of_command("remove", "--yes")
        outside = [write(self.path("elsewhere", *place), "kept") for place in (("file",), ("folder", "file"))]
        os.mkdir(self.path("aside"))
        for number in range(3000):
            write(self.path("source", str(number % FOLDERS), "file%d" % number))
        with meanwhile(attack):
            ended = self.quenzo(*words)
        for path in outside:
            if not os.path.exists(path) or read(path) != "kept" or mode(path) != 0o644:
                return "%s: %s" % (path, oct(mode(path)) if os.path.exists(path) else "gone")
        return None if ended.code in (0, 1) else ended

    def test_linksThatComeMeanwhileAreNotFollowed(self):
        def links():
            for number in range(FOLDERS):
                attempt(os.symlink, "../../elsewhere", self.path("source", str(number), "trap"))

        self.rounds("links that come meanwhile", lambda unused: self.removed_under(links))

    def exchange(self):
        for number in range(FOLDERS):
            folder, aside = self.path("source", str(number)), self.path("aside", str(number))
            # Away, with a link in its place; and the next time back again.
            if not attempt(os.rename, folder, aside):
                attempt(os.unlink, folder)
                attempt(os.rename, aside, folder)
            elif not attempt(os.symlink, "../elsewhere", folder):
                attempt(os.rename, aside, folder)

    def test_foldersThatBecomeLinksAreNotFollowed(self):
        self.rounds("folders that become links", lambda unused: self.removed_under(self.exchange), tries=5)

    def test_clearingOfIconsIsNotLedAway(self):
        icon = write(os.path.join(self.base, "game.png"), png(64, 64))
        channels = write(os.path.join(self.base, "channels.json"), '[{"folder": "channel"}]')
        words = ["icons", "--icon", icon, "--marks", self.base, "--platform", "android", "--clear", "--out", "source",
                 channels]
        self.rounds("icons --clear, folders that become links",
                    lambda unused: self.removed_under(self.exchange, words), tries=5)


if __name__ == "__main__":
    unittest.main()
