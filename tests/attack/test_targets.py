# SPDX-License-Identifier: MIT
"""Links and mounts in a target that lead back into the source."""
import os
import unittest

from attack import Attack, IS_ROOT, mounted, tree, write


class Targets(Attack):
    theme = "targets that lead back"

    def prepare(self):
        """Gives the source as it is before: relative name to content."""
        for name in ("b/inner/file", "b/file", "a/inner/file", "a/file"):
            write(self.path("source", name), name)
        os.mkdir(self.path("target"))
        return tree(self.path("source"))

    def judge(self, command, before):
        """A failure, and every file in the source as it was or, moved before it, at its place in the target."""
        ended = self.quenzo(command, "source", "target")
        after, moved = tree(self.path("source")), tree(self.path("target"))
        strange = [name for name in after if name not in before or after[name] != before[name]]
        lost = [name for name, content in before.items()
                if content is not None and content not in (after.get(name), moved.get(name))]
        if ended.code == 1 and not strange and not lost:
            return None
        return "strange: %s, lost: %s; %s" % (strange, lost, ended)

    def test_linksIntoTheSourceAreRefused(self):
        for command in ("copy", "cut", "output"):
            for place in ("source/b", "source/b/inner", "source"):
                def run(unused):
                    before = self.prepare()
                    os.symlink("../" + place, self.path("target", "a"))
                    return self.judge(command, before)

                self.rounds("%s, link to %s" % (command, place), run)

    @unittest.skipUnless(IS_ROOT, "only root can mount a folder")
    def test_mountsOfTheSourceAreRefused(self):
        for command in ("copy", "cut", "output"):
            for place in ("source/b", "source/b/inner", "source"):
                def run(unused):
                    before = self.prepare()
                    os.mkdir(self.path("target", "a"))
                    with mounted("--bind", self.path(place), self.path("target", "a")) as is_there:
                        return self.judge(command, before) if is_there else None

                self.rounds("%s, mount of %s" % (command, place), run)

    @unittest.skipUnless(IS_ROOT, "only root can mount a folder")
    def test_aTargetThatIsAFolderOfTheSourceEndsTheWork(self):
        for command in ("copy", "cut", "output"):
            def run(unused):
                self.prepare()
                place = self.path("source", "b", "inner")
                with mounted("--bind", place, self.path("target")) as is_there:
                    ended = self.quenzo(command, "source", "target") if is_there else None
                if not is_there or (ended.code == 1 and not os.path.exists(os.path.join(place, "b", "inner", "b"))):
                    return None
                return ended

            self.rounds("%s, a folder of the source mounted as target" % command, run)


if __name__ == "__main__":
    unittest.main()
