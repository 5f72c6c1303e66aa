# SPDX-License-Identifier: MIT
"""Every call that touches a job's files fails once: the work is right nevertheless, or the failure is told, and nothing is half.

Each job of jobs.py, and a whole run, is first looked at: which calls it makes, and from which places. Then it is run once for each
place and each error number that the manual has for the call. By itself this is a sample; scripts/faults.sh runs as many as fit in
QUENZO_FAULT_SECONDS, of the jobs in QUENZO_FAULT_JOBS, and prints the table. QUENZO_FAULT_LIBRARY is tests/attack/onefault.cpp, built.
"""
import collections
import errno
import json
import os
import random
import re
import shutil
import struct
import time
import unittest

from attack import Attack, ROOT, read, tree, write
import jobs
from support import contents

LIBRARY = os.environ.get("QUENZO_FAULT_LIBRARY")
SECONDS = float(os.environ.get("QUENZO_FAULT_SECONDS", "0"))
SAMPLE = 60
SEED = int(os.environ.get("QUENZO_ATTACK_SEED", "1"))
OPEN = "EACCES EINTR ELOOP EMFILE ENFILE ENOMEM EPERM"
ERRORS = {
    "open": OPEN,
    "open folder": OPEN,
    "create": OPEN + " EDQUOT ENOSPC EROFS",
    "open unnamed": OPEN + " EDQUOT EISDIR ENOSPC EOPNOTSUPP EROFS",
    "read": "EINTR EIO",
    "write": "EDQUOT EFBIG EINTR EIO ENOSPC EPERM",
    "copy": "EDQUOT EINVAL EIO ENOMEM ENOSPC EXDEV",
    "flush": "EDQUOT EIO ENOSPC",
    "resize": "EFBIG EINTR EIO ENOSPC EPERM",
    "chmod": "EIO ENOMEM EPERM EROFS",
    "mkdir": "EACCES EDQUOT EMLINK ENOMEM ENOSPC EROFS",
    "remove": "EACCES EBUSY EIO ENOMEM EPERM EROFS",
    "rename": "EACCES EBUSY EDQUOT EMLINK ENOMEM ENOSPC EPERM EROFS EXDEV",
    "link": "EACCES EDQUOT EIO EMLINK ENOMEM ENOSPC EPERM EROFS EXDEV",
    "list": "EIO ENOENT",
    "stat": "EACCES EIO ELOOP ENOMEM EOVERFLOW",
    "close": "EDQUOT EINTR EIO ENOSPC",
    "lock": "EACCES EAGAIN EINTR EIO ENOLCK",
}
SAMPLES = os.path.join(ROOT, "host", "sample")

Call = collections.namedtuple("Call", "number name site place path")
Result = collections.namedtuple("Result", "job call error outcome detail")


class Build(jobs.Job):
    """A whole run of two channels, with icons, an SDK and files of a channel's own."""

    def words(self):
        for name, copy in (("skyharbour.apk", "base.apk"), ("packages/harbourpay.zip", "pay.zip"), ("icons/icon.png", "icon.png")):
            shutil.copy(os.path.join(SAMPLES, name), self.path(copy))
        shutil.copytree(os.path.join(SAMPLES, "icons", "marks", "harbor"), self.path("marks", "harbor"))
        write(self.path("own", "assets", "own.txt"), "own\n")
        job = {"game": "G", "base": "base.apk", "icons": {"master": "icon.png", "marks": "marks"},
               "sdks": {"pay": {"package": "pay.zip", "id": 7}},
               "channels": [{"folder": "plain"}, {"folder": "harbor", "mark": "harbor", "sdks": ["pay"], "files": "own", "number": 101}]}
        return ["build", write(self.path("job.json"), json.dumps(job))]

    def fault(self, done):
        if done:
            whole = [name for name in ("plain", "harbor") if not os.path.exists(self.package(name))]
            if whole or not os.path.exists(self.path("output", "report.json")):
                return "missing: %s" % (whole or "report.json")
        for name in ("plain", "harbor"):
            if os.path.exists(self.package(name)):
                found = contents(self.package(name))
                if "assets/channel.json" not in found or ("assets/own.txt" in found) != (name == "harbor"):
                    return "%s is not whole: %s" % (name, sorted(found)[:5])
        report = self.path("output", "report.json")
        if os.path.exists(report):
            json.loads(read(report))
        return None

    def package(self, name):
        return self.path("output", name, name + ".apk")


KINDS = [kind for kind in jobs.ALL if kind not in (jobs.Encode, jobs.Decode, jobs.PackageName)] + [Build]


def place_of(call):
    """Where a call comes from, in a way that holds for all files that go the same way."""
    return call.name, call.site, re.sub(r"[0-9a-f]{6,}|\d+|[A-Za-z0-9_]{6}(?=\.part|$)", "", call.path) if "python" in call.place else ""


