// SPDX-License-Identifier: MIT
#ifndef PLATFORM_H
#define PLATFORM_H

#include <QString>

QT_BEGIN_NAMESPACE
class QFile;
QT_END_NAMESPACE

/** The running executable: absolute path, links resolved, forward slashes. Needs no application object. */
QString executablePath();

/** What tells one file from another, under whatever name; null for no file. */
struct FileIdentity {
    quint64 device = 0;
    quint64 number = 0;
};

inline bool operator==(const FileIdentity& left, const FileIdentity& right)
{
    return left.device == right.device && left.number == right.number;
}

FileIdentity identityOf(const QFile& openFile);

/** @param path as QFile::encodeName gives it */
FileIdentity identityAt(const QByteArray& path);

#endif
