// SPDX-License-Identifier: MIT
#include "logfolder.h"

#include <QDir>

// By the rules for what programs keep of their state: a root that belongs to the system is nobody's to write
// to.
QString logFolder(const QString& /*runPath*/)
{
    const QString state = qEnvironmentVariable("XDG_STATE_HOME");
    const QString base =
        QDir::isAbsolutePath(state) ? state : QDir::homePath() + QStringLiteral("/.local/state");
    return QDir::cleanPath(base + QStringLiteral("/quenzo"));
}
