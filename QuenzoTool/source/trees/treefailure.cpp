// SPDX-License-Identifier: MIT
#include "trees/treefailure.h"

#include "messages.h"

#include <cerrno>

void logFailure(const QByteArray& path, const QString& what, const QString& reason)
{
    qCWarning(treesLog).noquote()
        << QStringLiteral("'%1' could not be %2: %3").arg(TreeFolder::text(path), what, reason);
}

void logSystemFailure(const QByteArray& path, const QString& what)
{
    logFailure(path, what, errorText(errno));
}

void logFolderThatStays(const QByteArray& path)
{
    const bool isLink = errno == ENOTDIR;
    logFailure(path, QStringLiteral("removed"),
               isLink ? QStringLiteral("it is a link to a folder") : errorText(errno));
}

void logUnreadable(const TreeFolder& folder)
{
    logFailure(folder.path(), QStringLiteral("read"), errorText(folder.error()));
}

void logFailedCopy(const QByteArray& source, const QByteArray& target, const QString& reason)
{
    logFailure(source, QStringLiteral("copied to '%1'").arg(TreeFolder::text(target)), reason);
}
