# SPDX-License-Identifier: MIT
"""Holds what a library exports against the list that its hosts rely on.

    check.py [--renew] LIST LIBRARY HEADER...     --renew writes LIST anew

A line of LIST is a symbol and what it stands for. Private functions are no host's; whether templates of other libraries
leave symbols is up to the compiler. A library with further symbols serves its hosts, too, but they are to be a decision.
"""
from __future__ import print_function

import io
import re
import subprocess
import sys

# What some linkers leave in the table of every library, and the address sanitizer beside every variable.
TOOLS = re.compile(r"(__bss_start|_edata|_end|__odr_asan\..*)$")


def output(*words):
    return subprocess.check_output(words).decode("utf-8")


def classes(headers):
    """The exported classes: names with the names of those functions that are private throughout."""
    found = {}
    for header in headers:
        with io.open(header, encoding="utf-8") as opened:
            text = re.sub(r"//[^\n]*|/\*.*?\*/", "", opened.read(), flags=re.S)
        for name, body in re.findall(r"^class \w+_EXPORT (\w+)[^;{]*\{(.*?)^\};", text, flags=re.S | re.M):
            private, other = set(), set()
            for part in re.sub(r"^(?=(?:public|protected|private|Q_SIGNALS)\b)", "\f", body, flags=re.M).split("\f"):
                words = re.findall(r"(~?\w+)\s*[(;={]", part)
                (private if part.startswith("private") else other).update(words)
            found[name] = private - other | set(["qt_static_metacall"])
    return found


def exported(library, own):
    """The exported symbols of the own classes, and what is exported beside them."""
    kinds = {}
    for line in output("nm", "-D", "--defined-only", library).splitlines():
        kind, name = line.split()[-2:]
        kinds[name.split("@")[0]] = kind
    names = sorted(kinds)
    listed, strange = [], []
    for name, meaning in zip(names, output("c++filt", *names).splitlines()):
        member = re.match(r"(?:typeinfo|typeinfo name|vtable) for (\w+)$|(\w+)::(~?\w+)", meaning)
        owner = member and (member.group(1) or member.group(2))
        if owner in own:
            if member.group(3) not in own[owner]:
                listed.append("%s %s" % (name, meaning))
        elif kinds[name] in "TDBR" and not TOOLS.match(name):
            strange.append(meaning)
    return listed, strange


def main(words):
    renew = words[0] == "--renew"
    path, library, headers = words[renew], words[renew + 1], words[renew + 2:]
    listed, strange = exported(library, classes(headers))
    if renew:
        with io.open(path, "w", encoding="utf-8") as opened:
            opened.write(u"".join(u"%s\n" % line for line in listed))
        return 0
    with io.open(path, encoding="utf-8") as opened:
        wanted = opened.read().splitlines()
    faults = ["gone, and hosts may need it: %s" % line for line in wanted if line not in listed]
    faults += ["not in the list: %s" % line for line in listed if line not in wanted]
    faults += ["exported, though no part of the interface: %s" % meaning for meaning in strange]
    print("\n".join(faults) or "%d symbols are as listed" % len(listed))
    if faults:
        print("Is that wanted? scripts/abi.sh --renew writes the lists in abi/ anew; CHANGELOG.md tells hosts.")
    return bool(faults)


sys.exit(main(sys.argv[1:]))
