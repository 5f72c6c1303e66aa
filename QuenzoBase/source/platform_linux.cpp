// SPDX-License-Identifier: MIT
#include "platform.h"

#include <QFile>

#include <sys/stat.h>

QString executablePath()
{
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

bool isLinked(const QFile& file)
{
    struct stat status { };
    return fstat(file.handle(), &status) == 0 && status.st_nlink > 0;
}
