# SPDX-License-Identifier: MIT
"""Fuzzes the script set's readers of files by strangers, led by the lines that follow each other in them.

    scripts.py replay                   takes every file of corpus/TARGET: the test
    scripts.py TARGET SECONDS FOLDER    mutates; inputs that lead to new lines go to FOLDER/found/TARGET, and the one that
                                        breaks a promise to FOLDER/findings
"""
import contextlib
import errno
import os
import random
import sys
import tempfile
import time
import traceback
import zipfile
from xml.etree import ElementTree
from xml.sax.saxutils import escape, quoteattr

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(os.path.dirname(HERE), "scripts"))
from support import SCRIPTS, read, tree, write  # noqa: E402

from quenzo_names import check_name  # noqa: E402
from quenzo_report import ToolError  # noqa: E402
from quenzo_sdk import MAX_ID, ConfigError, SdkConfig  # noqa: E402
from quenzo_unpack import unpack  # noqa: E402
from quenzo_zipread import Archive  # noqa: E402

LONGEST = 4096
WORK = tempfile.mkdtemp(prefix="quenzo-fuzz-")
NUMBERS = ["\0\0", "\xff\xff", "\0\0\0\0", "\xff\xff\xff\xff", "\xff\xff\xff\x7f", "\1\0", "\x08\0", "\x2d\0\0\0"]


def hold(promise, text):
    if not promise:
        raise AssertionError(text)


def sdk_config(data):
    """A config.xml is refused in one line, or says what another reader finds, and says it again when it is written."""
    try:
        config = SdkConfig(data)
    except ConfigError as error:
        hold(str(error) and "\n" not in str(error), "a refusal is one line")
        return
    said = config.id, config.name, config.version, config.files
    hold(0 <= config.id <= MAX_ID and config.name and config.version and config.files, "all is filled")
    for name in config.files:
        check_name(name)
    text = u"<sdk id='%d' name=%s version=%s><files>%s</files></sdk>" % (
        config.id, quoteattr(config.name), quoteattr(config.version),
        u"".join(u"<file>%s</file>" % escape(name.decode("utf-8"), {"\r": "&#13;"}) for name in config.files))
    again = SdkConfig(text.encode("utf-8"))
    hold(said == (again.id, again.name, again.version, again.files), "what is written comes back")
    if ":" not in data and "\0" not in data:  # The other reader takes prefixes apart.
        root = ElementTree.fromstring(data)
        found = [(one.text or u"") + u"".join(child.tail or u"" for child in one) for one in root.findall("files/file")]
        hold(root.tag == "sdk" and [name.strip().encode("utf-8") for name in found] == config.files, "the files are these")


def archive(data):
    """An archive is refused, or holds what the standard library finds in it, and unpacks to that below its folder."""
    path, dest = write(os.path.join(WORK, "in.zip"), data), os.path.join(WORK, "dest")
    remove(dest)
    try:
        with Archive(path) as opened:
            files = dict((one.name, "".join(opened.blocks(one))) for one in opened.entries)
            with zipfile.ZipFile(path) as plain:
                for one, info in zip(opened.entries, plain.infolist()):
                    hold(one.raw_name == info.orig_filename and files[one.name] == plain.read(info), "the same content")
            unpack(opened, dest)
    except ToolError as error:
        hold(str(error) and "\n" not in str(error), "a refusal is one line")
        hold(not os.path.exists(dest), "and leaves nothing")
        return
    except EnvironmentError as error:
        if error.errno != errno.ENAMETOOLONG:
            raise
        hold(not os.path.exists(dest), "a failure leaves nothing")
        return
    found = tree(dest)
    hold(dict((name, text) for name, text in files.items() if not name.endswith("/")) ==
         dict((name, text) for name, text in found.items() if text is not None), "the files are the entries")
    hold(all(os.path.isdir(os.path.join(dest, name)) for name in files if name.endswith("/")), "and so are the folders")
    hold(sorted(os.listdir(WORK)) == ["dest", "in.zip"], "nothing lies beside them")


def remove(path):
    for folder, folders, names in os.walk(path, topdown=False):
        for name in names:
            os.unlink(os.path.join(folder, name))
        os.rmdir(folder)


