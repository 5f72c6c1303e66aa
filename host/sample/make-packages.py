#!/usr/bin/python2.7
# SPDX-License-Identifier: MIT
"""Makes one SDK package per answer of an import out of sdk/; equal on every run.

    make-packages.py [FOLDER]          packages/ beside this file when not given

    harbourpay.zip              1      imported, as SDK 7 or without a number
    another-sdk.zip             100    it is SDK 8: import it as SDK 7
    damaged.zip                 101    one bit of its content is wrong
    no-config.zip               102    config.xml is missing
    bad-config.zip              103    config.xml ends in the middle
    hostile.zip                 104    one entry would land outside of the destination
"""
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(HERE, os.pardir, "Script"))

from quenzo_zipread import DEFLATED, STORED  # noqa: E402
from quenzo_zipwrite import Record, ZipWriter  # noqa: E402


def sdk_files():
    """The content of sdk/ by entry name."""
    root = os.path.join(HERE, "sdk")
    files = {}
    for folder, _, names in os.walk(root):
        for name in names:
            path = os.path.join(folder, name)
            with open(path, "rb") as source:
                files[os.path.relpath(path, root)] = source.read()
    return files


def write_package(path, files, method=DEFLATED):
    with open(path, "w+b") as out:
        writer = ZipWriter(out)
        for name in sorted(files):
            writer.add(Record(name, method, len(files[name])), [files[name]])
        writer.finish()


def damage(path, text):
    """Flips a bit of a content that is stored as it is."""
    with open(path, "r+b") as package:
        position = package.read().index(text)
        package.seek(position)
        package.write(chr(ord(text[0]) ^ 1))


def main():
    target = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "packages")
    if not os.path.isdir(target):
        os.makedirs(target)
    files = sdk_files()
    config = files["config.xml"]

    def package(name, method=DEFLATED, **changes):
        content = dict(files, **changes)
        kept = dict((entry, data) for entry, data in content.items() if data is not None)
        write_package(os.path.join(target, name), kept, method)

    package("harbourpay.zip")
    package("another-sdk.zip", **{"config.xml": config.replace('id="7" name="Harbour Pay"', 'id="8" name="Quay ID"')})
    package("damaged.zip", STORED)
    damage(os.path.join(target, "damaged.zip"), "The ferryman")
    package("no-config.zip", **{"config.xml": None})
    package("bad-config.zip", **{"config.xml": config[:config.index("</files>")]})
    package("hostile.zip", **{"../outside.txt": "This file must never be written.\n"})


if __name__ == "__main__":
    main()
