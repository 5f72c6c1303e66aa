// SPDX-License-Identifier: MIT
#include "build/buildreport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace {

struct Collected {
    Q_DECLARE_TR_FUNCTIONS(Collected)
};

// The output folder by the place of a slice's report; nodes may have mounted it elsewhere.
QString outputOf(const QString& reportFile)
{
    static const QRegularExpression place(QStringLiteral("^(/.*)/slices/[0-9]+-of-[0-9]+/[^/]+\\z"),
                                          QRegularExpression::DotMatchesEverythingOption);
    return place.match(QFileInfo(reportFile).absoluteFilePath()).captured(1);
}

// Empty, or what is wrong.
QString readSlice(const QString& path, BuildOutcome& slice)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Collected::tr("the report %1 cannot be read: %2").arg(path, file.errorString());
    QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    const QString output = outputOf(path);
    if (!output.isEmpty() && object.contains(QLatin1String("output")))
        object.insert(QStringLiteral("output"), output);
    if (!BuildReport::fromJson(object, slice))
        return Collected::tr("%1 is no report of this version").arg(path);
    return {};
}

// A run without an end was written before it came to one.
QDateTime lastOf(const BuildOutcome& slice)
{
    return slice.end.isValid() ? slice.end : slice.start;
}

// The slices of the latest division, each from its latest report.
QMap<int, BuildOutcome> latestSlices(const QVector<BuildOutcome>& read)
{
    const auto latest =
        std::max_element(read.cbegin(), read.cend(), [](const BuildOutcome& one, const BuildOutcome& other) {
            return lastOf(one) < lastOf(other);
        });
    QMap<int, BuildOutcome> slices;
    for (const BuildOutcome& slice : read) {
        if (slice.slices != latest->slices)
            continue;
        const auto known = slices.constFind(slice.slice);
        if (known == slices.cend() || lastOf(*known) < lastOf(slice))
            slices.insert(slice.slice, slice);
    }
    return slices;
}

BuildOutcome joined(const QMap<int, BuildOutcome>& slices)
{
    BuildOutcome build = slices.first();
    build.slice = 0;
    build.slices = 1;
    build.sheets.clear();
    build.channels.clear();
    for (const BuildOutcome& slice : slices) {
        if (slice.start.isValid() && (!build.start.isValid() || slice.start < build.start))
            build.start = slice.start;
        if (slice.end.isValid() && (!build.end.isValid() || slice.end > build.end))
            build.end = slice.end;
        build.interrupted = build.interrupted || slice.interrupted;
        build.sheets += slice.sheets;
        build.channels += slice.channels;
    }
    build.sheets.removeDuplicates();
    std::stable_sort(
        build.channels.begin(), build.channels.end(),
        [](const ChannelOutcome& one, const ChannelOutcome& other) { return one.index < other.index; });
    return build;
}

QString missingSlices(const QMap<int, BuildOutcome>& slices)
{
    const int count = slices.first().slices;
    const int missing = count - slices.size();
    constexpr int mostNamed = 20;
    QStringList names;
    for (int i = 0; names.size() < qMin(missing, mostNamed); ++i) {
        if (!slices.contains(i))
            names.append(QStringLiteral("%1/%2").arg(i + 1).arg(count));
    }
    if (missing == 0)
        return {};
    const QString named = names.join(QStringLiteral(", "));
    return missing <= mostNamed
        ? Collected::tr("missing slices: %1").arg(named)
        : Collected::tr("missing slices: %1 and %2 more").arg(named).arg(missing - mostNamed);
}

// Slices that were cut from different jobs; each channel is where its index says, and nowhere else.
QString contradiction(const QMap<int, BuildOutcome>& slices)
{
    QSet<QString> seen;
    for (const BuildOutcome& slice : slices) {
        if (slice.game != slices.first().game)
            return Collected::tr("the slices are of different games: %1 and %2")
                .arg(slices.first().game, slice.game);
        for (const ChannelOutcome& channel : slice.channels) {
            if (seen.contains(channel.folder) || channel.index % slice.slices != slice.slice)
                return Collected::tr("the job was changed between the slices: channel '%1' of slice %2/%3 is "
                                     "in another one as well, or belongs there; build them again")
                    .arg(channel.folder)
                    .arg(slice.slice + 1)
                    .arg(slice.slices);
            seen.insert(channel.folder);
        }
    }
    return {};
}

} // namespace

bool BuildReport::collect(const QStringList& reportFiles, BuildOutcome& build, QString& fault)
{
    build = {};
    QStringList faults;
    QVector<BuildOutcome> read;
    for (const QString& file : reportFiles) {
        BuildOutcome slice;
        const QString refusal = readSlice(file, slice);
        if (refusal.isEmpty())
            read.append(slice);
        else
            faults.append(refusal);
    }
    if (read.isEmpty()) {
        faults.append(Collected::tr("there is no report of a slice"));
    } else {
        const QMap<int, BuildOutcome> slices = latestSlices(read);
        build = joined(slices);
        faults += {missingSlices(slices), contradiction(slices)};
        faults.removeAll({});
    }
    fault = faults.join(QStringLiteral("; "));
    return faults.isEmpty();
}
