# SPDX-License-Identifier: MIT
"""Holds an SPDX document in JSON against what SPDX 2.3 asks for, and against the files that it is about.

    checksbom.py DOCUMENT FILE...     DOCUMENT: - for the standard input
"""
import json
import re
import subprocess
import sys

HEAD = ("spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo", "packages", "relationships")
PACKAGE = ("name", "SPDXID", "versionInfo", "downloadLocation", "licenseDeclared", "licenseConcluded", "copyrightText")
NAMED = ("Qt", "Python", "sqlite", "deflate", "zlib", "adb", "aapt")


def lacking(holder, fields):
    return ["%s lacks %s" % (holder.get("name"), field) for field in fields if not holder.get(field)]


def form(document):
    """What breaks the form."""
    faults = lacking(document, HEAD)
    fixed = [("spdxVersion", "SPDX-2.3"), ("dataLicense", "CC0-1.0"), ("SPDXID", "SPDXRef-DOCUMENT")]
    faults += ["%s is not %s" % pair for pair in fixed if document[pair[0]] != pair[1]]
    if not re.match(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$", document["creationInfo"]["created"]):
        faults.append("created is no time: %s" % document["creationInfo"]["created"])
    if "#" in document["documentNamespace"] or not re.match(r"https?://", document["documentNamespace"]):
        faults.append("the namespace is none: %s" % document["documentNamespace"])
    ids = [package["SPDXID"] for package in document["packages"]]
    faults += ["%s is no identifier" % one for one in ids if not re.match(r"SPDXRef-[A-Za-z0-9.-]+$", one)]
    faults += ["%s is there twice" % one for one in set(ids) if ids.count(one) > 1]
    for package in document["packages"]:
        faults += lacking(package, PACKAGE)
    return faults


def relations(document):
    """What is not related, or to nothing."""
    known = set(package["SPDXID"] for package in document["packages"])
    ends = [(one["spdxElementId"], one["relatedSpdxElement"]) for one in document["relationships"]]
    mentioned = set(end for pair in ends for end in pair)
    faults = ["%s is in no relationship" % one for one in sorted(known - mentioned)]
    faults += ["%s is not there" % one for one in sorted(mentioned - known - {"SPDXRef-DOCUMENT"})]
    described = [one for one in document["relationships"] if one["relationshipType"] == "DESCRIBES"]
    return faults + ([] if len(described) == 1 else ["%d packages are described" % len(described)])


def content(document, files):
    """Which linked library has no component."""
    told = " ".join(package.get("comment", "") for package in document["packages"]).split()
    faults = []
    for path in files:
        table = subprocess.run(["objdump", "-p", path], check=True, stdout=subprocess.PIPE, text=True).stdout
        linked = re.findall(r"^ *NEEDED +(\S+)", table, flags=re.M)
        faults += [] if linked else ["%s is linked to nothing" % path]
        faults += ["%s needs %s, which is not told" % (path, name) for name in linked
                   if name not in told and not name.startswith("libQuenzo")]
    names = " ".join(package["name"] for package in document["packages"]).lower()
    return faults + ["no component is called like %s" % name for name in NAMED if name.lower() not in names]


def main(source, files):
    with (sys.stdin if source == "-" else open(source, encoding="utf-8")) as opened:
        document = json.load(opened)
    faults = form(document) + relations(document) + content(document, files)
    print("\n".join(faults) or "%d components of %d files" % (len(document["packages"]) - 1, len(files)))
    return bool(faults or not files)


sys.exit(main(sys.argv[1], sys.argv[2:]))
