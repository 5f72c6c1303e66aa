// SPDX-License-Identifier: MIT
#include "executablepath.h"

#include <QFile>

QString executablePath()
{
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}
