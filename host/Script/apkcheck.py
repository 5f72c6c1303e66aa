# SPDX-License-Identifier: MIT
"""Whether a package is whole, aligned and signed, as far as its bytes tell; docs/scripts.md has the answers."""
from quenzo_files import argument_path
from quenzo_progress import begin_progress
from quenzo_report import printable, sentence
from quenzo_zipread import STORED, Archive
from quenzo_zipwrite import is_signed

ALIGNMENT = 4
PAGE = 4096             # what libraries that are mapped from the package need at least
_MOST_NAMES = 20


def checkApk(apkFile):
    """A map of texts: "entries", "misaligned" (their number), "names" of these, "signature"; or "error" alone."""
    try:
        path = argument_path(apkFile, "the APK")
        with Archive(path) as archive:
            begin_progress(sum(entry.size for entry in archive.entries))
            for entry in archive.entries:
                archive.verify(entry)
            misaligned = [entry.name for entry in archive.entries if _is_misaligned(entry)]
            return {"entries": str(len(archive.entries)),
                    "misaligned": str(len(misaligned)),
                    "names": ", ".join(printable(name) for name in misaligned[:_MOST_NAMES]),
                    "signature": "yes" if is_signed(archive) else "no"}
    except Exception as error:  # The host reads a map, whatever happened.
        return {"error": sentence(error)}


def _is_misaligned(entry):
    return entry.method == STORED and entry.data % (PAGE if entry.name.endswith(".so") else ALIGNMENT) != 0
