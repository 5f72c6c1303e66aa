// SPDX-License-Identifier: MIT
#ifndef PLATFORM_H
#define PLATFORM_H

#include <QString>

QT_BEGIN_NAMESPACE
class QFile;
QT_END_NAMESPACE

/** The running executable: absolute path, links resolved, forward slashes. Needs no application object. */
QString executablePath();

/** Whether an open file is still to be found under some name, so that what is written to it is not lost. */
bool isLinked(const QFile& file);

#endif
