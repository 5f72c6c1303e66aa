// SPDX-License-Identifier: MIT
#include "build/buildpreparation.h"

#include "build/apktool.h"
#include "build/channelbuild.h"
#include "build/job.h"
#include "console/console.h"
#include "console/diagnostics.h"
#include "icons/filetally.h"
#include "icons/iconjob.h"
#include "icons/iconproduction.h"
#include "scripts/scripttask.h"

#include <QCoreApplication>
#include <QDir>
#include <QSet>

#include <algorithm>

namespace {

struct Preparation {
    Q_DECLARE_TR_FUNCTIONS(BuildPreparation)
};

ListedChannel listed(const JobChannel& channel)
{
    ListedChannel icon;
    icon.name = channel.name;
    icon.icon.strChannelDir = channel.folder;
    icon.icon.strMarkName = channel.mark.isEmpty() ? QStringLiteral("None") : channel.mark;
    icon.icon.nCorner = channel.corner;
    icon.icon.nOffsetX = channel.x.value_or(0);
    icon.icon.nOffsetY = channel.y.value_or(0);
    icon.givesX = channel.x.has_value();
    icon.givesY = channel.y.has_value();
    return icon;
}

} // namespace

BuildPreparation::BuildPreparation(const Job& job, const BuildPlaces& places, const PackageFacts& base)
    : m_job(job)
    , m_places(places)
    , m_base(base)
{
}

void BuildPreparation::importSdks(const QVector<JobChannel>& channels)
{
    QMap<QString, JobSdk> needed;
    for (const JobChannel& channel : channels) {
        for (const QString& name : channel.sdks)
            needed.insert(name, m_job.sdks.value(name));
    }
    for (const JobSdk& sdk : qAsConst(needed)) {
        QString fault = removeFolder(m_places.sdk(sdk.name));
        if (fault.isEmpty() && !QDir().mkpath(m_places.sdk(sdk.name)))
            fault = Preparation::tr("the folder '%1' cannot be made").arg(m_places.sdk(sdk.name));
        if (!fault.isEmpty()) {
            m_faults.insert(sdk.name, fault);
            continue;
        }
        Console console = muteConsole();
        QVariantMap parameters{{QStringLiteral("src"), sdk.package},
                               {QStringLiteral("dest"), m_places.sdk(sdk.name)}};
        if (sdk.id >= 0)
            parameters.insert(QStringLiteral("idSDK"), sdk.id);
        const ScriptOutcome outcome =
            runTask(console, PYTHON_TOOL_IMPORT_SDK, parameters, Preparation::tr("importing"));
        if (outcome.succeeded)
            continue;
        const QString told = outcome.failure.message.isEmpty()
            ? outcome.values.value(QStringLiteral("error_str")).toString()
            : outcome.failure.message;
        m_faults.insert(sdk.name, Preparation::tr("the SDK '%1' cannot be imported: %2").arg(sdk.name, told));
    }
}

bool BuildPreparation::decodeBase(const QVector<JobChannel>& channels, QString& fault)
{
    if (std::none_of(channels.cbegin(), channels.cend(),
                     [this](const JobChannel& channel) { return changesManifest(channel, m_places); }))
        return true;
    const ApkTool tool(m_places.decodingStore());
    if (!tool.isInstalled())
        fault = sentenceOf(ApkTool::missing());
    if (fault.isEmpty())
        fault = removeFolder(m_places.decoded());
    Console console = muteConsole();
    if (fault.isEmpty())
        fault = tool.decode(m_job.base, m_places.decoded(), console);
    return fault.isEmpty();
}

bool BuildPreparation::makeIcons(const QVector<JobChannel>& channels, QString& fault)
{
    for (const int platform : m_job.platforms) {
        if (!makeIconsFor(platform, channels, fault))
            return false;
    }
    // Once for all channels, before there are packages that would have to be waited for as well: a machine
    // that goes down may leave no package whose icons have not reached the disk.
    const QString reason = flushFolder(m_places.work);
    if (!reason.isEmpty())
        fault = Preparation::tr("the icons cannot be brought to the disk: %1").arg(reason);
    return fault.isEmpty();
}

bool BuildPreparation::makeIconsFor(int platform, const QVector<JobChannel>& channels, QString& fault)
{
    IconJob icons;
    icons.icon = m_job.icon;
    icons.marks = m_job.marks;
    icons.keep = true;
    icons.layout.platform = platform;
    if (platform == IconSet::Android) {
        icons.layout.arrangement = IconLayout::AndroidRes;
        icons.layout.name = icons.layout.usualName(); // of use where the base has no pictures
        icons.layout.base = m_base.icons.pictures;
        icons.base = m_job.base;
    }
    icons.out =
        m_places.icons(platform == IconSet::Android ? QStringLiteral("android") : QStringLiteral("ios"));
    for (const JobChannel& channel : channels)
        icons.channels.append(listed(channel));
    icons.placeMarks();
    fault = removeFolder(icons.out);
    if (fault.isEmpty() && !QDir().mkpath(icons.out))
        fault = Preparation::tr("the folder '%1' cannot be made").arg(icons.out);
    if (!fault.isEmpty())
        return false;
    Console console = muteConsole();
    FileTally tally(icons.files());
    QStringList causes;
    Diagnostics::takeAll();
    if (!produceIcons(icons, tally, causes, console)) {
        fault = sentenceOf(console.failure());
        return false;
    }
    findMissing(icons, tally.missing(), Diagnostics::takeAll() + causes);
    return true;
}

// A channel that lacks one of its files cannot be built, and the others can.
void BuildPreparation::findMissing(const IconJob& icons, const QStringList& missing,
                                   const QStringList& causes)
{
    const QSet<QString> lacking(missing.cbegin(), missing.cend());
    if (lacking.isEmpty())
        return;
    for (const ListedChannel& channel : icons.channels) {
        IconJob alone = icons;
        alone.channels = {channel};
        for (const QString& path : alone.files()) {
            if (!lacking.contains(path))
                continue;
            const QStringList own = causes.filter(path);
            m_iconFaults.insert(channel.icon.strChannelDir,
                                Preparation::tr("the icon '%1' was not written: %2")
                                    .arg(path, own.isEmpty() ? causes.value(0) : own.first()));
            break;
        }
    }
}

QString BuildPreparation::faultOf(const JobChannel& channel) const
{
    for (const QString& sdk : channel.sdks) {
        if (m_faults.contains(sdk))
            return m_faults.value(sdk);
    }
    return m_iconFaults.value(channel.folder);
}
