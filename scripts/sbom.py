# SPDX-License-Identifier: MIT
"""Prints which components the program and its libraries are made of and need, as an SPDX 2.3 document in JSON.

    sbom.py VERSION FILE...     FILE: the programs and libraries that ship

Versions are those of this machine's Debian packages. Its time is SOURCE_DATE_EPOCH, so that the same files give the same document.
"""
import datetime
import hashlib
import json
import os
import re
import subprocess
import sys

# The licences of the parts that are used, by Debian's source packages; a component that is not here is to be looked at first.
LICENCES = {
    "android-platform-frameworks-base": "Apache-2.0",
    "android-platform-tools": "Apache-2.0",
    "gcc-12": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "glibc": "LGPL-2.1-or-later",
    "libdeflate": "MIT",
    "openssl": "Apache-2.0",
    "python2.7": "Python-2.0",
    "qtbase-opensource-src": "LGPL-3.0-only OR GPL-2.0-or-later",
    "sqlite3": "blessing",
    "zlib": "Zlib",
}
# What is loaded or started at run time, and so in no file's table.
STARTED = ["aapt", "adb", "libpython2.7-stdlib", "libqt5sql5-sqlite", "openssl"]
OWN = re.compile(r"libQuenzo(Base|Tool)\.so")


def output(*words):
    return subprocess.run(words, check=True, stdout=subprocess.PIPE, text=True).stdout


def needed(files):
    """The names of the libraries that the files are linked to, without their own."""
    found = set()
    for path in files:
        found.update(re.findall(r"\(NEEDED\).*\[(.*)\]", output("readelf", "-dW", path)))
    return sorted(name for name in found if not OWN.match(name))


def owner(library):
    """The Debian package of a library."""
    machine = os.uname().machine + "-"
    lines = output("dpkg-query", "-S", "*/" + library).splitlines()
    lines.sort(key=lambda line: machine not in line)
    return lines[0].split(":")[0]


def component(package, libraries):
    form = "${Version}\n${source:Package}\n${Maintainer}\n${Architecture}\n${Homepage}"
    version, source, maintainer, architecture, homepage = output("dpkg-query", "-W", "-f", form, package).split("\n")
    if source not in LICENCES:
        sys.exit("sbom: the licence of %s, of the source package %s, is not known to scripts/sbom.py" % (package, source))
    found = {
        "name": package,
        "SPDXID": "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", package),
        "versionInfo": version,
        "supplier": "Organization: " + maintainer.replace("<", "(").replace(">", ")"),
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": "NOASSERTION",
        "licenseDeclared": LICENCES[source],
        "copyrightText": "NOASSERTION",
        "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                          "referenceLocator": "pkg:deb/debian/%s@%s?arch=%s" % (package, version, architecture)}],
    }
    if homepage:
        found["homepage"] = homepage
    if libraries:
        found["comment"] = "libraries: " + " ".join(libraries)
    return found


def components(files):
    libraries = {}
    for library in needed(files):
        libraries.setdefault(owner(library), []).append(library)
    return [component(package, libraries.get(package, [])) for package in sorted(set(libraries) | set(STARTED))]


def document(version, parts):
    product = {
        "name": "quenzotool",
        "SPDXID": "SPDXRef-quenzotool",
        "versionInfo": version,
        "supplier": "Organization: the QuenzoTool developers",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": "MIT",
        "licenseDeclared": "MIT",
        "copyrightText": "Copyright (c) the QuenzoTool developers",
    }
    relations = [("SPDXRef-DOCUMENT", "DESCRIBES", product["SPDXID"])]
    for part in parts:
        if "comment" in part:
            relations.append((product["SPDXID"], "DYNAMIC_LINK", part["SPDXID"]))
        if part["name"] in STARTED:
            relations.append((part["SPDXID"], "RUNTIME_DEPENDENCY_OF", product["SPDXID"]))
    content = hashlib.sha256(json.dumps(parts, sort_keys=True).encode()).hexdigest()[:16]
    moment = datetime.datetime.fromtimestamp(int(os.environ.get("SOURCE_DATE_EPOCH", "0")), datetime.timezone.utc)
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": "quenzotool-" + version,
        "documentNamespace": "https://quenzo.example/spdx/quenzotool-%s-%s" % (version, content),
        "creationInfo": {"created": moment.strftime("%Y-%m-%dT%H:%M:%SZ"),
                         "creators": ["Organization: the QuenzoTool developers", "Tool: scripts/sbom.py"]},
        "packages": [product] + parts,
        "relationships": [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
                          for one, kind, other in relations],
    }


def main(version, files):
    json.dump(document(version, components(files)), sys.stdout, indent=1)
    print()


main(sys.argv[1], sys.argv[2:])
