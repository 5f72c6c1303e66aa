// SPDX-License-Identifier: MIT
#include "trees/treefailure.h"

#include "messages.h"

#include <cerrno>

namespace {

QString line(const QByteArray& path, const QString& what, const QString& reason)
{
    return QStringLiteral("'%1' could not be %2: %3").arg(TreeFolder::text(path), what, reason);
}

} // namespace

void logFailure(const QByteArray& path, const QString& what, const QString& reason)
{
    qCWarning(treesLog).noquote() << line(path, what, reason);
}

void logLeftBehind(const QByteArray& path, const QString& what, const QString& reason)
{
    qCInfo(treesLog).noquote() << line(path, what, reason);
}

void logStep(const char* step, const QByteArray& path)
{
    qCDebug(treesLog).noquote().nospace() << step << " '" << TreeFolder::text(path) << '\'';
}

void logSystemFailure(const QByteArray& path, const QString& what)
{
    logFailure(path, what, errorText(errno));
}

void logFolderThatStays(const QByteArray& path)
{
    logFailure(path, QStringLiteral("removed"), reasonOfStaying());
}

QString reasonOfStaying()
{
    switch (errno) {
    case ENOTDIR:
        return QStringLiteral("it is a link to a folder");
    case ESTALE:
        return QStringLiteral("it is no longer the folder that was copied");
    default:
        return errorText(errno);
    }
}

void logUnreadable(const TreeFolder& folder)
{
    logFailure(folder.path(), QStringLiteral("read"), errorText(folder.error()));
}

void logFailedCopy(const QByteArray& source, const QByteArray& target, const QString& reason)
{
    logFailure(source, QStringLiteral("copied to '%1'").arg(TreeFolder::text(target)), reason);
}
