// SPDX-License-Identifier: MIT
#include "build/apkeditor.h"

#include "build/archivefile.h"
#include "build/deflatedcontents.h"
#include "build/packagefile.h"
#include "build/zipcontent.h"
#include "build/zipdirectory.h"
#include "build/zipformat.h"
#include "build/zipnames.h"
#include "build/zipwriter.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QSet>

#include <algorithm>
#include <functional>

namespace {

struct ApkEditorTexts {
    Q_DECLARE_TR_FUNCTIONS(ApkEditorTexts)
};

/** By name; a QMap is in the order of bytes. */
using Changes = QMap<QByteArray, const ApkChange*>;

/** What an entry gets, open for reading; null with an error. */
std::unique_ptr<QIODevice> openContent(const ApkChange& change, QString& error)
{
    std::unique_ptr<QIODevice> content;
    if (change.file.isEmpty()) {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(change.content);
        content = std::move(buffer);
    } else {
        content = std::make_unique<QFile>(change.file);
    }
    // A pipe would make us wait.
    const bool isFile =
        change.file.isEmpty() || QFileInfo(change.file).isFile() || !QFileInfo::exists(change.file);
    if (isFile && content->open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return content;
    error = ApkEditorTexts::tr("cannot read %1 for '%2': %3")
                .arg(change.file, ZipNames::shown(change.name),
                     isFile ? content->errorString() : ApkEditorTexts::tr("this is not a regular file"));
    return nullptr;
}

// Whether an entry holds the content; an entry that cannot be read does not.
bool holds(const ArchiveFile& archive, const ZipEntry& entry, QIODevice& content)
{
    if (entry.size != content.size())
        return false;
    ZipContent base(archive, entry);
    for (QByteArray block = base.next(); !block.isEmpty(); block = base.next()) {
        if (content.read(block.size()) != block)
            return false;
    }
    return base.error().isEmpty();
}

ZipEntry newEntry(const QByteArray& name, qint64 size)
{
    constexpr quint32 folderAttributes = 040755U << 16 | 0x10;
    ZipEntry entry;
    entry.name = name;
    entry.size = entry.packed = size;
    entry.method = size == 0 || ZipNames::isStored(name) ? ZipEntry::Stored : ZipEntry::Deflated;
    const auto isPlain = [](char letter) { return static_cast<unsigned char>(letter) < 128; };
    if (!std::all_of(name.cbegin(), name.cend(), isPlain) && ZipNames::isUtf8(name))
        entry.flags = ZipFormat::utf8;
    if (entry.isFolder())
        entry.attributes = folderAttributes;
    return entry;
}

ZipEntry changedEntry(const ZipEntry& base, qint64 size)
{
    ZipEntry entry = base;
    entry.crc = 0;
    entry.method = size == 0 && base.size != 0 ? quint16(ZipEntry::Stored) : base.method;
    entry.size = entry.packed = size;
    return entry;
}

bool put(ZipWriter& writer, const ArchiveFile& archive, const ZipEntry* base, const ApkChange& change,
         QString& error)
{
    const std::unique_ptr<QIODevice> content = openContent(change, error);
    if (!content)
        return false;
    if (change.name.endsWith('/') && content->size() != 0)
        error = ApkEditorTexts::tr("the folder '%1' has content").arg(ZipNames::shown(change.name));
    if (!error.isEmpty())
        return false;
    if (base != nullptr && (base->isFolder() || holds(archive, *base, *content))) {
        writer.takeOver(archive, *base);
        return true;
    }
    const qint64 size = content->size();
    if (!content->seek(0)) {
        error = content->errorString();
        return false;
    }
    return writer.add(base != nullptr ? changedEntry(*base, size) : newEntry(change.name, size), *content);
}

} // namespace

struct ApkEditor::Base {
    ArchiveFile archive;
    ZipDirectory directory;
    QVector<ApkEntry> entries;
    DeflatedContents contents;
    qint64 takenOver = 0;

