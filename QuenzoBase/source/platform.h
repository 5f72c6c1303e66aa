// SPDX-License-Identifier: MIT
#ifndef PLATFORM_H
#define PLATFORM_H

#include <QString>

QT_BEGIN_NAMESPACE
class QFile;
QT_END_NAMESPACE

/** The running executable: absolute path, links resolved, forward slashes. Needs no application object. */
QString executablePath();

/** Whether an open file is what its path leads to: nobody removed it, moved it away or put another there. */
bool isAtItsPath(const QFile& file);

#endif
