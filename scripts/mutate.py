#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Applies small wrong changes to the library, one at a time, and tells which of them its tests notice.

    scripts/coverage.sh                          # tells which test program reaches which line; once
    scripts/mutate.py                            # goes on where an earlier run was ended
    scripts/mutate.py --only trees/ --count 40   # another choice, of some units
    scripts/mutate.py --preset tsan --kinds lock # dropped locks, under the thread sanitizer
    scripts/mutate.py --table                    # what is known so far

Works in a copy of the tree below --work. As root, a test sees all but that folder read-only, so that a wrong
change removes nothing else; without root that protection is missing: use a machine of its own. Exits with 1 when
fewer than 95 % of the changes are noticed, or when one has not been tried.
"""
import argparse
import collections
import filecmp
import hashlib
import json
import os
import random
import re
import select
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WANTED = 95.0
HIDDEN = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|^#[^\n]*', re.S | re.M)
# Kind, what is looked for in the code, and what takes its place.
CHANGES = [
    ("comparison", r" (<|>|<=|>=) ", {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}),
    ("equality", r" (==|!=) ", {"==": "!=", "!=": "=="}),
    ("logic", r" (&&|\|\|) ", {"&&": "||", "||": "&&"}),
    ("arithmetic", r" (\+|-|\*|/|\+=|-=) ", {"+": "-", "-": "+", "*": "/", "/": "*", "+=": "-=", "-=": "+="}),
    ("step", r"(\+\+|--)", {"++": "--", "--": "++"}),
    ("truth", r"\b(true|false)\b", {"true": "false", "false": "true"}),
    ("constant", r"(?<![\w.\"])(\d+)(?![\w.\"])", lambda text: str(int(text) + 1)),
    # Early ones alone: the end of a function, or of a lambda, needs its result.
    ("return", r"(?<=\)\n|[;{e]\n)(?<! \{\n)[ ]{8,}(return\b[^;]*;)(?!\n *\}[;,)])", lambda text: "{}"),
    ("lock", r"(?<=\n)[ ]+((?:const )?(?:std::lock_guard<std::(?:recursive_)?mutex>|ConnectionLock|PyThreadStateLock) \w+(?:\([^;]*\))?;)",
     lambda text: ";"),
    ("call", r"(?<=[;{})\n]\n)[ ]+((?:\w+(?:::|\.|->))*\w+\([^;{}]*\);)(?=\n)", lambda text: ";"),
    ("assignment", r"(?<=\n)[ ]+([\w.\->\[\]]+ [|&]?= [^;{}]*;)(?=\n)", lambda text: ";"),
]

Change = collections.namedtuple("Change", "key source line begin end kind text")


def masked(code):
    """The code with blanks in the place of comments, texts and directives."""
    return HIDDEN.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), code)


def closing(code, opened):
    depth = 0
    for at in range(opened, len(code)):
        depth += {"(": 1, ")": -1}.get(code[at], 0)
        if depth == 0:
            return at
    return -1


def conditions(code):
    """Begin, end and replacement of each condition that can be negated."""
    for found in re.finditer(r"\bif \(", code):
        end = closing(code, found.end() - 1)
        # One with a variable of its own is left alone.
        if end > 0 and not re.match(r"(const|int|auto)\b", code[found.end():end]):
            yield found.end(), end


def changes_of(source, code):
    """Every change that this source offers."""
    plain = masked(code)
    spans = [("condition", begin, end, "!(" + code[begin:end] + ")") for begin, end in conditions(plain)]
    for kind, pattern, becomes in CHANGES:
        for found in re.finditer(pattern, plain):
            begin, end = found.span(1)
            text = code[begin:end]
            spans.append((kind, begin, end, becomes[text] if isinstance(becomes, dict) else becomes(text)))
    seen = collections.Counter()
    for kind, begin, end, text in spans:
        line = code.count("\n", 0, begin) + 1
        start = code.rfind("\n", 0, begin) + 1
        if re.search(r"static_assert|template|operator", code[start:code.find("\n", end)]):
            continue
        stem = "\n".join(code[max(0, begin - 80):end + 40].split())
        seen[(kind, stem, text)] += 1
        words = (source, kind, stem, text, seen[(kind, stem, text)])
        key = hashlib.sha1(("%s|%s|%s|%s|%d" % words).encode()).hexdigest()[:12]
        yield Change(key, source, line, begin, end, kind, text)


def chosen(sources, count, seed, kinds):
    """So many changes, a share of each source by its size, one a line at most."""
    offers = {}
    for source in sources:
        with open(os.path.join(ROOT, source)) as file:
            found = [change for change in changes_of(source, file.read()) if kinds.search(change.kind)]
        random.Random("%s %s" % (seed, source)).shuffle(found)
        lines = set()
        offers[source] = [change for change in found if not (change.line in lines or lines.add(change.line))]
    total = sum(len(offer) for offer in offers.values()) or 1
    ranked = []
    for offer in offers.values():
        share = max(2.0, count * len(offer) / total)
        ranked += [((index + 0.5) / share, change) for index, change in enumerate(offer)]
    return [change for _, change in sorted(ranked, key=lambda entry: entry[:1] + (entry[1].key,))[:count]]


class Copy:
    """The copy of the tree, its build, and the tests in it."""

    def __init__(self, work, preset):
        self.work, self.tree = work, work + "/tree"
        self.build = self.tree + "/build/" + preset
        self.temporary = work + "/tmp"
        self.refresh()
        if not os.path.exists(self.build + "/CMakeCache.txt"):
            self.check(["cmake", "-G", "Unix Makefiles", "--preset", preset, "-DQUENZO_BUILD_HOST=OFF",
                        "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"])
        self.check(["cmake", "--build", self.build, "-j%d" % int(os.environ.get("JOBS", os.cpu_count()))])
        with open(self.build + "/compile_commands.json") as file:
            self.commands = json.load(file)
        told = subprocess.run(["ctest", "--test-dir", self.build, "--show-only=json-v1"], check=True,
                              stdout=subprocess.PIPE)
        self.tests = {test["name"]: test for test in json.loads(told.stdout)["tests"] if "command" in test}

    def check(self, command):
        done = subprocess.run(command, cwd=self.tree, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if done.returncode != 0:
            sys.exit(done.stdout.decode(errors="replace"))

    def refresh(self):
        """Brings the copy up to date with the tree; what is equal keeps its time."""
        names = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                               check=True, stdout=subprocess.PIPE).stdout.decode().split("\0")
        for name in filter(None, names):
            source, target = os.path.join(ROOT, name), os.path.join(self.tree, name)
            if not os.path.isfile(source):
                continue
            os.makedirs(os.path.dirname(target), exist_ok=True)
            if not os.path.exists(target) or not filecmp.cmp(source, target, shallow=False):
                shutil.copy(source, target)

    def objects_of(self, source):
        """The commands that compile a source, for the library and for tests that have a copy of their own."""
        return [entry for entry in self.commands if entry["file"] == os.path.join(self.tree, source)]

    def headers(self, entry, command):
        """The headers that a source begins with, compiled once: they take most of the time of each change."""
        with open(entry["file"]) as file:
            lines = re.match(r"((//[^\n]*|#include [^\n]*|)\n)*", file.read()).group()
        stem = "%s/headers/%s.h" % (self.work, hashlib.sha1((lines + entry["command"]).encode()).hexdigest()[:12])
        if not os.path.exists(stem + ".gch"):
            os.makedirs(os.path.dirname(stem), exist_ok=True)
            with open(stem, "w") as file:
                file.write(lines)
            made = command[:command.index("-o")] + ["-x", "c++-header", "-o", stem + ".gch", stem]
            subprocess.run(made, cwd=entry["directory"], check=True, stderr=subprocess.DEVNULL)
        return stem

    def compile(self, entry):
        """Whether it compiles; without what only slows this down."""
        command = shlex.split(entry["command"])
        command[command.index("-o"):command.index("-o")] = ["-g0", "-w", "-iquote", os.path.dirname(entry["file"])]
        command += ["-include", self.headers(entry, command)]
        return subprocess.run(command, cwd=entry["directory"], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0

    def object(self, entry):
        return os.path.join(entry["directory"], re.search(r" -o (\S+)", entry["command"]).group(1))

    def link(self, entry):
        """Links the target that an object belongs to; none of what uses it is linked anew."""
        folder = re.match(r".*?\.dir", self.object(entry)).group()
        with open(folder + "/link.txt") as file:
            for line in file:
                subprocess.run(shlex.split(line), cwd=entry["directory"], check=True, stderr=subprocess.DEVNULL)

    def run(self, name, limit):
        """Runs one test: "", or how it failed."""
        test = self.tests[name]
        properties = {entry["name"]: entry["value"] for entry in test["properties"]}
        environment = dict(os.environ, TMPDIR=self.temporary)
        environment.update(pair.split("=", 1) for pair in properties.get("ENVIRONMENT", []))
        shutil.rmtree(self.temporary, ignore_errors=True)
        os.makedirs(self.temporary)
        os.chmod(self.temporary, 0o1777)
        child = subprocess.Popen(confined(self.work) + test["command"], cwd=properties["WORKING_DIRECTORY"],
                                 env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT, start_new_session=True)
        try:
            return failure_of(child, limit)
        finally:
            try:
                os.killpg(child.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            child.wait()
            child.stdout.close()


def failure_of(child, limit):
    """How a test that runs fails, told as soon as it is known: what it does behind that costs time alone."""
    end, text = time.monotonic() + limit, b""
    while True:
        if time.monotonic() > end:
            return "no end within %d s" % limit
        part = b""
        if select.select([child.stdout], [], [], 1)[0]:
            part = os.read(child.stdout.fileno(), 1 << 16)
            text = text[-1000:] + part
            failed = re.search(rb"FAIL!  : ([^\n(]*)[^\n]*\n", text)
            if failed:
                return failed.group(1).decode()
        # A child that it left behind may keep its output open.
        if not part and child.poll() is not None:
            return "" if child.returncode == 0 else "ended with %d" % child.returncode


def confined(work):
    """What starts a test where only the copy can be written to, and none of its processes outlives it."""
    if os.geteuid() != 0:
        return []
    script = 'mount --bind "$0" "$0" && mount -o remount,bind,ro / && cd "$PWD" && "$@"; exit $?'
    return ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc", "sh", "-c", script, work]


def reaching(change, reached, known):
    """The tests that come to a change's line, or else to the line of code before it; the quickest first."""
    for line in range(change.line, max(0, change.line - 6), -1):
        names = [name for name, test in reached.items() if line in test["lines"].get(change.source, ())]
        if names:
            return sorted((name for name in names if name in known), key=lambda name: reached[name]["seconds"])
    return []


