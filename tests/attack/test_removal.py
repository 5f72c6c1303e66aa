# SPDX-License-Identifier: MIT
"""Trees that somebody else changes while the program removes them."""
import os
import unittest

from attack import Attack, attempt, meanwhile, mode, of_command, read, write

FOLDERS = 60


class Removal(Attack):
    theme = "removal"

    def removed_under(self, attack):
        """Gives what happened outside of a tree that is removed while attack is called again and again."""
        outside = [write(self.path("elsewhere", *place), "kept") for place in (("file",), ("folder", "file"))]
        os.mkdir(self.path("aside"))
        for number in range(3000):
            write(self.path("source", str(number % FOLDERS), "file%d" % number))
        with meanwhile(attack):
            ended = self.quenzo("remove", "source", *of_command("remove", "--yes"))
        for path in outside:
            if not os.path.exists(path) or read(path) != "kept" or mode(path) != 0o644:
                return "%s: %s" % (path, oct(mode(path)) if os.path.exists(path) else "gone")
        return None if ended.code in (0, 1) else ended

    def test_linksThatComeMeanwhileAreNotFollowed(self):
        def links():
            for number in range(FOLDERS):
                attempt(os.symlink, "../../elsewhere", self.path("source", str(number), "trap"))

        self.rounds("links that come meanwhile", lambda unused: self.removed_under(links))

    def test_foldersThatBecomeLinksAreNotFollowed(self):
        def exchanged():
            for number in range(FOLDERS):
                folder, aside = self.path("source", str(number)), self.path("aside", str(number))
                # Away, with a link in its place; and the next time back again.
                if not attempt(os.rename, folder, aside):
                    attempt(os.unlink, folder)
                    attempt(os.rename, aside, folder)
                elif not attempt(os.symlink, "../elsewhere", folder):
                    attempt(os.rename, aside, folder)

        self.rounds("folders that become links", lambda unused: self.removed_under(exchanged), tries=5)


if __name__ == "__main__":
    unittest.main()
