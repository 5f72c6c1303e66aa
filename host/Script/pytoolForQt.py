# SPDX-License-Identifier: MIT
"""Archives and SDK packages: the functions that the library calls by name.

docs/scripts.md says what each takes and answers.
"""
from quenzo_files import argument_path, argument_text
from quenzo_pack import pack
from quenzo_repack import pack_like, pack_onto
from quenzo_report import Answer, DamagedArchive, handing_over, printable, report
from quenzo_sdk import CONFIG_NAME, MAX_CONFIG_BYTES, ConfigError, SdkConfig
from quenzo_unpack import check_unpacking, unpack
from quenzo_zipread import Archive

IMPORTED, WRONG_SDK, DAMAGED, NO_CONFIG, BAD_CONFIG, NOT_UNPACKED = 1, 100, 101, 102, 103, 104


def zip(src, dest, apkfile):
    """Packs folder src into archive dest, with file apkfile beside its content unless that is empty."""
    with handing_over():
        pack(src, dest, apkfile)
    return 0


def zipLike(src, dest, apkfile, base):
    """The same in the order of archive base, whose entries are taken over as they are where the content is equal."""
    with handing_over():
        pack_like(src, dest, apkfile, base)
    return 0


def zipOnto(src, dest, apkfile, base):
    """Packs what folder src holds over the entries of archive base."""
    with handing_over():
        pack_onto(src, dest, apkfile, base)
    return 0


def unZip(src, dest, unused="NULL"):
    """Unpacks archive src into folder dest."""
    with handing_over(), Archive(argument_path(src, "the archive")) as archive:
        unpack(archive, argument_text(dest, "the folder to unpack into"))
    return 0


def importSDK(src, dest, idSDK=None):
    """Unpacks SDK package src into folder dest; answers 1, or 100 to 104 and leaves dest as it was."""
    return _imported("importSDK", src, idSDK,
                     lambda package: unpack(package, argument_text(dest, "the folder to import into")))


def planImport(src, dest, idSDK=None):
    """What importSDK would do, which is not done: the answer as a text and, when it is 1, the names of all files."""
    names = []

    def note(package):
        check_unpacking(package, argument_text(dest, "the folder to import into"))
        names.extend(printable(entry.name) for entry in package.entries if not entry.is_folder)

    return [str(_imported("planImport", src, idSDK, note))] + names


def _imported(function, src, wanted, work):
    """The answer of an import whose work is done with the package once that has been checked."""
    try:
        with Archive(argument_path(src, "the package")) as package:
            _check_package(package, wanted)
            work(package)
        return IMPORTED
    except Answer as error:
        answer, cause = error.number, error
    except DamagedArchive as error:
        answer, cause = DAMAGED, error
    except Exception as error:  # The host reads a number, whatever happened.
        answer, cause = NOT_UNPACKED, error
    report(function, cause)
    return answer


def _check_package(package, wanted):
    """The package is whole and is the SDK that was asked for."""
    entry = package.find(CONFIG_NAME)
    if entry is None:
        raise Answer(NO_CONFIG, "the package has no config.xml")
    if entry.size > MAX_CONFIG_BYTES:
        raise Answer(BAD_CONFIG, "config.xml has more than %d bytes" % MAX_CONFIG_BYTES)
    try:
        config = SdkConfig("".join(package.blocks(entry)))
    except ConfigError as error:
        raise Answer(BAD_CONFIG, str(error))
    number = wanted.encode("utf-8") if isinstance(wanted, unicode) else str(wanted)
    if wanted is not None and number != str(config.id):
        raise Answer(WRONG_SDK, "the package is SDK %d, not %s" % (config.id, number))
    names = frozenset(one.name for one in package.entries)
    for name in config.files:
        if name not in names:
            raise DamagedArchive("the package lacks '%s', which its config.xml names" % name)
