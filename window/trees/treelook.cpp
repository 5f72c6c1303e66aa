// SPDX-License-Identifier: MIT
#include "window/trees/treelook.h"

#include "trees/treepaths.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace {

bool exists(const QByteArray& path)
{
    struct stat status { };
    return lstat(path.constData(), &status) == 0;
}

// The names that stay, as they stand in the folder.
void addStaying(const TreeWish& wish, const QString& source, TreeLook& look)
{
    const QStringList names =
        QDir(source).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        if (wish.left.contains(name, Qt::CaseInsensitive))
            look.entries.append({name, TreeLook::Stays});
    }
}

} // namespace

bool TreeWish::operator==(const TreeWish& other) const
{
    return operate == other.operate && source == other.source && target == other.target && left == other.left;
}

TreeLook TreeLook::at(const TreeWish& wish)
{
    TreeLook look;
    look.wish = wish;
    const TreePaths paths(wish.source, wish.target);
    look.objection = paths.objection(wish.operate);
    if (!look.objection.isEmpty())
        return look;
    TreeScope scope{QFile::encodeName(paths.realSource)};
    scope.emptied = wish.operate != OPERATE_COPY;
    if (paths.isNested())
        scope.apart = identityOf(paths.realTarget);
    if (wish.operate == OPERATE_CUT_OUTPUT) {
        scope.left = wish.left;
        addStaying(wish, paths.realSource, look);
    }
    const QByteArray target = QFile::encodeName(paths.realTarget) + '/';
    scope.walk([&](const WalkedEntry& entry) {
        if (entry.isFolder())
            return TreeScope::GoOn;
        const bool replaces = exists(target + entry.path);
        look.entries.append({QFile::decodeName(entry.path), replaces ? Replaces : Goes});
        look.replaced += replaces ? 1 : 0;
        look.goes.add(entry);
        return TreeScope::GoOn;
    });
    return look;
}
