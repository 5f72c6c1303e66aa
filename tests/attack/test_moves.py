# SPDX-License-Identifier: MIT
"""Several moves at the same time with the same folders."""
import os
import unittest

from attack import Attack, write

FILES = 1200


class Moves(Attack):
    theme = "moves at the same time"

    def losses(self, command, runs, replacing):
        """Starts that many moves at once; gives what is in neither folder afterwards."""
        for number in range(FILES):
            name = "%d/file%d" % (number % 5, number)
            write(self.path("source", name), "new %d" % number)
            if replacing:
                write(self.path("target", name), "old")
        if not replacing:
            os.mkdir(self.path("target"))
        children = [self.start(command, "source", "target") for unused in range(runs)]
        for child in children:
            child.communicate()
        lost = []
        for number in range(FILES):
            wanted, name = "new %d" % number, "%d/file%d" % (number % 5, number)
            places = [place for place in (self.path("source", name), self.path("target", name)) if os.path.isfile(place)]
            if wanted not in [open(place).read() for place in places]:
                lost.append(name)
        crashed = [child.returncode for child in children if child.returncode not in (0, 1)]
        return "%d lost, codes %s" % (len(lost), crashed) if lost or crashed else None

    def test_nothingIsLost(self):
        for command in ("cut", "output"):
            for replacing in (False, True):
                race = "3 x %s%s" % (command, ", files there" if replacing else "")
                self.rounds(race, lambda unused: self.losses(command, 3, replacing), tries=10)


if __name__ == "__main__":
    unittest.main()
