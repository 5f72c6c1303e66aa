// SPDX-License-Identifier: MIT
#include "platform.h"

#include <QFile>

#include <sys/stat.h>

QString executablePath()
{
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

bool isAtItsPath(const QFile& file)
{
    struct stat opened { };
    struct stat found { };
    return fstat(file.handle(), &opened) == 0
        && stat(QFile::encodeName(file.fileName()).constData(), &found) == 0 && opened.st_dev == found.st_dev
        && opened.st_ino == found.st_ino;
}
