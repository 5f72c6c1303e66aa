// SPDX-License-Identifier: MIT
#include "build/zipformat.h"

namespace {

constexpr quint16 plainVersion = 20;
constexpr quint16 longVersion = 45;
constexpr quint16 paddingField = 0xd935; // that Android's own tools align with
constexpr int paddingHead = 6; // its number, length and alignment
constexpr int alignment = 4;
constexpr int libraryAlignment = 16384; // serves devices with pages of 4 KiB and of 16 KiB

/** Bytes that numbers are put behind, in the order of the format. */
class Bytes {
public:
    explicit Bytes(const char* mark = "")
        : m_bytes(mark)
    {
    }

    template <typename Number> Bytes& put(Number value)
    {
        const Number little = qToLittleEndian(value);
        m_bytes.append(reinterpret_cast<const char*>(&little), sizeof(little));
        return *this;
    }

    Bytes& put(const QByteArray& bytes)
    {
        m_bytes.append(bytes);
        return *this;
    }

    const QByteArray& all() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

QByteArray longValues(const QVector<quint64>& values)
{
    if (values.isEmpty())
        return {};
    Bytes field;
    field.put(ZipFormat::longField).put(static_cast<quint16>(values.size() * 8));
    for (const quint64 value : values)
        field.put(value);
    return field.all();
}

QByteArray padding(const ZipEntry& entry)
{
    if (entry.padding <= 0)
        return {};
    Bytes field;
    field.put(paddingField).put(static_cast<quint16>(entry.padding - 4));
    field.put(static_cast<quint16>(ZipFormat::alignmentOf(entry.name)));
    return field.all().leftJustified(entry.padding, '\0');
}

quint32 short32(qint64 value, bool isLong)
{
    return isLong ? ZipFormat::limit32 : static_cast<quint32>(value);
}

quint16 marks(const ZipEntry& entry)
{
    return entry.flags & ZipFormat::utf8;
}

} // namespace

int ZipFormat::alignmentOf(const QByteArray& name)
{
    return name.endsWith(".so") ? libraryAlignment : alignment;
}

int ZipFormat::paddingFor(const ZipEntry& entry, qint64 place)
{
    if (entry.method
        != ZipEntry::Stored) // Empty entries and folders count: whoever checks looks at all stored ones.
        return 0;
    const int unit = alignmentOf(entry.name);
    int length = static_cast<int>((unit - place % unit) % unit);
    while (0 < length && length < paddingHead)
        length += unit;
    return length;
}

int ZipFormat::plainHeaderSize(const ZipEntry& entry)
{
    constexpr int longFieldSize = 20;
    return localSize + entry.name.size() + (entry.isLong ? longFieldSize : 0);
}

QByteArray ZipFormat::localHeader(const ZipEntry& entry)
{
    QByteArray extra = padding(entry);
    if (entry.isLong)
        extra.prepend(longValues({static_cast<quint64>(entry.size), static_cast<quint64>(entry.packed)}));
    Bytes header(localMark);
    header.put(entry.isLong ? longVersion : plainVersion).put(marks(entry)).put(entry.method);
    header.put(entry.time).put(entry.date).put(entry.crc);
    header.put(short32(entry.packed, entry.isLong)).put(short32(entry.size, entry.isLong));
    header.put(static_cast<quint16>(entry.name.size())).put(static_cast<quint16>(extra.size()));
    return header.put(entry.name).put(extra).all();
}

QByteArray ZipFormat::centralHeader(const ZipEntry& entry)
{
    QVector<quint64> values;
    if (entry.isLong)
        values << static_cast<quint64>(entry.size) << static_cast<quint64>(entry.packed);
    const bool isFar = entry.header >= limit32;
    if (isFar)
        values << static_cast<quint64>(entry.header);
    const QByteArray extra = longValues(values);
    const quint16 version = values.isEmpty() ? plainVersion : longVersion;
    Bytes header(centralMark);
    header.put(static_cast<quint16>(entry.system << 8 | version)).put(version).put(marks(entry));
    header.put(entry.method).put(entry.time).put(entry.date).put(entry.crc);
    header.put(short32(entry.packed, entry.isLong)).put(short32(entry.size, entry.isLong));
    header.put(static_cast<quint16>(entry.name.size())).put(static_cast<quint16>(extra.size()));
    header.put(quint16(0)).put(quint16(0)).put(quint16(0)).put(entry.attributes);
    return header.put(short32(entry.header, isFar)).put(entry.name).put(extra).all();
}

QByteArray ZipFormat::endRecords(qint64 count, qint64 start, qint64 end)
{
    const qint64 size = end - start;
    Bytes records;
    if (count >= limit16 || start >= limit32 || size >= limit32) {
        constexpr quint64 behindItself = longEndSize - 12;
        constexpr quint16 madeBy = 3 << 8 | longVersion;
        records.put(QByteArray(longEndMark)).put(behindItself).put(madeBy).put(longVersion);
        records.put(quint32(0)).put(quint32(0)).put(quint64(count)).put(quint64(count));
        records.put(quint64(size)).put(quint64(start));
        records.put(QByteArray(locatorMark)).put(quint32(0)).put(quint64(end)).put(quint32(1));
    }
    const auto shortCount = static_cast<quint16>(qMin<qint64>(count, limit16));
    records.put(QByteArray(endMark)).put(quint16(0)).put(quint16(0)).put(shortCount).put(shortCount);
    records.put(static_cast<quint32>(qMin<qint64>(size, limit32)));
    return records.put(static_cast<quint32>(qMin<qint64>(start, limit32))).put(quint16(0)).all();
}

bool ZipFormat::isBomb(qint64 content, qint64 archive)
{
    return content > ratioFree && content > archive * largestRatio;
}
