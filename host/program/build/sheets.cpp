// SPDX-License-Identifier: MIT
#include "build/sheets.h"

#include "build/buildoutcome.h"
#include "build/job.h"
#include "console/console.h"
#include "icons/contactsheet.h"
#include "icons/iconset.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>

namespace {

struct Sheets {
    Q_DECLARE_TR_FUNCTIONS(Sheets)
};

QString nameOf(int platform)
{
    return platform == IconSet::Android ? QStringLiteral("android") : QStringLiteral("ios");
}

QVector<SheetEntry> entriesOf(const BuildOutcome& build, int platform)
{
    QVector<SheetEntry> entries;
    for (const ChannelOutcome& channel : build.channels) {
        for (const QString& icon : channel.icons) {
            if (icon.contains(QStringLiteral("/icons/") + nameOf(platform)))
                entries.append({channel.name, icon});
        }
    }
    return entries;
}

} // namespace

void drawSheets(const Job& job, BuildOutcome& build, const QString& folder, Console& console)
{
    build.sheets.clear();
    for (const int platform : job.platforms) {
        const QString path = folder + QStringLiteral("/sheet-%1.png").arg(nameOf(platform));
        const QVector<SheetEntry> entries = entriesOf(build, platform);
        QFile::remove(path);
        if (entries.isEmpty())
            continue;
        QSaveFile file(path);
        const QString title = Sheets::tr("%1, channels: %2").arg(job.game).arg(entries.size());
        if (file.open(QIODevice::WriteOnly) && drawContactSheet(title, entries).save(&file, "PNG")
            && file.flush() && file.commit())
            build.sheets.append(path);
        else
            console.warn(Sheets::tr("the sheet '%1' cannot be written: %2").arg(path, file.errorString()));
    }
}