@unittest.skipUnless(LIBRARY, "QUENZO_FAULT_LIBRARY is not given")
class Faults(Attack):
    theme = "faults"

    def run_job(self, kind, wanted=0, error=0):
        """The job once in a new folder: it, how it ended, and the calls (or the one that failed)."""
        folder = os.path.join(self.base, "job")
        shutil.rmtree(folder, ignore_errors=True)
        os.mkdir(folder)
        job = kind(os.path.realpath(folder))
        words = job.words()
        state = write(os.path.join(self.base, "state"), struct.pack("4i", 0, wanted, error, 0))
        trace = write(os.path.join(self.base, "trace"), "")
        environment = dict(job.environment, LD_PRELOAD=LIBRARY, QUENZO_FAULT_FOLDER=job.folder, QUENZO_FAULT_STATE=state,
                           QUENZO_FAULT_TRACE=trace)
        ended = self.quenzo(*words, environment=environment)
        calls = [line.split("\t", 4) for line in read(trace).splitlines()]
        return job, ended, [Call(int(one[0]), *one[1:]) for one in calls if len(one) == 5]

    def sites(self, kind):
        """The calls to try: the first and the last of each place."""
        job, ended, calls = self.run_job(kind)
        self.assertEqual((0, None), (ended.code, job.fault(True) or None), ended)
        found = collections.OrderedDict()
        for call in calls:
            if call.name in ERRORS:
                found.setdefault(place_of(call), []).append(call)
        tried = [one for same in found.values() for one in (same[:1] + same[-1:] if len(same) > 1 else same)]
        return [(kind, call, error) for call in tried for error in ERRORS[call.name].split()]

    def attempt(self, kind, call, error):
        job, ended, hit = self.run_job(kind, call.number, getattr(errno, error))
        if not hit:
            return Result(kind.__name__, call, error, "not reached", "")
        outcome, detail = self.judge(job, ended)
        left = unfinished(job) if hit[0].name != "remove" else []
        if outcome != "fault" and left:
            outcome, detail = "fault", "left unfinished: %s; %s" % (left, ended)
        return Result(kind.__name__, hit[0], error, outcome, detail)

    def judge(self, job, ended):
        if ended.code not in (0, 1, 2):
            return "fault", "it did not end well"
        if ended.code == 0 and job.says not in ended.output:
            return "fault", "nothing is said of success"
        if ended.code != 0 and not ended.error.strip():
            return "fault", "nothing is said of the failure"
        try:
            wrong = job.fault(ended.code == 0)
            # What was done before the failure is failed, too, where that is told.
            if wrong and ended.code != 0:
                wrong = job.fault(True) and wrong
        except Exception as error:   # What is left cannot even be read.
            wrong = repr(error)
        if wrong:
            return "fault", "%s; %s" % (wrong, ended)
        return ("right" if ended.code == 0 else "told"), ended.error.strip()

    def kinds(self):
        names = os.environ.get("QUENZO_FAULT_JOBS", "").split()
        return [kind for kind in KINDS if not names or kind.__name__.lower() in [name.lower() for name in names]]

    def test_everyCallFailsOnce(self):
        end = time.time() + SECONDS
        tries = fairly([self.sites(kind) for kind in self.kinds()])
        results = []
        for one in tries[:len(tries) if SECONDS else SAMPLE]:
            if SECONDS and time.time() > end:
                break
            results.append(self.attempt(*one))
        report(results, len(tries))
        faults = [result for result in results if result.outcome == "fault"]
        self.assertGreater(len([result for result in results if result.outcome != "not reached"]), len(results) / 2)
        self.faults += ["%s: %s %s of '%s' from %s: %s" % (one.job, one.call.name, one.error, one.call.path, one.call.place, one.detail)
                        for one in faults]


def unfinished(job):
    """Files under names that are given until they are whole; what is in the making in a run's own folder is meant to stay."""
    names = [name for name in tree(job.folder) if not name.startswith("work/") and not name.endswith("/.quenzo-icons")]
    return [name for name in names if re.search(r"\.part\b|(^|/)\.[^/]", name)]


def fairly(lots):
    """All of the lots at random, so that the beginning has the same share of each."""
    generator = random.Random(SEED)
    for lot in lots:
        generator.shuffle(lot)
    return [lot[number] for number in range(max(len(lot) for lot in lots)) for lot in lots if number < len(lot)]


def report(results, planned):
    """The table, for scripts/faults.sh."""
    if "QUENZO_FAULT_TABLE" not in os.environ:
        return
    rows = collections.defaultdict(collections.Counter)
    places = collections.defaultdict(set)
    for result in results:
        rows[result.job, result.call.name][result.outcome] += 1
        places[result.job, result.call.name].add(place_of(result.call))
    with open(os.environ["QUENZO_FAULT_TABLE"], "w") as table:
        table.write("%d of %d tries\n\n| job | call | places | told | right | not reached | faults |\n|%s\n" % (
            len(results), planned, " --- |" * 7))
        for key in sorted(rows):
            row = rows[key]
            table.write("| %s | %s | %d | %d | %d | %d | %d |\n" % (key + (
                len(places[key]), row["told"], row["right"], row["not reached"], row["fault"])))


if __name__ == "__main__":
    unittest.main()
