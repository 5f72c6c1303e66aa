// SPDX-License-Identifier: MIT
#include "logfolder.h"

#include <QDir>

QString logFolder(const QString& runPath)
{
    return QDir::cleanPath(runPath + QStringLiteral("/../log"));
}
