// SPDX-License-Identifier: MIT
// An archive is refused with a reason, or packages made from it hold its entries and what was changed, byte
// for byte the same each time, and sound when the archive is.
#include "build/apkeditor.h"
#include "build/zipnames.h"
#include "fuzz.h"

#include <QFile>
#include <QMap>
#include <QTemporaryDir>

using Fuzz::require;

namespace {

using Entries = QMap<QByteArray, ApkEntry>;

constexpr const char* added = "assets/fuzz/added.txt";
constexpr const char* text = "added or changed";

QString pathOf(const char* name)
{
    static const QTemporaryDir folder;
    return folder.filePath(QLatin1String(name));
}

void write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            "the archive can be written");
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    require(file.open(QIODevice::ReadOnly), "a package that is written is there");
    return file.readAll();
}

Entries entriesOf(const ApkEditor& editor)
{
    Entries entries;
    for (const ApkEntry& entry : editor.entries())
        entries.insert(entry.name, entry);
    return entries;
}

// A further entry, and another content for the first one that can have one.
QVector<ApkChange> changesOf(const ApkEditor& editor)
{
    QVector<ApkChange> changes{{added, {}, text}};
    for (const ApkEntry& entry : editor.entries()) {
        if (entry.name.endsWith('/') || entry.name == added || ZipNames::isSignature(entry.name))
            continue;
        changes.append({entry.name, {}, text});
        break;
    }
    return changes;
}

void holdEntries(const Entries& base, Entries made, const QVector<ApkChange>& changes)
{
    for (const ApkChange& change : changes) {
        require(made.value(change.name).size == qstrlen(text), "what was changed is there");
        made.remove(change.name);
    }
    for (const ApkEntry& entry : base) {
        const bool isChanged = std::any_of(changes.begin(), changes.end(), [&entry](const ApkChange& change) {
            return change.name == entry.name;
        });
        if (isChanged || ZipNames::isSignature(entry.name))
            continue;
        const ApkEntry taken = made.take(entry.name);
        require(taken.name == entry.name && taken.crc == entry.crc && taken.size == entry.size
                    && taken.packed == entry.packed && taken.method == entry.method,
                "what was not changed is there as it was");
    }
    require(made.isEmpty(), "and nothing else");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString base = pathOf("base.apk");
    const QString package = pathOf("package.apk");
    write(base, QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    ApkEditor editor;
    if (!editor.open(base)) {
        require(!editor.error().isEmpty() && !editor.error().contains(QLatin1Char('\n')),
                "a refusal says why");
        return 0;
    }
    const bool isSound = editor.objectionToContents().isEmpty();
    const QVector<ApkChange> changes = changesOf(editor);
    if (!editor.write(package, changes)) {
        require(!editor.error().isEmpty(), "a failure says why");
        return 0;
    }
    ApkEditor made;
    require(made.open(package), "a package is an archive");
    require(!made.isSigned(), "without a signature");
    holdEntries(entriesOf(editor), entriesOf(made), changes);
    require(!isSound || ApkEditor::objectionTo(package).isEmpty(), "a sound archive gives sound packages");
    const QByteArray first = contentOf(package);
    require(editor.write(package, changes) && contentOf(package) == first, "and the same ones each time");
    return 0;
}