    QString plan(const QVector<ApkChange>& changes, Changes& left) const;
    bool pack(ZipWriter& writer, Changes left, QString& error) const;
    QString damage(const std::function<bool(const ZipEntry&)>& isRead) const;
    QString objection(const std::function<bool(const ZipEntry&)>& isRead) const;
};

ApkEditor::ApkEditor() = default;
ApkEditor::~ApkEditor() = default;

bool ApkEditor::open(const QString& base)
{
    m_base = std::make_unique<Base>();
    m_error.clear();
    ArchiveFile& archive = m_base->archive;
    QString objection = archive.open(base) ? m_base->directory.read(archive) : archive.error();
    QVector<QByteArray> names;
    for (const ZipEntry& entry : qAsConst(m_base->directory.entries)) {
        names.append(entry.name);
        m_base->entries.append(entry);
    }
    if (objection.isEmpty())
        objection = ZipNames::objectionTo(names);
    if (objection.isEmpty())
        return true;
    m_error = ApkEditorTexts::tr("%1: %2").arg(base, objection);
    m_base.reset();
    return false;
}

const QVector<ApkEntry>& ApkEditor::entries() const
{
    static const QVector<ApkEntry> none;
    return m_base ? m_base->entries : none;
}

bool ApkEditor::isSigned() const
{
    return m_base && m_base->directory.isSigned;
}

qint64 ApkEditor::takenOver() const
{
    return m_base ? m_base->takenOver : 0;
}

const QString& ApkEditor::error() const
{
    return m_error;
}

// What is wrong with the changes, or all of them by name.
QString ApkEditor::Base::plan(const QVector<ApkChange>& changes, Changes& left) const
{
    for (const ApkChange& change : changes) {
        if (left.contains(change.name))
            return ApkEditorTexts::tr("the entry '%1' is wanted twice").arg(ZipNames::shown(change.name));
        if (!ZipNames::isSignature(change.name))
            left.insert(change.name, &change);
    }
    QVector<QByteArray> names = left.keys().toVector();
    for (const ZipEntry& entry : directory.entries) {
        if (!left.contains(entry.name) && !ZipNames::isSignature(entry.name))
            names.append(entry.name);
    }
    return ZipNames::objectionTo(names);
}

bool ApkEditor::Base::pack(ZipWriter& writer, Changes left, QString& error) const
{
    for (const ZipEntry& entry : directory.entries) {
        if (ZipNames::isSignature(entry.name))
            continue;
        const ApkChange* const change = left.take(entry.name);
        if (change == nullptr)
            writer.takeOver(archive, entry);
        else if (!put(writer, archive, &entry, *change, error))
            return false;
    }
    for (const ApkChange* const change : qAsConst(left)) {
        if (!put(writer, archive, nullptr, *change, error))
            return false;
    }
    return writer.finish();
}

bool ApkEditor::write(const QString& package, const QVector<ApkChange>& changes)
{
    m_error.clear();
    if (!m_base) {
        m_error = ApkEditorTexts::tr("%1: no base is open").arg(package);
        return false;
    }
    Changes left;
    m_error = m_base->plan(changes, left);
    PackageFile out(package);
    ZipWriter writer(out, m_base->contents);
    if (m_error.isEmpty() && out.open() && m_base->pack(writer, left, m_error) && out.flush()) {
        if (!m_base->archive.isUnchanged())
            m_error =
                ApkEditorTexts::tr("%1 changed while packages were made of it").arg(m_base->archive.path());
        else if (out.finish())
            m_base->takenOver = writer.takenOver();
    }
    if (!out.error().isEmpty())
        m_error = out.error();
    else if (!writer.error().isEmpty() || !m_error.isEmpty())
        m_error = ApkEditorTexts::tr("%1: %2").arg(package, m_error.isEmpty() ? writer.error() : m_error);
    return m_error.isEmpty();
}

QString ApkEditor::Base::damage(const std::function<bool(const ZipEntry&)>& isRead) const
{
    for (const ZipEntry& entry : directory.entries) {
        if (!isRead(entry))
            continue;
        ZipContent content(archive, entry);
        while (!content.next().isEmpty()) { }
        if (!content.error().isEmpty())
            return ApkEditorTexts::tr("%1: %2").arg(archive.path(), content.error());
    }
    return {};
}

QString ApkEditor::Base::objection(const std::function<bool(const ZipEntry&)>& isRead) const
{
    QString found = damage(isRead);
    if (!found.isEmpty())
        return found;
    for (const ZipEntry& entry : directory.entries) {
        if (entry.method == ZipEntry::Stored && entry.data % ZipFormat::alignmentOf(entry.name) != 0)
            return ApkEditorTexts::tr("%1: '%2' is not aligned")
                .arg(archive.path(), ZipNames::shown(entry.name));
    }
    return {};
}

QString ApkEditor::objectionToContents() const
{
    return m_base->damage([](const ZipEntry&) { return true; });
}

QString ApkEditor::objectionTo(const QString& package)
{
    ApkEditor editor;
    return editor.open(package) ? editor.objection() : editor.error();
}

QString ApkEditor::objection() const
{
    return m_base->objection([](const ZipEntry&) { return true; });
}

QString ApkEditor::objection(const QVector<ApkChange>& changes) const
{
    QSet<QByteArray> missing;
    for (const ApkChange& change : changes) {
        if (!ZipNames::isSignature(change.name))
            missing.insert(change.name);
    }
    QString found =
        m_base->objection([&missing](const ZipEntry& entry) { return missing.remove(entry.name); });
    if (!found.isEmpty() || missing.isEmpty())
        return found;
    return ApkEditorTexts::tr("%1: there is no '%2'")
        .arg(m_base->archive.path(), ZipNames::shown(*missing.cbegin()));
}

QString ApkEditor::digest() const
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const auto number = [](qint64 value) -> QByteArray { return QByteArray::number(value) + ' '; };
    for (const ApkEntry& entry : qAsConst(m_base->entries)) {
        hash.addData(number(entry.method) + number(entry.crc) + number(entry.packed) + number(entry.size)
                     + entry.name + '\0');
    }
    hash.addData(QByteArray::number(m_base->archive.size()));
    return QString::fromLatin1(hash.result().toHex());
}
