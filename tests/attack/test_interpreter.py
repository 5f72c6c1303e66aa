# SPDX-License-Identifier: MIT
"""Files that are named like parts of Python, and everything else that a runtime asks on its start."""
import os
import unittest

from attack import Attack, write

HOSTILE = "import os\nos.write(1, 'HOSTILE')\n"
SCRIPT = "def good():\n    return 'param'\n"


class Interpreter(Attack):
    theme = "start of the interpreter"

    def run_under(self, race, traps, cwd="project", **environment):
        """Traps are files with code; the program runs a script of the caller's in cwd."""
        def run(unused):
            script = write(self.path("scripts", "script.py"), SCRIPT)
            for trap in traps:
                os.chmod(write(self.path(trap), HOSTILE if trap.endswith(".py") else "#!/bin/sh\n"), 0o755)
            if not os.path.isdir(self.path(cwd)):
                os.makedirs(self.path(cwd))
            values = dict((name, value and value.replace("@", self.folder)) for name, value in environment.items())
            ended = self.quenzo("run", script, "good", cwd=self.path(cwd), environment=values)
            if "HOSTILE" in ended.output + ended.error or ended.code != 0:
                return ended
            return None

        self.rounds(race, run)

    LIBRARY = ["lib/python2.7/os.py", "lib/python2.7/site.py"]

    def test_libraryAboveTheWorkingFolderIsNotTaken(self):
        self.run_under("library above the working folder", self.LIBRARY, "project/code", PATH="/nonexistent")

    def test_libraryInTheWorkingFolderIsNotTaken(self):
        self.run_under("library in the working folder", self.LIBRARY, ".", PATH="/nonexistent")

    def test_libraryBesideAForeignPythonIsNotTaken(self):
        self.run_under("python on the search path", self.LIBRARY + ["bin/python"], PATH="@/bin")

    def test_libraryOfTheEnvironmentIsNotTaken(self):
        self.run_under("PYTHONHOME", self.LIBRARY, PYTHONHOME="@")

    def test_modulesOfTheHomeAreNotTaken(self):
        self.run_under("modules of the home", [".local/lib/python2.7/site-packages/usercustomize.py"], HOME="@")

    def test_seedThatIsNoNumberEndsNothing(self):
        self.run_under("PYTHONHASHSEED", [], PYTHONHASHSEED="nonsense")

    def test_folderAsInputIsAFailureThatIsTold(self):
        def run(unused):
            script = write(self.path("script.py"), SCRIPT)
            folder = os.open(self.folder, os.O_RDONLY)
            ended = self.quenzo("run", script, "good", stdin=folder)
            os.close(folder)
            return None if ended.refused else ended

        self.rounds("folder as standard input", run)

    def test_nameOfAFolderIsNoCode(self):
        for name in ("x'));import os;os.write(1,'HOSTILE');#", "x'+str(__import__('os').write(1,'HOSTILE'))+'",
                     "x\nimport os;os.write(1,'HOSTILE')\n", "x'''+str(__import__('os').write(1,'HOSTILE'))+'''",
                     "x\\'));import os;os.write(1,'HOSTILE');#", "x\r\nimport os", "x\"\"\"", "x\\", "x\\x27"):
            script = write(self.path(name, "script.py"), SCRIPT)
            ended = self.quenzo("run", script, "good")
            self.assertNotIn("HOSTILE", ended.output)
            self.assertTrue(ended.code == 0 or ended.refused, ended)


if __name__ == "__main__":
    unittest.main()