def attempt(copy, change, reached):
    """Tries one change: "noticed", "unnoticed", "unreached" or "invalid", and by what."""
    path = os.path.join(copy.tree, change.source)
    with open(path) as file:
        code = file.read()
    entries = copy.objects_of(change.source)
    saved = [(entry, copy.object(entry), copy.object(entry) + ".whole") for entry in entries]
    names = reaching(change, reached, copy.tests)
    if not names:
        return "unreached", ""
    for _, whole, kept in saved:
        shutil.copy2(whole, kept)
    try:
        with open(path, "w") as file:
            file.write(code[:change.begin] + change.text + code[change.end:])
        if not all(copy.compile(entry) for entry in entries):
            return "invalid", ""
        for entry in entries:
            copy.link(entry)
        for name in names:
            failure = copy.run(name, max(60, 3 * reached[name]["seconds"]))
            if failure:
                return "noticed", "%s: %s" % (name, failure)
        return "unnoticed", ", ".join(names)
    finally:
        with open(path, "w") as file:
            file.write(code)
        for entry, whole, kept in saved:
            shutil.move(kept, whole)
            os.utime(whole)
            copy.link(entry)


def read_results(path):
    """The latest result of each change; one that was noticed once stays so."""
    results = {}
    if os.path.exists(path):
        with open(path) as file:
            for line in file:
                result = json.loads(line)
                if results.get(result["key"], {}).get("outcome") != "noticed":
                    results[result["key"]] = result
    return results