TARGETS = {
    "script_config": (sdk_config, ["<sdk ", "id=", " name=", " version=", "<files>", "</files>", "<file>", "</file>", "</sdk>", "\"7\"",
                                   "<!DOCTYPE s>", "<![CDATA[", "]]>", "&#10;", "&amp;", "<?xml version='1.0' encoding='", "utf-16", "latin-1",
                                   "'?>", "../", "/", "\\", "\xc3\xa9", "\xff\xfe", "<!--", "-->"]),
    "script_archive": (archive, ["PK\3\4", "PK\1\2", "PK\5\6", "PK\6\6", "PK\6\7", "/", "../", "\\", "a/b", "META-INF/"] + NUMBERS),
}


@contextlib.contextmanager
def watched(features):
    """Collects which line of the script set followed which, and roughly how often, in the body."""
    counts = {}

    def enter(frame, unused, argument):
        code = frame.f_code
        if not code.co_filename.startswith(SCRIPTS):
            return None
        last = [0]

        def line(frame, event, argument):
            if event == "line":
                key = code, last[0], frame.f_lineno
                last[0] = frame.f_lineno
                counts[key] = counts.get(key, 0) + 1
            return line
        return line

    sys.settrace(enter)
    try:
        yield
    finally:
        sys.settrace(None)
        features.update((key, count.bit_length()) for key, count in counts.items())


def mutated(dice, corpus, words):
    """One of the inputs with some bytes changed, moved, doubled, gone, or come from another one."""
    data = bytearray(dice.choice(corpus))
    for unused in range(dice.choice([1, 1, 2, 4, 8])):
        at = dice.randrange(len(data) + 1)
        length = min(dice.choice([1, 1, 2, 4, 16, 64]), len(data) - at)
        kind = dice.randrange(7)
        other = dice.choice(corpus)
        if kind == 0 and length:
            data[at] ^= 1 << dice.randrange(8)
        elif kind == 1:
            del data[at:at + length]
        elif kind == 2:
            data[at:at] = data[at:at + length] * dice.choice([1, 2, 8])
        elif kind == 3:
            data[at:at] = dice.choice(words)
        elif kind == 4:
            word = dice.choice(words)
            data[at:at + len(word)] = word
        elif kind == 5:
            data[at:at + length] = bytearray(dice.randrange(256) for unused in range(length))
        elif other:
            start = dice.randrange(len(other))
            data[at:] = other[start:start + dice.choice([4, 64, LONGEST])] + bytes(data[at + length:])
    return bytes(data[:LONGEST])


def inputs(*folders):
    return [read(os.path.join(folder, name)) for folder in folders if os.path.isdir(folder) for name in sorted(os.listdir(folder))]


def replay():
    for name, (target, unused) in sorted(TARGETS.items()):
        folder = os.path.join(HERE, "corpus", name)
        hold(os.listdir(folder), "there is a corpus")
        for one in sorted(os.listdir(folder)):
            sys.stderr.write("%s/%s\n" % (name, one))  # The last one, should the target fail.
            target(read(os.path.join(folder, one)))


def fuzz(name, seconds, folder):
    """Whether no input broke a promise; prints the figures that the table shows."""
    target, words = TARGETS[name]
    found = os.path.join(folder, "found", name)
    waiting = inputs(os.path.join(HERE, "corpus", name), found) or [""]
    dice, corpus, features, count = random.Random(os.environ.get("SEED")), [], set(), 0
    end = time.time() + seconds
    while waiting or time.time() < end:
        data = waiting.pop() if waiting else mutated(dice, corpus, words)
        is_new, seen = not corpus, set()
        try:
            with watched(seen):
                target(data)
        except Exception:
            traceback.print_exc()
            print("%s" % write(os.path.join(folder, "findings", "%s-%08x" % (name, hash(data) & 0xffffffff)), data))
            return False
        count += 1
        if is_new or not seen <= features:
            features |= seen
            corpus.append(data)
            if time.time() < end and not waiting:
                write(os.path.join(found, "%08x" % (hash(data) & 0xffffffff)), data)
    print("#%d DONE cov: %d ft: %d corp: %d/" % (count, len(set(key for key, unused in features)), len(features), len(corpus)))
    return True


def main(words):
    try:
        if words == ["replay"]:
            return replay()
        return not fuzz(words[0], float(words[1]), words[2])
    finally:
        remove(WORK)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
