// SPDX-License-Identifier: MIT
#include "archivescene.h"

#include <QProcess>
#include <QtEndian>

#include <zlib.h>

namespace {

template <typename Number> QByteArray bytesOf(Number value)
{
    const Number little = qToLittleEndian(value);
    return QByteArray(reinterpret_cast<const char*>(&little), sizeof(little));
}

template <typename... Numbers> QByteArray record(const char* mark, Numbers... numbers)
{
    QByteArray result(mark);
    (result.append(bytesOf(numbers)), ...);
    return result;
}

QByteArray deflated(const SceneEntry& entry)
{
    constexpr int inFront =
        6; // of the stream, where Qt puts the length and zlib its head; its checksum is behind
    return entry.content.isEmpty() ? QByteArray("\3\0", 2)
                                   : qCompress(entry.content, entry.level).mid(inFront).chopped(4);
}

quint16 sizeOf(const QByteArray& bytes)
{
    return static_cast<quint16>(bytes.size());
}

QByteArray localHeader(const SceneHeader& header)
{
    return record("PK\3\4", quint16(20), header.flags, header.method, header.time, header.date, header.crc,
                  header.packed, header.size, sizeOf(header.name), sizeOf(header.extra))
        + header.name + header.extra;
}

QByteArray centralHeader(const SceneHeader& header)
{
    return record("PK\1\2", quint16(3 << 8 | 20), quint16(20), header.flags, header.method, header.time,
                  header.date, header.crc, header.packed, header.size, sizeOf(header.name),
                  sizeOf(header.extra), quint16(0), header.disk, quint16(0), header.attributes, header.offset)
        + header.name + header.extra;
}

QByteArray longEnd(quint64 count, quint64 start, quint64 size)
{
    return record("PK\6\6", quint64(44), quint16(45), quint16(45), quint32(0), quint32(0), count, count, size,
                  start)
        + record("PK\6\7", quint32(0), start + size, quint32(1));
}

} // namespace

QByteArray SceneArchive::bytes() const
{
    QByteArray all;
    QByteArray directory;
    for (const SceneEntry& entry : entries) {
        const QByteArray packed = entry.isDeflated ? deflated(entry) : entry.content;
        SceneHeader central;
        central.name = entry.name;
        central.method = entry.isDeflated ? 8 : 0;
        central.flags = entry.hasSizesBehind ? 8 : 0;
        central.crc = static_cast<quint32>(crc32(0, reinterpret_cast<const Bytef*>(entry.content.constData()),
                                                 static_cast<uInt>(entry.content.size())));
        central.packed = static_cast<quint32>(packed.size());
        central.size = static_cast<quint32>(entry.content.size());
        central.offset = static_cast<quint32>(all.size());
        SceneHeader local = central;
        if (entry.hasSizesBehind)
            local.crc = local.packed = local.size = 0;
        if (entry.lie)
            entry.lie(local, central);
        all += localHeader(local) + packed;
        if (entry.hasSizesBehind)
            all += record("PK\7\10", central.crc, central.packed, central.size);
        directory += centralHeader(central);
    }
    all += beforeDirectory;
    SceneEnd end;
    end.count = end.countHere = static_cast<quint16>(entries.size());
    end.size = static_cast<quint32>(directory.size());
    end.offset = static_cast<quint32>(all.size());
    end.commentLength = sizeOf(comment);
    if (lie)
        lie(end);
    if (isLong)
        directory += longEnd(static_cast<quint64>(entries.size()), static_cast<quint64>(all.size()),
                             static_cast<quint64>(directory.size()));
    return before + all + directory
        + record("PK\5\6", end.disk, quint16(0), end.countHere, end.count, end.size, end.offset,
                 end.commentLength)
        + comment;
}

QByteArray printedBy(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    constexpr int longest = 120000;
    const bool ended = process.waitForFinished(longest) && process.exitStatus() == QProcess::NormalExit;
    return (ended ? QByteArray::number(process.exitCode()) : QByteArray("did not end")) + '\n'
        + process.readAll();
}

QStringList judged(const QString& archive)
{
    const QByteArray printed = printedBy(
        QStringLiteral(PYTHON3), {QStringLiteral(SOURCE_DIR "/tests/program/judgearchive.py"), archive});
    QStringList lines = QString::fromUtf8(printed).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (lines.value(0) == QLatin1String("0"))
        lines.removeFirst();
    return lines;
}
