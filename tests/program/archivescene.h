// SPDX-License-Identifier: MIT
#ifndef ARCHIVESCENE_H
#define ARCHIVESCENE_H

#include <QByteArray>
#include <QStringList>
#include <QVector>

#include <functional>

/** What one of an entry's two headers says. */
struct SceneHeader {
    QByteArray name;
    quint16 flags = 0;
    quint16 method = 0;
    quint16 time = 0x6b6d; // 13:27:26
    quint16 date = 0x5a6b; // 2025-03-11
    quint32 crc = 0;
    quint32 packed = 0;
    quint32 size = 0;
    QByteArray extra;
    quint16 disk = 0; ///< this and what follows in the directory alone
    quint32 attributes = 0100640U << 16;
    quint32 offset = 0;
};

/** One entry, told truly unless a lie is added. */
struct SceneEntry {
    QByteArray name;
    QByteArray content;
    bool isDeflated = false;
    bool hasSizesBehind = false;
    std::function<void(SceneHeader& local, SceneHeader& central)> lie;
    int level = -1; ///< zlib's, for deflating
};

/** The last record of an archive. */
struct SceneEnd {
    quint16 disk = 0;
    quint16 countHere = 0;
    quint16 count = 0;
    quint32 size = 0;
    quint32 offset = 0;
    quint16 commentLength = 0;
};

/** An archive made byte by byte, for readers that must not trust it. */
struct SceneArchive {
    QVector<SceneEntry> entries;
    QByteArray before; ///< bytes before the archive, which its places do not count
    QByteArray beforeDirectory;
    QByteArray comment;
    bool isLong = false; ///< with the records for large archives
    std::function<void(SceneEnd& end)> lie;

    QByteArray bytes() const;
};

/** What a program that shares no code with us finds in an archive: a line an entry, or one with its
 * complaint. */
QStringList judged(const QString& archive);

/** What a program prints, standard error included, with its exit code in front. */
QByteArray printedBy(const QString& program, const QStringList& arguments);

#endif
