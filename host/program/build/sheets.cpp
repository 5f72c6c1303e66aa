// SPDX-License-Identifier: MIT
#include "build/sheets.h"

#include "build/buildoutcome.h"
#include "build/job.h"
#include "build/smallicon.h"
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
                entries.append({channel.name, smallIconOf(icon)});
        }
    }
    return entries;
}

QString pathOf(const QString& folder, int platform, int number)
{
    const QString further = number > 1 ? QStringLiteral("-%1").arg(number) : QString();
    return folder + QStringLiteral("/sheet-%1%2.png").arg(nameOf(platform), further);
}

// Why there is no sheet of that name then; an empty text for none.
QString write(const QString& path, const QString& title, const QVector<SheetEntry>& entries)
{
    QFile::remove(path);
    QSaveFile file(path);
    const bool done = file.open(QIODevice::WriteOnly) && drawContactSheet(title, entries).save(&file, "PNG")
        && file.flush() && file.commit();
    return done ? QString() : file.errorString();
}

} // namespace

void drawSheets(const Job& job, BuildOutcome& build, const QString& folder, Console& console)
{
    constexpr int mostOfOne = 200; // a sheet is drawn in memory
    build.sheets.clear();
    for (const int platform : job.platforms) {
        const QVector<SheetEntry> entries = entriesOf(build, platform);
        const QString title = Sheets::tr("%1, channels: %2").arg(job.game).arg(entries.size());
        int number = 1;
        for (int first = 0; first < entries.size(); first += mostOfOne, ++number) {
            const QString path = pathOf(folder, platform, number);
            const QString fault = write(path, title, entries.mid(first, mostOfOne));
            if (fault.isEmpty())
                build.sheets.append(path);
            else
                console.warn(Sheets::tr("the sheet '%1' cannot be written: %2").arg(path, fault));
        }
        while (QFile::remove(pathOf(folder, platform, number))) // of a run of more channels
            ++number;
    }
}