def equal_changes():
    """The keys of changes that change nothing, each explained in a row of its own."""
    with open(ROOT + "/docs/reliability.md") as file:
        return set(re.findall(r"^\| `([0-9a-f]{12})` \|", file.read(), re.M))


def table(changes, results):
    """Prints what is known of these changes; the share that is noticed, and how many were not tried."""
    by_source = collections.defaultdict(collections.Counter)
    for change in changes:
        by_source[change.source][results.get(change.key, {}).get("outcome", "open")] += 1
    whole = collections.Counter()
    print("| source | noticed | unnoticed | not reached | open |\n| --- | --- | --- | --- | --- |")
    for source, counts in sorted(by_source.items()):
        whole += counts
        print("| %s | %d | %d | %d | %d |" % (source, counts["noticed"], counts["unnoticed"], counts["unreached"], counts["open"]))
    for change in changes:
        if results.get(change.key, {}).get("outcome") in ("unnoticed", "unreached"):
            print("%s: %s" % (results[change.key]["outcome"], results[change.key]["place"]))
    tried = whole["noticed"] + whole["unnoticed"] + whole["unreached"]
    share = 100.0 * whole["noticed"] / max(1, tried)
    print("%d changes tried: %d noticed, %.1f %%; %d do not compile, %d not tried" %
          (tried, whole["noticed"], share, whole["invalid"], whole["open"]))
    return share, whole["open"]


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--count", type=int, default=300, help="how many changes are chosen")
    parser.add_argument("--seed", default="1")
    parser.add_argument("--only", type=re.compile, default=re.compile(""), help="sources, an expression")
    parser.add_argument("--kinds", type=re.compile, default=re.compile(""), help="kinds of changes, an expression")
    parser.add_argument("--preset", default="debug", help="debug or tsan")
    parser.add_argument("--jobs", type=int, default=1, help="how many copies are worked in at once")
    parser.add_argument("--again", action="store_true", help="tries what was not noticed once more")
    parser.add_argument("--list", action="store_true", help="prints the chosen changes and tries none")
    parser.add_argument("--table", action="store_true", help="prints what is known and tries none")
    parser.add_argument("--reached", default=ROOT + "/build/coverage/reached.json")
    parser.add_argument("--work", default=tempfile.gettempdir() + "/quenzo-mutate")
    parser.add_argument("--results", help="JSON lines; mutate.jsonl in the folder of --work otherwise")
    return parser.parse_args()


