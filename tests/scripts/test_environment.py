# -*- coding: utf-8 -*-
# SPDX-License-Identifier: MIT
"""The start-up module of the embedded interpreter: init_python_env."""
import os
import re
import shutil
import unittest

from support import ROOT, SCRIPTS, FolderCase, python, write

TOOL_PYTHON = os.path.join(ROOT, "host", "tool", "Python")
STARTED = "import sys; sys.path.append(%r); import init_python_env\n"


class Environment(FolderCase):
    def setUp(self):
        FolderCase.setUp(self)
        self.python = self.path("tool", "mac", "Python")
        shutil.copytree(TOOL_PYTHON, self.python, ignore=shutil.ignore_patterns("*.pyc"))

    def answer(self, code, **environment):
        """What code prints after the module was imported, as the library does it."""
        folder = environment.pop("folder", self.python)
        environment.setdefault("PYTHON_QUENZO_ENV", folder)
        environment = dict((key, value) for key, value in environment.items() if value is not None)
        child = python(environment.pop("before", "") + STARTED % folder + code, environment=environment,
                       cwd=self.folder)
        out, error = child.communicate()
        self.assertEqual(("", 0), (error, child.returncode))
        return out

    def test_argumentsExistInAnInterpreterWithoutAny(self):
        self.assertEqual("['']\n", self.answer("print(sys.argv)", before="import sys; del sys.argv\n"))

    def test_argumentsThatExistAreKept(self):
        self.assertEqual("['mine']\n", self.answer("print(sys.argv)", before="import sys; sys.argv = ['mine']\n"))

    def test_modulesBesideItCanBeImported(self):
        write(os.path.join(self.python, "modules", "shared_by_all.py"), "NAME = 'found'\n")
        self.assertEqual("found\n", self.answer("import shared_by_all; print(shared_by_all.NAME)"))
        self.assertEqual("found\n", self.answer("import shared_by_all; print(shared_by_all.NAME)",
                                                folder=os.path.join(self.python, "..", "Python")))

    def test_theVariableNamesTheFolder(self):
        write(self.path("elsewhere", "modules", "shared_by_all.py"), "NAME = 'elsewhere'\n")
        self.assertEqual("elsewhere\n", self.answer("import shared_by_all; print(shared_by_all.NAME)",
                                                    PYTHON_QUENZO_ENV=self.path("elsewhere")))

    def test_itsOwnFolderServesWithoutTheVariable(self):
        write(os.path.join(self.python, "modules", "shared_by_all.py"), "NAME = 'found'\n")
        for value in (None, ""):
            self.assertEqual("found\n", self.answer("import shared_by_all; print(shared_by_all.NAME)",
                                                    PYTHON_QUENZO_ENV=value))

    def test_aFolderThatIsNotThereIsNotAdded(self):
        self.assertEqual("[]\n", self.answer("print([one for one in sys.path if 'modules' in one])"))
        self.assertEqual("[]\n", self.answer("print([one for one in sys.path if 'modules' in one])",
                                             PYTHON_QUENZO_ENV=self.path("absent")))

    def test_runningItAgainChangesNothing(self):
        os.mkdir(os.path.join(self.python, "modules"))
        code = ("import os; before = list(sys.path), sys.argv, dict(os.environ)\n"
                "for turn in range(3): init_python_env.prepare(); reload(init_python_env)\n"
                "print(before == (sys.path, sys.argv, dict(os.environ)), before[0].count(%r))" %
                os.path.join(self.python, "modules"))
        self.assertEqual("(True, 1)\n", self.answer(code))

    def test_aSearchPathWithTextEntriesIsNoHarm(self):
        folder = self.path(u"папка".encode("utf-8"), "Python")
        shutil.copytree(self.python, folder)
        write(os.path.join(folder, "modules", "shared_by_all.py"), "NAME = 'found'\n")
        code = "import shared_by_all; init_python_env.prepare(); print(shared_by_all.NAME, [type(x) for x in sys.path])"
        for locale in ("C", "C.UTF-8"):
            out = self.answer(code, folder=folder, LC_ALL=locale)
            self.assertIn("'found'", out)
            self.assertNotIn("unicode", out)
        self.assertEqual("1\n", self.answer(
            "print(len([one for one in sys.path if one.endswith('modules')]))", folder=folder,
            before="import sys; sys.path.append(%r.decode('utf8'))\n" % os.path.join(folder, "modules")))

    def test_programsThatScriptsStartWriteUtf8(self):
        code = ("import subprocess\nprint(subprocess.check_output([sys.executable, '-c', "
                "'import sys; sys.stdout.write(u\"\\\\u4e91\")']))")
        self.assertEqual(u"云\n".encode("utf-8"), self.answer(code, LC_ALL="C"))

    def test_anEncodingThatTheUserChoseIsKept(self):
        self.assertEqual("latin-1\n", self.answer("import os; print(os.environ['PYTHONIOENCODING'])",
                                                  PYTHONIOENCODING="latin-1"))

    def test_theLibrarysStatementsGiveAWorkingInterpreter(self):
        """The statements that the library runs around it, and one call after the other of every script."""
        code = ("for turn in range(2):\n"
                "  for name in ('pytoolForQt', 'encrypt', 'start'):\n"
                "    reload(sys); sys.setdefaultencoding('utf8')\n"
                "    sys.path.append(str(%r).decode('utf8'))\n"
                "    print(__import__(name).__name__)\n"
                "    del sys.modules[name]\n"
                "    sys.path.remove(str(%r).decode('utf8'))\n"
                "print(u'\\u4e91')\n" % (SCRIPTS, SCRIPTS))
        self.assertEqual("pytoolForQt\nencrypt\nstart\n" * 2 + u"云\n".encode("utf-8"),
                         self.answer(code, before="import sys; del sys.argv\n"))


class ShippedScripts(unittest.TestCase):
    def test_scriptsUseTheStandardLibraryAndEachOtherOnly(self):
        names = [name[:-3] for name in os.listdir(SCRIPTS) if name.endswith(".py")]
        wanted = set(names) | set((
            "Queue binascii collections contextlib errno fcntl fnmatch hashlib hmac itertools json os re shutil stat struct subprocess "
            "sys tempfile thread threading traceback unicodedata xml zipfile zlib").split())
        for folder in (SCRIPTS, TOOL_PYTHON):
            for name in os.listdir(folder):
                if not name.endswith(".py"):
                    continue
                with open(os.path.join(folder, name)) as source:
                    used = re.findall(r"^\s*(?:from|import) ([a-z_A-Z0-9]+)", source.read(), re.MULTILINE)
                self.assertEqual(set(), set(used) - wanted, name)

    def test_scriptsImportWithoutDoingAnything(self):
        names = [name[:-3] for name in os.listdir(SCRIPTS) if name.endswith(".py")]
        child = python("import sys\nfor name in sys.argv[1:]: __import__(name)", *names)
        self.assertEqual(("", ""), child.communicate())
        self.assertEqual(0, child.returncode)


if __name__ == "__main__":
    unittest.main()
