// SPDX-License-Identifier: MIT
#include "build/jobplan.h"

#include "build/jobtools.h"
#include "console/console.h"
#include "console/figures.h"
#include "icons/iconset.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>

namespace {

struct Plan {
    Q_DECLARE_TR_FUNCTIONS(JobPlan)
};

QString packageOf(const Job& job, const JobChannel& channel)
{
    return QStringLiteral("%1/%2/%2.apk").arg(job.output, channel.folder);
}

QStringList platformNames(const Job& job)
{
    QStringList names;
    for (const int platform : job.platforms)
        names.append(platform == IconSet::Android ? QStringLiteral("android") : QStringLiteral("ios"));
    return names;
}

QString shown(const std::optional<int>& pixels)
{
    return pixels ? QString::number(*pixels) : Plan::tr("flush");
}

QString markText(const JobChannel& channel)
{
    if (channel.mark.isEmpty())
        return Plan::tr("no mark");
    const QString text = channel.mark + QStringLiteral(", ") + IconSet::cornerNames().at(channel.corner);
    return channel.x || channel.y ? Plan::tr("%1 at %2, %3").arg(text, shown(channel.x), shown(channel.y))
                                  : text;
}

QString packageText(const Job& job, const JobChannel& channel)
{
    QStringList words{packageOf(job, channel).mid(job.output.size() + 1)};
    if (!channel.package.isEmpty())
        words.append(channel.package);
    if (channel.encrypt)
        words.append(Plan::tr("encrypted"));
    words.append(job.signing ? Plan::tr("signed") : Plan::tr("unsigned"));
    return words.join(QStringLiteral(", "));
}

QStringList headOf(const Job& job)
{
    const QString signing =
        job.signing ? Plan::tr("with %1").arg(job.signing->keystore) : Plan::tr("no key is named");
    const QString icons = job.icon.isEmpty()
        ? Plan::tr("as they are")
        : QStringLiteral("%1: %2").arg(job.icon, platformNames(job).join(QStringLiteral(", ")));
    QStringList lines{Plan::tr("%1, channels: %2").arg(job.game).arg(job.channels.size())};
    return lines
        + tabulated({{Plan::tr("base"), job.base},
                     {Plan::tr("icons"), icons},
                     {Plan::tr("signing"), signing},
                     {Plan::tr("work"), job.work},
                     {Plan::tr("output"), job.output}});
}

QJsonValue pixelsJson(const std::optional<int>& pixels)
{
    return pixels ? QJsonValue(*pixels) : QJsonValue();
}

QJsonObject channelJson(const Job& job, const JobChannel& channel)
{
    return {{QStringLiteral("folder"), channel.folder},
            {QStringLiteral("name"), channel.name},
            {QStringLiteral("number"), channel.number},
            {QStringLiteral("mark"), channel.mark},
            {QStringLiteral("corner"), IconSet::cornerNames().at(channel.corner)},
            {QStringLiteral("x"), pixelsJson(channel.x)},
            {QStringLiteral("y"), pixelsJson(channel.y)},
            {QStringLiteral("sdks"), QJsonArray::fromStringList(channel.sdks)},
            {QStringLiteral("files"), channel.files},
            {QStringLiteral("settings"), channel.settings},
            {QStringLiteral("encrypt"), channel.encrypt},
            {QStringLiteral("packageName"), channel.package},
            {QStringLiteral("package"), packageOf(job, channel)}};
}

} // namespace

QStringList JobPlan::toText(const Job& job)
{
    QVector<QStringList> rows{
        {Plan::tr("channel"), Plan::tr("name"), Plan::tr("mark"), Plan::tr("SDKs"), Plan::tr("package")}};
    for (const JobChannel& channel : job.channels) {
        const QString sdks =
            channel.sdks.isEmpty() ? Plan::tr("none") : channel.sdks.join(QStringLiteral(", "));
        rows.append({channel.folder, channel.name, markText(channel), sdks, packageText(job, channel)});
    }
    return headOf(job) + QStringList{QString()} + tabulated(rows);
}

QJsonObject JobPlan::toJson(const Job& job)
{
    QJsonArray channels;
    for (const JobChannel& channel : job.channels)
        channels.append(channelJson(job, channel));
    return {{QStringLiteral("job"), job.path},
            {QStringLiteral("game"), job.game},
            {QStringLiteral("base"), job.base},
            {QStringLiteral("icon"), job.icon},
            {QStringLiteral("platforms"), QJsonArray::fromStringList(platformNames(job))},
            {QStringLiteral("signed"), job.signing.has_value()},
            {QStringLiteral("work"), job.work},
            {QStringLiteral("output"), job.output},
            {QStringLiteral("channels"), channels}};
}

void JobPlan::report(const QString& path, const QVector<JobFault>& faults, Console& console)
{
    QJsonArray list;
    for (const JobFault& fault : faults) {
        console.error({Failure::BadInput,
                       fault.place.isEmpty()
                           ? QStringLiteral("%1 %2").arg(path, fault.text)
                           : QStringLiteral("%1: %2: %3").arg(path, fault.place, fault.text)});
        list.append(
            QJsonObject{{QStringLiteral("place"), fault.place}, {QStringLiteral("text"), fault.text}});
    }
    if (!faults.isEmpty())
        console.set(QStringLiteral("faults"), list);
}

ExitCode checkJob(const Job& job, Console& console)
{
    console.printText(JobPlan::toText(job).join(QLatin1Char('\n')));
    console.set(QStringLiteral("plan"), JobPlan::toJson(job));
    const std::optional<Failure> missing = JobTools(job).missing(job.channels);
    if (!missing)
        return ExitDone;
    console.error(*missing);
    return ExitFailed;
}