def place(change):
    with open(os.path.join(ROOT, change.source)) as file:
        code = file.read()
    begin, end = code.rfind("\n", 0, change.begin) + 1, code.find("\n", change.end)
    line = code[begin:change.begin] + "[" + code[change.begin:change.end] + " -> " + change.text + "]" + code[change.end:end]
    return "%s:%d: %s: %s" % (change.source, change.line, change.kind, " ".join(line.split()))


def is_to_be_tried(known, again):
    return not known or again and known["outcome"] not in ("noticed", "invalid")


def try_all(changes, options, work, path, reached):
    """Tries these changes in so many copies at once, and writes each result as soon as it is there."""
    waiting, turn = iter(changes), threading.Lock()

    def next_change():
        with turn:
            return next(waiting, None)

    def work_off(copy, change):
        while change:
            began = time.monotonic()
            outcome, by = attempt(copy, change, reached)
            result = {"key": change.key, "outcome": outcome, "by": by, "place": place(change),
                      "preset": options.preset, "seconds": round(time.monotonic() - began, 1)}
            with turn, open(path, "a") as file:
                file.write(json.dumps(result) + "\n")
                print("%-9s %5.1f s  %s  %s" % (outcome, result["seconds"], result["place"], by), flush=True)
            change = next_change()

    workers = []
    for number in range(1, options.jobs + 1):
        change = next_change()
        if change:
            workers.append(threading.Thread(target=work_off, args=(Copy("%s/%d" % (work, number), options.preset), change)))
            workers[-1].start()
    for worker in workers:
        worker.join()


def main():
    options = arguments()
    work = os.path.abspath(options.work)
    if os.path.commonpath([ROOT, work]) == ROOT:
        sys.exit("mutate: %s is in the tree itself" % work)
    path = options.results or work + "/mutate.jsonl"
    with open(options.reached) as file:
        reached = json.load(file)
    sources = sorted({source for test in reached.values() for source in test["lines"]
                      if source.endswith(".cpp") and options.only.search(source)})
    equal = equal_changes()
    offered = chosen(sources, options.count, options.seed, options.kinds)
    changes = [change for change in offered if change.key not in equal]
    if options.list:
        for change in changes:
            print(change.key, place(change))
        return
    results = read_results(path)
    if not options.table:
        try_all([change for change in changes if is_to_be_tried(results.get(change.key), options.again)],
                options, work, path, reached)
        results = read_results(path)
    share, left = table(changes, results)
    print("%d changes are equal in effect: docs/reliability.md says why" % (len(offered) - len(changes)))
    sys.exit(1 if share < WANTED or left else 0)


if __name__ == "__main__":
    main()
