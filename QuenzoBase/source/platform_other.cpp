// SPDX-License-Identifier: MIT
#include "platform.h"

#include <QCoreApplication>
#include <QFile>

QString executablePath()
{
    return QCoreApplication::applicationFilePath();
}

bool isAtItsPath(const QFile& file)
{
    return file.exists();
}
