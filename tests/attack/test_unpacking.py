# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""Folders that others exchange for links while something is written: nothing goes where the link leads."""
import os
import time
import unittest

from attack import Attack, IS_ROOT, NOBODY, ROUNDS, tell
from support import APK, Raw, raw_archive, read, tree, write

import encrypt
import pytoolForQt
import quenzo_pack
from quenzo_report import ToolError, sentence


CONFIG = '<sdk id="7" name="n" version="1"><files><file>sub/0</file></files></sdk>'


class Exchanges(Attack):
    theme = "unpacking"

    def setUp(self):
        Attack.setUp(self)
        self.src, self.base = self.path("in.zip"), self.path("base")
        self.out, self.victim = self.path("base", "out"), self.path("victim")
        raw_archive(self.src, [Raw("sub/%d" % number, "evil") for number in range(30)] + [Raw("config.xml", CONFIG)])
        os.makedirs(os.path.join(self.out, "sub"))
        os.makedirs(os.path.join(self.victim, "out", "sub"))

    def unpack(self, dest=None):
        try:
            pytoolForQt.unZip(self.src, dest or self.out, "NULL")
        except Exception:  # An error is as good an answer as folders that were moved away.
            return False
        return True

    def import_sdk(self):
        return pytoolForQt.importSDK(self.src, self.out, 7) == 1

    def assert_victim_untouched(self):
        self.assertEqual({"out": None, "out/sub": None}, tree(self.victim))


class AtTheWorstMoment(Exchanges):
    """The exchange happens inside of a call that every unpacking makes."""

    def exchange_at(self, function, folder, target, behind=""):
        """Lets the first call of os.function put a link to target in the place of folder.

        Where the end of a path is given, it is the first call with such a one.
        """
        honest = getattr(os, function)
        self.addCleanup(setattr, os, function, honest)

        def called(*arguments):
            answer = honest(*arguments)
            if not behind or arguments[0].endswith(behind):
                setattr(os, function, honest)
                os.rename(folder, self.path("away"))
                os.symlink(target, folder)
            return answer

        setattr(os, function, called)

    def test_aFolderAboveTheTargetLeadsNowhereElse(self):
        for dest in (self.out, os.path.join(self.base, "fresh"), os.path.join(self.base, "two", "levels")):
            self.exchange_at("urandom", self.base, self.victim)
            self.unpack(dest)
            self.assert_victim_untouched()
            os.remove(self.base)
            os.rename(self.path("away"), self.base)

    def test_aFolderAboveAnArchiveToWriteLeadsNowhereElse(self):
        write(self.path("src", "a"), "x")
        write(os.path.join(self.victim, "out", "old.zip"), "kept")
        write(os.path.join(self.out, "old.zip"), "old")
        before = tree(self.victim)
        for name in ("old.zip", "new.zip", "fresh/new.zip"):
            self.exchange_at("urandom", self.out, os.path.join(self.victim, "out"))
            pytoolForQt.zip(self.path("src"), os.path.join(self.out, name), "")
            self.assertEqual(before, tree(self.victim))
            self.assertIn(os.path.basename(name), [one for _, _, names in os.walk(self.path("away")) for one in names])
            os.remove(self.out)
            os.rename(self.path("away"), self.out)

    def test_whatIsPackedComesFromTheFolderAlone(self):
        folder, secret = self.path("src", "sub"), self.path("secret")
        for name in ("file", "large"):
            size = 7 if name == "file" else quenzo_pack.BATCH_BYTES
            write(os.path.join(folder, name), "shown! " * size)
            write(os.path.join(secret, name), "secret " * size)
            for function, behind in (("lstat", "/sub"), ("urandom", "")):
                self.exchange_at(function, folder, secret, behind)
                with self.assertRaises((EnvironmentError, ToolError)) as caught:
                    pytoolForQt.zip(self.path("src"), self.path("out.zip"), "")
                self.assertIn("src/sub", sentence(caught.exception))
                self.assertFalse(os.path.exists(self.path("out.zip")))
                os.remove(folder)
                os.rename(self.path("away"), folder)
            os.remove(os.path.join(folder, name))

    def test_aFolderAboveAnApkToEncryptLeadsNowhereElse(self):
        apk = write(os.path.join(self.out, "game.apk"), read(APK))
        write(os.path.join(self.victim, "out", "game.apk"), "kept")
        os.chmod(write(self.path("key"), "0" * 64), 0o600)
        before = tree(self.victim)
        self.exchange_at("urandom", self.out, os.path.join(self.victim, "out"))
        self.assertEqual(0, encrypt.encryptApk(".", apk, self.path("key")), self.said.getvalue())
        self.assertEqual(before, tree(self.victim))
        self.assertNotEqual(read(APK), read(self.path("away", "game.apk")))

    def test_theTargetLeadsNowhereElse(self):
        self.exchange_at("urandom", self.out, os.path.join(self.victim, "out"))
        self.unpack()
        self.assert_victim_untouched()

    def test_aFolderInTheTargetLeadsNowhereElse(self):
        listed = os.listdir
        self.addCleanup(setattr, os, "listdir", listed)

        def called(path):
            if path.endswith("/new/sub"):
                os.listdir = listed
                os.rename(os.path.join(self.out, "sub"), self.path("away"))
                os.symlink(os.path.join(self.victim, "out", "sub"), os.path.join(self.out, "sub"))
            return listed(path)

        os.listdir = called
        self.assertTrue(self.unpack())
        self.assert_victim_untouched()
        self.assertEqual(30, len(listed(self.path("away"))))


