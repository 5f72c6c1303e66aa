# SPDX-License-Identifier: MIT
"""Runs that are killed in the middle: what stands under a final name is whole."""
import errno
import json
import os
import random
import shutil
import signal
import time
import unittest

from attack import Attack, attempt, tree, wait_until, write
import jobs
from pictures import is_whole, png
from support import Raw, contents, raw_archive

CHANNELS = [{"folder": "c%03d" % number} for number in range(120)]


def written(path):
    """Which file that is, and as of when."""
    found = os.stat(path)
    return found.st_ino, found.st_mtime, found.st_size


def has_begun(output):
    """Whether something has come to an output folder, which a plain user cannot read while it is locked."""
    try:
        return bool(os.listdir(output))
    except OSError as error:
        return error.errno == errno.EACCES


class Kills(Attack):
    theme = "kills"

    def killed(self, words, seconds, number=signal.SIGKILL, **options):
        """Starts the program, kills it so many seconds later and gives its code."""
        # In a group of its own: Qt's half of a tool that was about to be started would hold the streams for ever.
        child = self.start(*words, before=os.setpgrp, **options)
        time.sleep(seconds)
        if child.poll() is None:
            child.send_signal(number)
        child.wait()
        attempt(os.killpg, child.pid, signal.SIGKILL)
        child.communicate()
        return child.returncode

    def duration(self, words, **options):
        """How long a whole run takes, from which the moments of the kills are taken."""
        begin = time.time()
        ended = self.quenzo(*words, **options)
        self.assertEqual(0, ended.code, ended)
        return time.time() - begin

    def test_iconsAreWholeOrNotThere(self):
        write(os.path.join(self.base, "game.png"), png(256, 256))
        write(os.path.join(self.base, "channels.json"), json.dumps(CHANNELS))
        words = ["icons", "--icon", "../game.png", "--marks", ".", "--platform", "android", "--keep", "--out", "out",
                 "../channels.json"]
        os.mkdir(self.path("first"))
        self.assertEqual(0, self.quenzo(*words, cwd=self.path("first")).code)
        for number in (signal.SIGKILL, signal.SIGINT):
            def run(unused):
                shutil.copytree(os.path.join(self.base, "first", "out"), self.path("out"))
                files = [self.path("out", channel["folder"], "icon36x36.png") for channel in CHANNELS]
                before = [written(name) for name in files]
                child = self.start(*words)
                while child.poll() is None and [written(name) for name in files] == before:
                    pass
                time.sleep(random.random() * 0.01)
                if child.poll() is None:
                    child.send_signal(number)
                child.communicate()
                damaged = [name for name, content in tree(self.path("out")).items()
                           if name.endswith(".png") and not is_whole(content)]
                return ("%d damaged: %s" % (len(damaged), damaged[:3])) if damaged else None

            self.rounds("icons --keep, signal %d" % number, run, tries=30)

    def scattered(self, race, words, prepare, judge):
        """Kills a command at moments from its begin to its end."""
        prepare()
        whole = self.duration(words)
        self.folder = self.base

        def run(unused):
            prepare()
            self.killed(words, random.random() * whole)
            return judge()

        self.rounds(race, run)

    def test_unpackedFoldersAreWholeOrNotThere(self):
        entries = [Raw("f%d/e%d" % (number % 7, number), "x" * 3000) for number in range(1500)]
        archive = raw_archive(os.path.join(self.base, "in.zip"), entries)
        self.scattered("unpack", ("unpack", archive, "out"), lambda: None,
                       lambda: None if not os.path.exists(self.path("out")) or len(tree(self.path("out"))) == 1507
                       else "half of it is there")

    def test_packedArchivesAreWholeOrNotThere(self):
        for number in range(300):
            write(os.path.join(self.base, "src", "file%d" % number), os.urandom(4000))
        wanted = tree(os.path.join(self.base, "src"))

        def judge():
            path = self.path("out.zip")
            return None if not os.path.exists(path) or contents(path) == wanted else "a half archive"

        self.scattered("pack", ("pack", os.path.join(self.base, "src"), "out.zip"), lambda: None, judge)

    def test_filesOfMovesAreWhole(self):
        files = dict(("d%d/file%d" % (number % 9, number), "%d" % number * 900) for number in range(900))

        def prepare():
            for name, content in files.items():
                write(self.path("source", name), content)
            os.mkdir(self.path("target"))

        def judge():
            source, target = tree(self.path("source")), tree(self.path("target"))
            lost = [name for name, content in files.items() if content not in (source.get(name), target.get(name))]
            half = [name for name, content in target.items() if content is not None and files.get(name) != content]
            return "%d lost, %d damaged: %s" % (len(lost), len(half), half[:3]) if lost or half else None

        for command in ("copy", "cut", "output"):
            subfolder = os.path.join(self.base, "first-" + command)
            os.mkdir(subfolder)
            self.folder = subfolder
            self.scattered(command, (command, "source", "target"), prepare, judge)

    @unittest.skipIf("QUENZO_ATTACK_EARLIER" in os.environ, "earlier versions lack many of the commands")
    def test_everyCommandIsDoneOrNotBegun(self):
        """What a job leaves when it is killed is what it leaves when it is done, or when it fails."""
        for kind in jobs.ALL:
            name = kind.__name__.lower()
            self.folder = os.path.join(self.base, "first-" + name)
            os.mkdir(self.folder)
            first = kind(self.folder)
            words = first.words()
            whole = self.duration(words, environment=first.environment)
            self.folder = self.base

            def run(unused):
                job = kind(self.folder)
                words = job.words()
                self.killed(words, random.random() * whole, environment=job.environment)
                return job.fault(True) and job.fault(False)

            self.rounds("%s, small" % name, run)

    def test_rightsComeBackAfterSignals(self):
        for number in (signal.SIGQUIT, signal.SIGUSR1, signal.SIGALRM):
            def run(unused):
                for one in range(1200):
                    write(self.path("source", "d%d" % (one % 40), "e", "file%d" % one), "x" * 2000)
                os.mkdir(self.path("source", "out"))
                child = self.start("output", "source", "source/out")
                wait_until(lambda: has_begun(self.path("source", "out")) or child.poll() is not None)
                time.sleep(random.random() * 0.05)
                if child.poll() is None:
                    child.send_signal(number)
                child.communicate()
                forced = [name for name, content in tree(self.path("source")).items() if content is None and
                          os.lstat(self.path("source", name)).st_mode & 0o777 == 2]
                return "mode 0002: %s" % forced[:3] if forced else None

            self.rounds("output, rights after signal %d" % number, run, tries=3)


if __name__ == "__main__":
    unittest.main()
