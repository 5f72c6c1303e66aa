// SPDX-License-Identifier: MIT
#include "executablepath.h"

#include <QCoreApplication>

QString executablePath()
{
    return QCoreApplication::applicationFilePath();
}
