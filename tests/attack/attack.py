# SPDX-License-Identifier: MIT
"""What the attacks on the program share: rounds that are counted, and the program run in a bad world.

QUENZO is the program to attack, QUENZO_ATTACK_ROUNDS how often each race is run (a few times by default), and
QUENZO_ATTACK_TABLE a file that gets a line for each race: theme, race, rounds, rounds that showed a fault.
QUENZO_ATTACK_EARLIER is set where the program is an earlier version, which may lack commands and options.
"""
import contextlib
import json
import os
import resource
import signal
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(os.path.dirname(HERE), "scripts"))
QUENZO = os.path.abspath(os.environ.get("QUENZO", os.path.join(ROOT, "build", "debug", "bin", "quenzo")))

from support import FolderCase, read, tree, write  # noqa: E402,F401

# The scripts under attack are those of the program.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(QUENZO)), "Script"))

if "TMPDIR" not in os.environ and os.access("/dev/shm", os.W_OK | os.X_OK):
    tempfile.tempdir = "/dev/shm"
ROUNDS = int(os.environ.get("QUENZO_ATTACK_ROUNDS", "2"))
NOBODY = 65534
IS_ROOT = os.geteuid() == 0


class Ended(object):
    """How the program ended: its code (a signal as a negative number) and what it wrote."""

    def __init__(self, words, code, output, error):
        self.words, self.code, self.output, self.error = words, code, output, error

    def __repr__(self):
        return "quenzo %s: %s\n%s%s" % (" ".join(self.words)[:300], self.code, self.output[-1000:], self.error[-2000:])

    @property
    def refused(self):
        """Whether it ended as the program's own errors do: a code, and a line for a person that says why."""
        return self.code in (1, 2) and bool(self.error.strip())

    @property
    def crashed(self):
        return self.code < 0 or self.code > 2

    def answer(self):
        """The object of --json."""
        return json.loads(self.output)


class Attack(FolderCase):
    """A test whose rounds are counted, each in a folder of its own below self.folder."""

    def setUp(self):
        FolderCase.setUp(self)
        os.chmod(self.folder, 0o755)
        self.base = self.folder
        self.faults = []
        self.children = []
        self.addCleanup(self._end_children)

    def tearDown(self):
        self.assertEqual([], self.faults, "\n".join(self.faults)[:6000])

    def _end_children(self):
        for child in self.children:
            if child.poll() is None:
                child.kill()
            child.wait()

    def quenzo(self, *words, **options):
        """Runs the program to its end; one that does not end in time is killed, and told as the code None."""
        seconds = options.pop("seconds", 60)
        child = self.start(*words, **options)
        killer = threading.Timer(seconds, child.kill)
        killer.start()
        output, error = child.communicate(options.get("input"))
        in_time = killer.is_alive()
        killer.cancel()
        return Ended(words, child.returncode if in_time else None, output or "", error or "")

    def start(self, *words, **options):
        environment = dict(os.environ, LC_ALL="C.UTF-8", HOME=self.base)
        for name, value in options.get("environment", {}).items():
            environment.pop(name, None)
            if value is not None:
                environment[name] = value
        streams = dict((name, options.get(name, subprocess.PIPE)) for name in ("stdout", "stderr"))
        streams["stdin"] = options.get("stdin", subprocess.PIPE if "input" in options else open(os.devnull))
        child = subprocess.Popen([options.get("program", QUENZO)] + list(words), cwd=options.get("cwd", self.folder),
                                 env=environment, preexec_fn=prepared(options.get("before")), close_fds=True, **streams)
        self.children.append(child)
        return child

    def rounds(self, race, run, count=None, tries=1):
        """Runs a race ROUNDS times, or count times, each in a new folder; run(number) gives None, or what was wrong.

        Where one try shows a fault too rarely, a round is several of them. The test fails at its end if any round did, so that one race does not hide the next.
        """
        count = ROUNDS if count is None else count
        faults = [fault for fault in (self._round(run, number, tries) for number in range(count)) if fault]
        tell(self.theme, race, count, len(faults))
        if faults:
            self.faults.append("%s: %d of %d rounds, the first: %s" % (race, len(faults), count, faults[0]))

    def _round(self, run, number, tries):
        fault = None
        while tries > 0 and not fault:
            tries -= 1
            fault = self._try(run, number)
        return fault

    def _try(self, run, number):
        self.folder = os.path.join(self.base, "%d" % number)
        os.mkdir(self.folder)
        try:
            return run(number)
        except (EnvironmentError, RuntimeError) as error:   # What was left cannot even be looked at.
            return error
        finally:
            subprocess.call(["rm", "-rf", self.folder])
            self.folder = self.base


def prepared(before):
    """What a child does first: Python has switched signals off that the program expects as they are."""
    def prepare():
        for number in (signal.SIGPIPE, signal.SIGXFSZ):
            signal.signal(number, signal.SIG_DFL)
        if before:
            before()
    return prepare


def tell(theme, race, count, faults):
    if "QUENZO_ATTACK_TABLE" in os.environ:
        with open(os.environ["QUENZO_ATTACK_TABLE"], "a") as table:
            table.write("%s\t%s\t%d\t%d\n" % (theme, race, count, faults))


def become_nobody():
    if IS_ROOT:
        os.setgroups([])
        os.setgid(NOBODY)
        os.setuid(NOBODY)


def of_command(command, *options):
    """Those of the options that the command has; an earlier version has fewer."""
    with open(os.devnull) as nowhere:
        child = subprocess.Popen([QUENZO, "help", command], stdin=nowhere, stdout=subprocess.PIPE)
        text = child.communicate()[0]
    return [option for option in options if option in text]


def limited(kind, value):
    """A child's limit, of both kinds."""
    return lambda: resource.setrlimit(kind, (value, value))


@contextlib.contextmanager
def meanwhile(work):
    """Calls work again and again in a process of its own, as somebody else would, until the body is over."""
    child = os.fork()
    if not child:
        try:
            parent = os.getppid()
            while os.getppid() == parent:
                work()
        finally:
            os._exit(0)
    try:
        yield
    finally:
        os.kill(child, signal.SIGKILL)
        os.waitpid(child, 0)


def attempt(call, *words):
    """A call that may come too late."""
    try:
        call(*words)
    except OSError:
        return False
    return True


def wait_until(condition, seconds=30):
    end = time.time() + seconds
    while not condition():
        if time.time() > end:
            return False
        time.sleep(0.0005)
    return True


def mode(path):
    return os.lstat(path).st_mode & 0o7777


@contextlib.contextmanager
def mounted(*words):
    """mount(8) with these words, the last of which is the place; gives whether that was allowed."""
    with open(os.devnull, "w") as nowhere:
        done = IS_ROOT and subprocess.call(("mount",) + words, stderr=nowhere) == 0
        try:
            yield done
        finally:
            if done:
                subprocess.call(["umount", "-l", words[-1]])
