// SPDX-License-Identifier: MIT
#ifndef LOGFOLDER_H
#define LOGFOLDER_H

#include <QString>

/** The folder of the log, without a trailing separator; it need not exist. */
QString logFolder(const QString& runPath);

#endif
