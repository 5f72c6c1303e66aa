// SPDX-License-Identifier: MIT
#include "trees/treeplan.h"

#include "console/console.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>

namespace {

struct Plan {
    Q_DECLARE_TR_FUNCTIONS(TreePlan)
};

QString lineOf(const TreeScope& scope, bool replaces)
{
    if (scope.emptied)
        return replaces ? Plan::tr("would move '%1' to '%2', which is replaced")
                        : Plan::tr("would move '%1' to '%2'");
    return replaces ? Plan::tr("would copy '%1' to '%2', which is replaced")
                    : Plan::tr("would copy '%1' to '%2'");
}

} // namespace

TreeCount reportPlan(const TreeScope& scope, const QByteArray& target, Console& console)
{
    TreeCount count;
    QJsonArray entries;
    scope.walk([&](const WalkedEntry& entry) {
        if (entry.isFolder())
            return TreeScope::GoOn;
        count.add(entry);
        const QString from = QFile::decodeName(scope.top + '/' + entry.path);
        QJsonObject values{{QStringLiteral("source"), from}};
        if (target.isEmpty()) {
            console.print(Plan::tr("would remove '%1'").arg(Console::shown(from)));
        } else {
            const QByteArray path = target + '/' + entry.path;
            const QString to = QFile::decodeName(path);
            struct stat status { };
            const bool replaces = stat(path.constData(), &status) == 0;
            console.print(lineOf(scope, replaces).arg(Console::shown(from), Console::shown(to)));
            values.insert(QStringLiteral("target"), to);
            values.insert(QStringLiteral("replaces"), replaces);
        }
        if (console.json())
            entries.append(values);
        return TreeScope::GoOn;
    });
    console.set(QStringLiteral("dryRun"), true);
    console.set(QStringLiteral("entries"), entries);
    return count;
}
