// SPDX-License-Identifier: MIT
#include "window/start/recentjobs.h"

#include <QSettings>

namespace {

const QString key = QStringLiteral("jobs/recent");
constexpr int most = 10;

} // namespace

QStringList RecentJobs::all()
{
    return QSettings().value(key).toStringList();
}

void RecentJobs::add(const QString& path)
{
    QStringList paths = all();
    paths.removeAll(path);
    paths.prepend(path);
    QSettings().setValue(key, QStringList(paths.mid(0, most)));
}

void RecentJobs::remove(const QString& path)
{
    QStringList paths = all();
    paths.removeAll(path);
    QSettings().setValue(key, paths);
}
