# SPDX-License-Identifier: MIT
"""Reads built files for the protections that every optimised build has.

    check.py [--commands compile_commands.json FLAGS] FILE...

What leaves no trace in a file is looked for in the commands that compiled it: all but those of tests and benchmarks have
to have each of FLAGS, which are separated by semicolons.
"""
from __future__ import print_function

import json
import os
import re
import subprocess
import sys

ENDBR64 = b"\xf3\x0f\x1e\xfa"
PAGE = 0x1000
# Those that the C library always checks when gcc asks it to; clang cannot in C++.
UNCHECKED = frozenset("printf fprintf dprintf sprintf snprintf vprintf vfprintf vdprintf vsprintf vsnprintf".split())


def output(*words):
    return subprocess.check_output(words).decode("utf-8", "replace")


class Built(object):
    def __init__(self, path):
        self.path = path
        self.header = output("readelf", "-W", "--file-header", path)
        self.symbols = [line.split() for line in output("readelf", "-W", "--dyn-syms", path).splitlines()]
        self.symbols = [words for words in self.symbols if len(words) in (8, 9) and words[0][:-1].isdigit()]
        with open(path, "rb") as content:
            self.content = content.read()

    def lacks(self):
        """What the file lacks, as texts."""
        headers = output("readelf", "-W", "--program-headers", self.path)
        imported = set(words[7].split("@")[0] for words in self.symbols if words[6] == "UND")
        by_clang = "clang version" in output("readelf", "-p", ".comment", self.path)
        unchecked = set() if by_clang else imported & UNCHECKED
        checks = [(re.search(r"FLAGS_1.* NOW", output("readelf", "-W", "--dynamic", self.path)), "immediate binding"),
                  ("GNU_RELRO" in headers, "relocations that are read-only"),
                  (re.search(r"GNU_STACK.* RW +", headers), "a stack that cannot be executed"),
                  (re.search(r"Type: +DYN", self.header), "a position of the loader's choice"),
                  ("__stack_chk_fail" in imported, "guarded stacks"),
                  (not unchecked, "checked calls of the C library: %s" % ", ".join(unchecked))]
        if "X86-64" in self.header:
            checks += [(not self.unmarked(), "marks at the targets of indirect jumps: %s" % self.unmarked()[:5]),
                       (not self.large_steps(), "stacks that are touched page by page: %s" % self.large_steps()[:5])]
        return [what for holds, what in checks if not holds]

    def unmarked(self):
        """The addresses of functions that can be jumped to from elsewhere without a mark that allows it."""
        start, offset, size = self.code()
        exported = [int(words[1], 16) for words in self.symbols if words[3] == "FUNC" and words[6] != "UND"]
        relocated = re.findall(r"R_X86_64_RELATIVE +([0-9a-f]+)", output("readelf", "-W", "--relocs", self.path))
        targets = set(exported + [int(address, 16) for address in relocated])
        at = dict((address, address - start + offset) for address in targets if start <= address < start + size)
        return ["%x" % address for address in sorted(at) if self.content[at[address]:at[address] + 4] != ENDBR64]

    def code(self):
        """Address, place in the file and size of the section of code."""
        sections = output("readelf", "-W", "--sections", self.path)
        return [int(number, 16) for number in re.search(r" \.text +PROGBITS +(\w+) (\w+) (\w+)", sections).groups()]

    def large_steps(self):
        """Instructions that take more than a page from the stack at once, and may so pass a guard page by."""
        found = re.findall(r"sub +\$0x([0-9a-f]+),%rsp", output("objdump", "-d", "--no-show-raw-insn", self.path))
        return [step for step in found if PAGE < int(step, 16) < 1 << 31]


def commands_lack(path, flags):
    lacking = []
    with open(path) as commands:
        for command in json.load(commands):
            room = os.path.relpath(command["directory"], os.path.dirname(path)).split(os.sep)[0]
            if room not in ("tests", "benchmarks"):
                words = command["command"].split()
                lacking += ["%s: %s" % (command["file"], flag) for flag in flags if flag not in words]
    return lacking


def main(words):
    failures = []
    if words[0] == "--commands":
        failures += ["compiled without its flag: %s" % one
                     for one in commands_lack(words[1], words[2].split(";"))]
        words = words[3:]
    for path in words:
        failures += ["%s lacks %s" % (path, what) for what in Built(path).lacks()]
    print("\n".join(failures) or "%d files are hardened" % len(words))
    return bool(failures)


sys.exit(main(sys.argv[1:]))
