// SPDX-License-Identifier: MIT
#include "build/zipdirectory.h"

#include "build/archivefile.h"
#include "build/zipformat.h"
#include "build/zipnames.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <sys/stat.h>

using namespace ZipFormat;

namespace {

struct ZipDirectoryTexts {
    Q_DECLARE_TR_FUNCTIONS(ZipDirectoryTexts)
};

/** What the last records say of the directory. */
struct End {
    qint64 place = 0; ///< where the directory ends and these records begin
    quint64 count = 0;
    quint64 size = 0;
    quint64 offset = 0; ///< of the directory, counted from where the archive begins
};

QString incomplete()
{
    return ZipDirectoryTexts::tr("the archive's directory is not complete");
}

QString cutOff(const ArchiveFile& archive, const QByteArray& name)
{
    return archive.error().isEmpty()
        ? ZipDirectoryTexts::tr("the archive is cut off in '%1'").arg(ZipNames::shown(name))
        : archive.error();
}

// Whether a number is what its short form says, which may be that it stands in the long one.
template <typename Short> bool agrees(Short inShort, quint64 inLong)
{
    return inShort == static_cast<Short>(-1) || inShort == inLong;
}

// The long form stands right before the short one, and its locator between them.
QString readLongEnd(const ArchiveFile& archive, const QByteArray& shortEnd, End& end)
{
    const qint64 place = end.place - locatorSize - longEndSize;
    const QByteArray records = archive.read(qMax<qint64>(0, end.place - locatorSize), locatorSize);
    if (!records.startsWith(locatorMark))
        return {};
    const QByteArray record = archive.read(qMax<qint64>(0, place), longEndSize);
    if (place < 0 || record.size() != longEndSize || !record.startsWith(longEndMark)
        || number<quint64>(record, 4) != longEndSize - 12)
        return incomplete();
    end = {place, number<quint64>(record, 32), number<quint64>(record, 40), number<quint64>(record, 48)};
    const bool isWhole = number<quint32>(record, 16) == 0 && number<quint32>(record, 20) == 0
        && number<quint64>(record, 24) == end.count && agrees(number<quint16>(shortEnd, 10), end.count)
        && agrees(number<quint32>(shortEnd, 12), end.size)
        && agrees(number<quint32>(shortEnd, 16), end.offset);
    return isWhole ? QString() : incomplete();
}

QString readEnd(const ArchiveFile& archive, End& end)
{
    constexpr qint64 longestComment = 0xffff;
    const qint64 length = qMin<qint64>(archive.size(), endSize + longestComment);
    const QByteArray tail = archive.read(archive.size() - length, length);
    if (!archive.error().isEmpty())
        return archive.error();
    const int at = tail.size() < endSize ? -1 : tail.lastIndexOf(endMark, tail.size() - endSize);
    if (at < 0)
        return ZipDirectoryTexts::tr("this is not a zip archive");
    const QByteArray record = tail.mid(at);
    if (record.size() != endSize + number<quint16>(record, 20))
        return ZipDirectoryTexts::tr("the archive has something behind its end");
    end = {archive.size() - record.size(), number<quint16>(record, 10), number<quint32>(record, 12),
           number<quint32>(record, 16)};
    if (number<quint32>(record, 4) != 0 || number<quint16>(record, 8) != number<quint16>(record, 10))
        return ZipDirectoryTexts::tr("the archive is one part of several");
    return readLongEnd(archive, record, end);
}

// Values that did not fit into the record stand in one of its fields behind it, in this order.
template <std::size_t Count>
bool readLongValues(const QByteArray& extra, const std::array<quint64*, Count>& values)
{
    int at = 0;
    int left = 0;
    for (int next = 0; left == 0 && extra.size() - next >= 4; next = at + number<quint16>(extra, at - 2)) {
        at = next + 4;
        if (number<quint16>(extra, next) == longField)
            left = qMin<int>(number<quint16>(extra, next + 2), extra.size() - at);
    }
    for (quint64* const value : values) {
        if (*value != limit32)
            continue;
        if (left < 8)
            return false;
        *value = number<quint64>(extra, at);
        at += 8;
        left -= 8;
    }
    return std::all_of(values.cbegin(), values.cend(),
                       [](const quint64* value) { return *value < Q_UINT64_C(1) << 62; });
}

QString objectionToKind(const ZipEntry& entry)
{
    const QString name = ZipNames::shown(entry.name);
    const mode_t kind = entry.attributes >> 16 & S_IFMT;
    if ((entry.flags & encrypted) != 0)
        return ZipDirectoryTexts::tr("'%1' is encrypted").arg(name);
    if (entry.method != ZipEntry::Stored && entry.method != ZipEntry::Deflated)
        return ZipDirectoryTexts::tr("'%1' is packed with the unknown method %2").arg(name).arg(entry.method);
    if (kind != 0 && kind != S_IFREG && kind != S_IFDIR)
        return ZipDirectoryTexts::tr("'%1' is a link or a device").arg(name);
    if (entry.method == ZipEntry::Stored && entry.packed != entry.size)
        return ZipDirectoryTexts::tr("'%1' is stored in another size than its own").arg(name);
    if (entry.isFolder() && entry.size != 0)
        return ZipDirectoryTexts::tr("the folder '%1' has content").arg(name);
    return {};
}

// The entry at a place of the directory; shift is how far the archive begins behind the file's beginning.
bool readEntry(const QByteArray& directory, int& at, qint64 shift, ZipEntry& entry)
{
    const QByteArray record = QByteArray::fromRawData(directory.constData() + at, directory.size() - at);
    if (record.size() < centralSize || !record.startsWith(centralMark))
        return false;
    const int nameLength = number<quint16>(record, 28);
    const int extraLength = number<quint16>(record, 30);
    const int length = centralSize + nameLength + extraLength + number<quint16>(record, 32);
    if (record.size() < length || number<quint16>(record, 34) != 0)
        return false;
    entry.name = record.mid(centralSize, nameLength);
    entry.system = number<quint8>(record, 5);
    entry.flags = number<quint16>(record, 8);
    entry.method = number<quint16>(record, 10);
    entry.time = number<quint16>(record, 12);
    entry.date = number<quint16>(record, 14);
    entry.crc = number<quint32>(record, 16);
    entry.attributes = number<quint32>(record, 38);
    quint64 packed = number<quint32>(record, 20);
    quint64 size = number<quint32>(record, 24);
    quint64 header = number<quint32>(record, 42);
    const QByteArray extra = record.mid(centralSize + nameLength, extraLength);
    if (!readLongValues<3>(extra, {&size, &packed, &header}))
        return false;
    entry.packed = static_cast<qint64>(packed);
    entry.size = static_cast<qint64>(size);
    entry.header = static_cast<qint64>(header) + shift;
    entry.isLong = qMax(entry.packed, entry.size) >= longFrom;
    at += length;
    return true;
}

// Sizes and checksum may be missing where they follow the content; what is there has to be true.
bool tellsTheSame(const QByteArray& local, const QByteArray& extra, const ZipEntry& entry)
{
    quint64 packed = number<quint32>(local, 18);
    quint64 size = number<quint32>(local, 22);
    if (!readLongValues<2>(extra, {&size, &packed}))
        return false;
    const auto flags = number<quint16>(local, 6);
    const bool mayLack = (flags & sizesBehind) != 0;
    const auto is = [mayLack](quint64 said, quint64 meant) {
        return said == meant || (mayLack && said == 0);
    };
    return number<quint16>(local, 8) == entry.method && ((flags ^ entry.flags) & encrypted) == 0
        && is(number<quint32>(local, 14), entry.crc) && is(packed, static_cast<quint64>(entry.packed))
        && is(size, static_cast<quint64>(entry.size));
}

// Finds the packed bytes behind the local header.
QString locate(const ArchiveFile& archive, ZipEntry& entry)
{
    constexpr int usualExtra = 64; // what comes along saves a second call for nearly every entry
    const int before = localSize + entry.name.size();
    QByteArray local = archive.read(entry.header, before + usualExtra);
    if (local.size() < before)
        return cutOff(archive, entry.name);
    if (!local.startsWith(localMark) || number<quint16>(local, 26) != entry.name.size()
        || local.mid(localSize, entry.name.size()) != entry.name)
        return ZipDirectoryTexts::tr("there is no local header for '%1'").arg(ZipNames::shown(entry.name));
    const int length = before + number<quint16>(local, 28);
    if (local.size() < length)
        local = archive.read(entry.header, length);
    if (local.size() < length)
        return cutOff(archive, entry.name);
    local.truncate(length);
    if (!tellsTheSame(local, local.mid(before), entry))
        return ZipDirectoryTexts::tr("two headers disagree about '%1'").arg(ZipNames::shown(entry.name));
    entry.data = entry.header + length;
    entry.padding = qMax(0, length - plainHeaderSize(entry));
    if (localHeader(entry) != local)
        entry.padding = -1;
    return {};
}

// Entries that share bytes are how a small archive becomes a huge tree.
QString objectionToRanges(const QVector<ZipEntry>& entries, qint64 end)
{
    QVector<const ZipEntry*> byPlace;
    byPlace.reserve(entries.size());
    for (const ZipEntry& entry : entries)
        byPlace.append(&entry);
    std::sort(byPlace.begin(), byPlace.end(),
              [](const ZipEntry* one, const ZipEntry* other) { return one->header < other->header; });
    qint64 reached = 0;
    for (const ZipEntry* const entry : qAsConst(byPlace)) {
        if (entry->header < reached)
            return ZipDirectoryTexts::tr("'%1' shares bytes with another entry")
                .arg(ZipNames::shown(entry->name));
        if (entry->packed > end - entry->data)
            return ZipDirectoryTexts::tr("the archive is cut off in '%1'").arg(ZipNames::shown(entry->name));
        reached = entry->data + entry->packed;
    }
    return {};
}

QString objectionToSize(const QVector<ZipEntry>& entries, qint64 archive)
{
    qint64 content = 0;
    for (const ZipEntry& entry : entries) {
        if (entry.size > largestContent - content)
            return ZipDirectoryTexts::tr("the archive unpacks to more than %1 bytes").arg(largestContent);
        content += entry.size;
    }
    return isBomb(content, archive)
        ? ZipDirectoryTexts::tr("the archive unpacks to more than %1 times its size").arg(largestRatio)
        : QString();
}

QString readEntries(const ArchiveFile& archive, const End& end, QVector<ZipEntry>& entries)
{
    if (end.count > mostEntries || end.size > static_cast<quint64>(largestDirectory))
        return ZipDirectoryTexts::tr(
                   "the archive has more than %1 entries, or a directory of more than %2 bytes")
            .arg(mostEntries)
            .arg(largestDirectory);
    const qint64 start = end.place - static_cast<qint64>(end.size);
    if (start < 0 || end.offset > static_cast<quint64>(start))
        return incomplete();
    const QByteArray directory = archive.read(start, static_cast<qint64>(end.size));
    if (!archive.error().isEmpty())
        return archive.error();
    int at = 0;
    for (quint64 i = 0; i < end.count; ++i) {
        ZipEntry entry;
        if (!readEntry(directory, at, start - static_cast<qint64>(end.offset), entry))
            return incomplete();
        entries.append(entry);
    }
    return at == directory.size() && directory.size() == static_cast<qint64>(end.size) ? QString()
                                                                                       : incomplete();
}

bool bearsSignature(const ArchiveFile& archive, qint64 directory, const QVector<ZipEntry>& entries)
{
    const QByteArray block("APK Sig Block 42");
    const auto isSigning = [](const ZipEntry& entry) {
        return ZipNames::isSignature(entry.name) && !entry.name.endsWith("/MANIFEST.MF");
    };
    return std::any_of(entries.cbegin(), entries.cend(), isSigning)
        || (directory >= block.size() && archive.read(directory - block.size(), block.size()) == block);
}

} // namespace

QString ZipDirectory::read(const ArchiveFile& archive)
{
    End end;
    QString objection = readEnd(archive, end);
    if (objection.isEmpty())
        objection = readEntries(archive, end, entries);
    if (!objection.isEmpty())
        return objection; // what the end says of its directory may be any number
    objection = objectionToSize(entries, archive.size());
    const qint64 start = end.place - static_cast<qint64>(end.size);
    for (ZipEntry& entry : entries) {
        if (objection.isEmpty())
            objection = objectionToKind(entry);
        if (objection.isEmpty())
            objection = entry.header <= start ? locate(archive, entry) : incomplete();
    }
    if (objection.isEmpty())
        objection = objectionToRanges(entries, start);
    isSigned = objection.isEmpty() && bearsSignature(archive, start, entries);
    return objection;
}
