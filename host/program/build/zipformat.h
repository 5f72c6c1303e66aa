// SPDX-License-Identifier: MIT
#ifndef ZIPFORMAT_H
#define ZIPFORMAT_H

#include "build/zipentry.h"

#include <QtEndian>

/** The records of the format as bytes, and what packing and unpacking both keep to. */
namespace ZipFormat {

constexpr const char* localMark = "PK\3\4";
constexpr const char* centralMark = "PK\1\2";
constexpr const char* endMark = "PK\5\6";
constexpr const char* longEndMark = "PK\6\6";
constexpr const char* locatorMark = "PK\6\7";
constexpr int localSize = 30; ///< of a record without what follows it
constexpr int centralSize = 46;
constexpr int endSize = 22;
constexpr int longEndSize = 56;
constexpr int locatorSize = 20;

constexpr quint16 encrypted = 0x1 | 0x40 | 0x2000; ///< flags
constexpr quint16 sizesBehind = 0x8;
constexpr quint16 utf8 = 0x800;

constexpr quint32 limit32 = 0xffffffff;
constexpr quint16 limit16 = 0xffff;
constexpr qint64 longFrom =
    0xf0000000; ///< sizes from here on go in the long form: deflating may add a little
constexpr quint16 longField = 1;

constexpr int mostEntries = 200 * 1000; // the limits of the scripts
constexpr qint64 largestDirectory = 128 << 20;
constexpr qint64 largestContent = Q_INT64_C(16) << 30;
constexpr qint64 largestRatio = 200;
constexpr qint64 ratioFree = 64 << 20; ///< contents up to here may have any ratio

template <typename Number> Number number(const QByteArray& bytes, int at)
{
    return qFromLittleEndian<Number>(bytes.constData() + at);
}

/** What stored entries of that name begin at a multiple of. */
int alignmentOf(const QByteArray& name);

/** The length of the extra field that brings data, which would be at a place, to where it belongs. */
int paddingFor(const ZipEntry& entry, qint64 place);

/** How long the local header is before padding. */
int plainHeaderSize(const ZipEntry& entry);

QByteArray localHeader(const ZipEntry& entry);
QByteArray centralHeader(const ZipEntry& entry);

/** All that follows the directory, which has count entries and lies from start to end. */
QByteArray endRecords(qint64 count, qint64 start, qint64 end);

/** Whether so much content in so few bytes can only be meant to fill a disk. */
bool isBomb(qint64 content, qint64 archive);

} // namespace ZipFormat

#endif
