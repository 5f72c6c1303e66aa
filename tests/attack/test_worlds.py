# SPDX-License-Identifier: MIT
"""The commands of jobs.py in odd environments and at limits: done, or said why not, and never half of it in silence."""
import contextlib
import os
import resource
import signal
import subprocess
import unittest

from attack import Attack, IS_ROOT, attempt, limited, mounted, of_command, prepared, read, wait_until, write
import jobs

# A user whom nobody else is, since the limit of threads counts all of a user's.
SOMEBODY = 40000 + os.getpid() % 20000


def threads(count):
    def before():
        if IS_ROOT:
            os.setgroups([])
            os.setgid(SOMEBODY)
            os.setuid(SOMEBODY)
        resource.setrlimit(resource.RLIMIT_NPROC, (count, count))
    return before


@contextlib.contextmanager
def control_group(limit, value):
    """A group in the kernel's tree with such a limit; gives its folder, or None where none can be made."""
    for top in ("/sys/fs/cgroup/pids", "/sys/fs/cgroup"):
        folder = os.path.join(top, "quenzo-test-%d" % os.getpid())
        if attempt(os.mkdir, folder):
            has_limit = os.path.exists(os.path.join(folder, limit))
            try:
                if has_limit:
                    write(os.path.join(folder, limit), value)
                    yield folder
                    return
            finally:
                wait_until(lambda: attempt(os.rmdir, folder))   # Those who were in it may have to be waited for.
    yield None


def entering(group):
    return lambda: write(os.path.join(group, "cgroup.procs"), str(os.getpid()))


def closed(*numbers):
    return lambda: [os.close(number) for number in numbers]


def make_levels(folder, count):
    """Folders d in each other, further down than paths reach, with a file at the bottom."""
    here = os.getcwd()
    os.chdir(folder)
    for unused in range(count):
        os.mkdir("d")
        os.chdir("d")
    open("file", "w").close()
    os.chdir(here)


def in_a_deleted_folder():
    os.mkdir("gone")
    os.chdir("gone")
    os.rmdir("../gone")


def ignoring(*numbers):
    return lambda: [signal.signal(number, signal.SIG_IGN) for number in numbers]