class WhileItRuns(Exchanges):
    """A second process exchanges a folder again and again."""
    TRIES = 60

    def exchanging(self, folder, target):
        """Starts it, as another user where root can."""
        link, away = folder + ".link", folder + ".away"
        os.symlink(target, link)
        child = os.fork()
        if child:
            self.addCleanup(self._end, child)
            return
        try:
            if IS_ROOT:
                os.setgid(NOBODY)
                os.setuid(NOBODY)
            parent = os.getppid()
            while os.getppid() == parent:
                for first, second, third in ((folder, link, away), (folder, away, link)):
                    os.rename(first, third)
                    os.rename(second, first)
                    time.sleep(0.0004)
        finally:
            os._exit(0)

    def _end(self, child):
        os.kill(child, 9)
        os.waitpid(child, 0)

    def owned_by_somebody(self):
        if IS_ROOT:
            os.chmod(self.folder, 0o711)
            for folder, unused, unused in os.walk(self.base):
                os.lchown(folder, NOBODY, NOBODY)

    def assert_never_hit(self, race):
        found = [self.count_hits(name, work) for name, work in ((race, self.unpack), (race + ", import", self.import_sdk))]
        self.assertEqual([0, 0], [hits for hits, unpacked in found])
        self.assertTrue(all(unpacked for hits, unpacked in found), found)

    def count_hits(self, race, work):
        """In how many rounds a file came to the victim, and how often the work succeeded."""
        hits, unpacked = 0, 0
        for unused in range(ROUNDS):
            for unused in range(self.TRIES):
                unpacked += work()
                found = [name for name, content in tree(self.victim).items() if content is not None]
                if found:
                    hits += 1
                    for name in found:
                        os.remove(os.path.join(self.victim, name))
                    break
        tell(self.theme, race, ROUNDS, hits)
        return hits, unpacked

    def test_aFolderInTheTargetLeadsNowhereElse(self):
        self.owned_by_somebody()
        self.exchanging(os.path.join(self.out, "sub"), os.path.join(self.victim, "out", "sub"))
        self.assert_never_hit("folder in the target")

    @unittest.skipUnless(IS_ROOT, "a folder of one's own leads where one's own links say")
    def test_aFolderOfSomebodyElseAboveTheTargetLeadsNowhereElse(self):
        write(self.path("keep"), "x")
        self.owned_by_somebody()
        os.chown(self.path(), NOBODY, NOBODY)
        self.exchanging(self.base, self.victim)
        self.assert_never_hit("folder of somebody else above the target")


class Links(Exchanges):
    @unittest.skipUnless(IS_ROOT, "root alone has more rights than the link's owner")
    def test_rootFollowsNoLinkThatOthersCanChange(self):
        for make in (lambda link: os.lchown(link, NOBODY, NOBODY), lambda link: os.chmod(self.folder, 0o777)):
            link = self.path("link")
            os.symlink(self.victim, link)
            make(link)
            self.assertFalse(self.unpack(link))
            self.assertFalse(self.unpack(os.path.join(link, "out")))
            self.assert_victim_untouched()
            os.remove(link)

    def test_ownLinksAreFollowed(self):
        os.symlink("base", self.path("link"))
        os.symlink(self.path("link", "out"), self.path("far"))
        self.assertTrue(self.unpack(self.path("far")))
        self.assertTrue(self.unpack(self.path("far", "..", "fresh", ".", "new")))
        self.assertEqual(30, len(os.listdir(os.path.join(self.out, "sub"))))
        self.assertEqual(30, len(os.listdir(os.path.join(self.base, "fresh", "new", "sub"))))
        self.assertEqual(["base", "far", "in.zip", "link", "victim"], sorted(os.listdir(self.folder)))

    def test_linksInACircleFail(self):
        os.symlink("two", self.path("one"))
        os.symlink("one", self.path("two"))
        self.assertFalse(self.unpack(self.path("one")))


if __name__ == "__main__":
    unittest.main()
