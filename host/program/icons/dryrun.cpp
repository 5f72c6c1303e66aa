// SPDX-License-Identifier: MIT
#include "icons/dryrun.h"

#include "console/console.h"
#include "icons/iconjob.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

namespace {

struct DryRun {
    Q_DECLARE_TR_FUNCTIONS(DryRun)
};

constexpr QDir::Filters everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

bool isFilledFolder(const QFileInfo& entry)
{
    return entry.isDir() && !entry.isSymLink() && !QDir(entry.filePath()).isEmpty(everything);
}

// What is in the output folder, but for the files to come and the sign of earlier runs.
QStringList deletedBy(const IconJob& job, const QStringList& written)
{
    if (job.keep)
        return {};
    QSet<QString> others(written.cbegin(), written.cend());
    others.insert(job.marker());
    QStringList deleted;
    QDirIterator entries(job.out, everything, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        if (!others.contains(path) && !isFilledFolder(entries.fileInfo()))
            deleted.append(path);
    }
    deleted.sort();
    return deleted;
}

} // namespace

void reportDryRun(const IconJob& job, Console& console)
{
    QStringList written = job.files();
    const QStringList deleted = deletedBy(job, written);
    if (!job.sheet.isEmpty() && job.sheet != QLatin1String("-"))
        written.append(job.sheet);
    for (const QString& path : deleted)
        console.print(DryRun::tr("would remove '%1'").arg(path));
    QJsonArray entries;
    for (const QString& path : qAsConst(written)) {
        const bool replaces = QFileInfo::exists(path);
        const QString line =
            replaces ? DryRun::tr("would write '%1', which is replaced") : DryRun::tr("would write '%1'");
        console.print(line.arg(path));
        entries.append(QJsonObject{{QStringLiteral("target"), path}, {QStringLiteral("replaces"), replaces}});
    }
    console.say(DryRun::tr("would write files: %1, and remove: %2").arg(written.size()).arg(deleted.size()));
    console.set(QStringLiteral("dryRun"), true);
    console.set(QStringLiteral("entries"), entries);
    console.set(QStringLiteral("deleted"), QJsonArray::fromStringList(deleted));
    console.set(QStringLiteral("out"), job.out);
}