class Worlds(Attack):
    theme = "odd worlds"

    def under(self, world, before=None, only=jobs.ALL, heard=True, says=True, **environment):
        """Runs every job in a world; whether results can be heard there, and whether errors can be said."""
        # The leak check is a process of its own, which a limit forbids.
        environment.setdefault("ASAN_OPTIONS", "detect_leaks=0")
        for kind in only:
            def run(unused):
                os.chmod(self.folder, 0o777)
                job = kind(self.folder)
                words = job.words()
                if words[0] == "remove":
                    words = [word for word in words if word != "--yes"] + of_command("remove", "--yes")
                if "NPROC" in world:
                    subprocess.call(["chmod", "-R", "a+rwX", self.folder])
                    if os.path.exists(self.path("key")):
                        os.chmod(self.path("key"), 0o600)
                        if IS_ROOT:
                            os.chown(self.path("key"), SOMEBODY, SOMEBODY)
                ended = self.quenzo(*words, before=before, environment=dict(job.environment, **environment))
                if ended.code not in (0, 1, 2) or (ended.code != 0 and says and not ended.error.strip()):
                    return ended
                if ended.code == 0 and heard and job.says not in ended.output:
                    return "nothing is said of success; %s" % ended
                subprocess.call(["chmod", "-R", "u+rwX", self.folder])
                fault = job.fault(ended.code == 0)
                # What was done, but could not be told, is a failure, too.
                if fault and ended.code == 1 and not heard:
                    fault = job.fault(True)
                return "%s; %s" % (fault, ended) if fault else None

            self.rounds("%s, %s" % (kind.__name__.lower(), world), run, count=1)

    def test_limitOfThreads(self):
        for count in range(1, 6) if IS_ROOT else (1,):
            # Earlier versions killed every process of the user where no tool can be started.
            only = jobs.ALL if IS_ROOT else [kind for kind in jobs.ALL if kind != jobs.PackageName]
            self.under("NPROC %d" % count, threads(count), only)

    @unittest.skipUnless(IS_ROOT, "the processes at risk are those of a user whom nobody else is")
    def test_aToolThatCannotBeStartedCostsNobodyAProcess(self):
        def run(unused):
            as_somebody = prepared(threads(100))
            bystander = subprocess.Popen(["sleep", "600"], preexec_fn=as_somebody, close_fds=True)
            self.children.append(bystander)
            told = None
            os.chmod(self.folder, 0o777)
            signer = write(self.path("bin", "apksigner"), "#!/bin/sh\n")
            os.chmod(signer, 0o755)
            environment = {"ASAN_OPTIONS": "detect_leaks=0", "PATH": os.path.dirname(signer) + ":/usr/bin:/bin"}
            game = write(self.path("game.apk"), read(jobs.APK))
            os.chown(game, SOMEBODY, SOMEBODY)
            # The third is for a script's thread; the tool after it gets it, or comes too early.
            for count, words in ((3, ["check", game]), (3, ["sign", "--keystore", signer, "--pass-file", signer, game]),
                                 (2, ["package-name", jobs.APK]), (2, ["devices"]),
                                 (2, ["install", "--yes", jobs.APK])):
                ended = self.quenzo(*words, before=threads(count), environment=environment, seconds=120)
                told = told or (None if ended.refused or (count == 3 and ended.code == 0) else ended)
            if bystander.poll() is not None:
                return "another process of the user was killed"
            bystander.kill()
            bystander.wait()
            return told

        self.rounds("tools at the limit of processes", run)

    def test_limitOfProcessesOfAControlGroup(self):
        """Such a limit holds for root, too, and for threads that a limit of the user's would allow."""
        for count in range(1, 6):
            with control_group("pids.max", str(count)) as group:
                if not group:
                    self.skipTest("no control group with a limit of processes can be made here")
                self.under("pids.max %d" % count, entering(group))

    def test_limitOfFiles(self):
        for count in (4, 6, 7, 8, 16, 24):
            self.under("NOFILE %d" % count, limited(resource.RLIMIT_NOFILE, count))

    def test_limitOfSizes(self):
        for size in (0, 1000, 5000):
            self.under("FSIZE %d" % size, limited(resource.RLIMIT_FSIZE, size))

    def test_limitOfTheStack(self):
        self.under("STACK 256 KiB", limited(resource.RLIMIT_STACK, 256 << 10))

    def test_treesOfManyLevelsOnASmallStack(self):
        for command in ("copy", "cut", "output", "pack", "remove"):
            def run(unused):
                os.makedirs(self.path("target"))
                os.mkdir(self.path("source"))
                make_levels(self.path("source"), 2000)
                words = [command, "source"] + {"pack": ["out.zip"], "remove": of_command("remove", "--yes")}.get(
                    command, ["target"])
                ended = self.quenzo(*words, before=limited(resource.RLIMIT_STACK, 256 << 10))
                stays = os.path.exists(self.path("source", "d"))
                is_sound = ended.refused or (ended.code == 0 and stays == (command in ("copy", "pack")))
                return None if is_sound and (stays or command in ("remove", "cut", "output")) else ended

            self.rounds("%s, 2,000 levels" % command, run, count=1)

    def test_closedStreams(self):
        for numbers in ((0,), (1,), (2,), (0, 1, 2)):
            self.under("closed %s" % (numbers,), closed(*numbers), heard=1 not in numbers, says=2 not in numbers)

    def test_workingFolderThatIsGone(self):
        self.under("working folder gone", in_a_deleted_folder)

    def test_variables(self):
        self.under("no HOME", HOME=None)
        # As root a folder that is merely absent would be made.
        none = self.path("a file", "none")
        write(self.path("a file"), "")
        self.under("HOME absent", HOME=none, XDG_CONFIG_HOME=none, XDG_DATA_HOME=none, XDG_RUNTIME_DIR=none)
        self.under("TMPDIR absent", TMPDIR=none, TMP=none, TEMP=none)
        for locale in ("POSIX", "nonsense", "tr_TR.UTF-8", "C.ISO-8859-9", ""):
            self.under("locale %s" % locale, LC_ALL=locale, LANG=locale)
        self.under("no PATH", PATH=None)
        self.under("Qt's variables", QT_PLUGIN_PATH=none, QT_QPA_PLATFORM="nonsense", QT_HASH_SEED="x",
                   QT_QPA_PLATFORM_PLUGIN_PATH=none, QT_MESSAGE_PATTERN="%{if-debug}", QT_SCALE_FACTOR="-1",
                   QT_LOGGING_TO_CONSOLE="0", QT_FONT_DPI="0", QT_STYLE_OVERRIDE="x", QT_NO_GLIB="1")
        self.under("TZ and the like", TZ="nonsense", COLUMNS="-1", TERM="", LANGUAGE="../..", SQLITE_TMPDIR=none)

    def test_masks(self):
        self.under("umask 0777", lambda: os.umask(0o777))
        self.under("ignored signals", ignoring(signal.SIGCHLD, signal.SIGPIPE, signal.SIGXFSZ, signal.SIGINT))

    @unittest.skipUnless(IS_ROOT, "only root can make a small disk")
    def test_smallDisks(self):
        for size in (32, 64, 128):
            for kind in jobs.ALL:
                def run(unused):
                    with mounted("-t", "tmpfs", "-o", "size=1m", "quenzo-test", self.folder):
                        job = kind(self.folder)
                        words = job.words()
                        with open("/dev/null", "w") as nowhere:
                            # No more room than so much beyond what is there.
                            with_filler = os.path.join(self.folder, "filler")
                            subprocess.call(["dd", "if=/dev/zero", "of=" + with_filler, "bs=1k"], stderr=nowhere)
                            subprocess.call(["truncate", "-s", "-%dk" % size, with_filler])
                        ended = self.quenzo(*words, environment=job.environment)
                        os.remove(with_filler)
                        if ended.code not in (0, 1) or (ended.code and not ended.error.strip()):
                            return ended
                        fault = job.fault(ended.code == 0)
                        return "%s; %s" % (fault, ended) if fault else None

                self.rounds("%s, %d KiB left" % (kind.__name__.lower(), size), run, count=1)


if __name__ == "__main__":
    unittest.main()
